#include "FlightFile.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>

#include <cmath>
#include <stdexcept>

using json = nlohmann::ordered_json;

namespace {

Failure failure(FlightFile::Code code, const QString &text)
{
    return Failure{QStringLiteral("flightfile"), code, text};
}

struct NotFiniteError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// A value that cannot be written faithfully must stop the encoding rather than turn into null.
json finite(double value, const char *key)
{
    if (!std::isfinite(value))
        throw NotFiniteError(key);
    return json(value);
}

json optional(const std::optional<double> &value, const char *key)
{
    return value ? finite(*value, key) : json(nullptr);
}

json sampleJSON(const TelemetrySample &s)
{
    json o = json::object();
    o["t"] = finite(s.t, "t");
    o["lat"] = finite(s.lat, "lat");
    o["lon"] = finite(s.lon, "lon");
    o["relAlt"] = optional(s.relAlt, "relAlt");
    o["absAlt"] = optional(s.absAlt, "absAlt");
    o["yaw"] = optional(s.yaw, "yaw");
    o["pitch"] = optional(s.pitch, "pitch");
    o["roll"] = optional(s.roll, "roll");
    o["gimbalYaw"] = optional(s.gimbalYaw, "gimbalYaw");
    o["gimbalPitch"] = optional(s.gimbalPitch, "gimbalPitch");
    o["iso"] = optional(s.iso, "iso");
    if (!s.shutter)
        o["shutter"] = nullptr;
    else if (s.shutter->isNumber())
        o["shutter"] = finite(*s.shutter->toNumber(), "shutter");
    else
        o["shutter"] = s.shutter->json();
    o["fnum"] = optional(s.fnum, "fnum");
    o["speed"] = finite(s.speed, "speed");
    o["climb"] = finite(s.climb, "climb");
    return o;
}

json metaJSON(const FlightMeta &m)
{
    json o = json::object();
    o["model"] = m.model.toStdString();
    o["duration"] = finite(m.duration, "duration");
    o["samples"] = m.samples;
    if (m.bounds) {
        o["bounds"] = json{{"minLat", finite(m.bounds->minLat, "minLat")},
                           {"maxLat", finite(m.bounds->maxLat, "maxLat")},
                           {"minLon", finite(m.bounds->minLon, "minLon")},
                           {"maxLon", finite(m.bounds->maxLon, "maxLon")}};
    } else {
        o["bounds"] = nullptr;
    }
    if (m.centroid)
        o["centroid"] = json{{"lat", finite(m.centroid->lat, "lat")}, {"lon", finite(m.centroid->lon, "lon")}};
    else
        o["centroid"] = nullptr;
    if (m.relAlt)
        o["relAlt"] = json{{"min", finite(m.relAlt->min, "min")}, {"max", finite(m.relAlt->max, "max")}};
    else
        o["relAlt"] = nullptr;
    o["maxSpeed"] = finite(m.maxSpeed, "maxSpeed");
    o["pathLength"] = finite(m.pathLength, "pathLength");
    o["source"] = m.source.toStdString();
    if (m.created)
        o["created"] = m.created->toStdString();
    if (m.place)
        o["place"] = m.place->toStdString();
    if (m.video)
        o["video"] = json{{"w", m.video->w}, {"h", m.video->h}, {"vertical", m.video->vertical}};
    return o;
}

// Strict reading: each accessor throws BadShape with the path of the offending key.
struct ShapeError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

class Reader
{
public:
    Reader(const json &object, std::string where) : m_object(object), m_where(std::move(where))
    {
        if (!object.is_object())
            throw ShapeError(m_where + " is not an object");
    }

    [[nodiscard]] bool present(const char *key) const
    {
        const auto it = m_object.find(key);
        return it != m_object.end() && !it->is_null();
    }
    [[nodiscard]] const json &at(const char *key) const
    {
        const auto it = m_object.find(key);
        if (it == m_object.end() || it->is_null())
            throw ShapeError(path(key) + " is missing");
        return *it;
    }
    [[nodiscard]] double number(const char *key) const
    {
        const json &v = at(key);
        if (!v.is_number())
            throw ShapeError(path(key) + " is not a number");
        return v.get<double>();
    }
    [[nodiscard]] std::optional<double> optionalNumber(const char *key) const
    {
        return present(key) ? std::optional<double>(number(key)) : std::nullopt;
    }
    [[nodiscard]] std::int64_t integer(const char *key) const
    {
        const json &v = at(key);
        if (v.is_number_integer())
            return v.get<std::int64_t>();
        if (v.is_number_float()) {
            const double d = v.get<double>();
            if (std::trunc(d) == d && std::abs(d) < 9.0e15)
                return static_cast<std::int64_t>(d);
        }
        throw ShapeError(path(key) + " is not an integer");
    }
    [[nodiscard]] QString text(const char *key) const
    {
        const json &v = at(key);
        if (!v.is_string())
            throw ShapeError(path(key) + " is not a text");
        return QString::fromStdString(v.get<std::string>());
    }
    [[nodiscard]] std::optional<QString> optionalText(const char *key) const
    {
        return present(key) ? std::optional<QString>(text(key)) : std::nullopt;
    }
    [[nodiscard]] bool boolean(const char *key) const
    {
        const json &v = at(key);
        if (!v.is_boolean())
            throw ShapeError(path(key) + " is not a Boolean");
        return v.get<bool>();
    }
    [[nodiscard]] Reader child(const char *key) const { return Reader(at(key), path(key)); }
    [[nodiscard]] std::string path(const char *key) const { return m_where + "." + key; }

private:
    const json &m_object;
    std::string m_where;
};

TelemetrySample readSample(const Reader &r)
{
    TelemetrySample s;
    s.t = r.number("t");
    s.lat = r.number("lat");
    s.lon = r.number("lon");
    s.relAlt = r.optionalNumber("relAlt");
    s.absAlt = r.optionalNumber("absAlt");
    s.yaw = r.optionalNumber("yaw");
    s.pitch = r.optionalNumber("pitch");
    s.roll = r.optionalNumber("roll");
    s.gimbalYaw = r.optionalNumber("gimbalYaw");
    s.gimbalPitch = r.optionalNumber("gimbalPitch");
    s.iso = r.optionalNumber("iso");
    if (r.present("shutter")) {
        s.shutter = RawJSON::fromJSON(r.at("shutter"));
        if (!s.shutter)
            throw ShapeError(r.path("shutter") + " is neither a text nor a number");
    }
    s.fnum = r.optionalNumber("fnum");
    s.speed = r.number("speed");
    s.climb = r.number("climb");
    return s;
}

FlightMeta readMeta(const Reader &r)
{
    FlightMeta m;
    m.model = r.text("model");
    m.duration = r.number("duration");
    m.samples = r.integer("samples");
    if (r.present("bounds")) {
        const Reader b = r.child("bounds");
        m.bounds = FlightBounds{b.number("minLat"), b.number("maxLat"), b.number("minLon"), b.number("maxLon")};
    }
    if (r.present("centroid")) {
        const Reader c = r.child("centroid");
        m.centroid = FlightCentroid{c.number("lat"), c.number("lon")};
    }
    if (r.present("relAlt")) {
        const Reader a = r.child("relAlt");
        m.relAlt = FlightRelAlt{a.number("min"), a.number("max")};
    }
    m.maxSpeed = r.number("maxSpeed");
    m.pathLength = r.number("pathLength");
    m.source = r.text("source");
    m.created = r.optionalText("created");
    m.place = r.optionalText("place");
    if (r.present("video")) {
        const Reader v = r.child("video");
        const auto w = v.integer("w");
        const auto h = v.integer("h");
        if (w < INT32_MIN || w > INT32_MAX || h < INT32_MIN || h > INT32_MAX)
            throw ShapeError(r.path("video") + " has a size out of range");
        m.video = FlightVideo{static_cast<int>(w), static_cast<int>(h), v.boolean("vertical")};
    }
    return m;
}

} // namespace

namespace FlightFile {

json toJSON(const FlightData &data)
{
    json root = json::object();
    root["meta"] = metaJSON(data.meta);
    json track = json::array();
    for (const TelemetrySample &s : data.track)
        track.push_back(sampleJSON(s));
    root["track"] = std::move(track);
    return root;
}

Result<FlightData> fromJSON(const json &root)
{
    try {
        const Reader r(root, "flight");
        FlightData data;
        data.meta = readMeta(r.child("meta"));
        const json &track = r.at("track");
        if (!track.is_array())
            throw ShapeError("flight.track is not an array");
        data.track.reserve(track.size());
        for (std::size_t i = 0; i < track.size(); ++i)
            data.track.push_back(readSample(Reader(track[i], "flight.track[" + std::to_string(i) + "]")));
        return data;
    } catch (const ShapeError &e) {
        return failure(BadShape, QStringLiteral("flight.json is not readable: %1").arg(QString::fromUtf8(e.what())));
    }
}

Result<QByteArray> encode(const FlightData &data)
{
    try {
        const std::string text = toJSON(data).dump();
        return QByteArray(text.data(), static_cast<qsizetype>(text.size()));
    } catch (const NotFiniteError &e) {
        return failure(NotFinite, QStringLiteral("flight.json cannot hold the value of “%1”: it is not a finite number")
                                      .arg(QString::fromUtf8(e.what())));
    }
}

Result<FlightData> decode(const QByteArray &bytes)
{
    json root = json::parse(bytes.begin(), bytes.end(), nullptr, false);
    if (root.is_discarded())
        return failure(NotJSON, QStringLiteral("flight.json is not readable: it is not JSON"));
    return fromJSON(root);
}

Result<void> write(const FlightData &data, const QString &dir)
{
    const auto bytes = encode(data);
    if (!bytes)
        return bytes.failure();
    QSaveFile file(QDir(dir).filePath(QString::fromLatin1(fileName)));
    if (!file.open(QIODevice::WriteOnly) || file.write(*bytes) != bytes->size() || !file.commit()) {
        return failure(WriteFailed, QStringLiteral("Could not write %1: %2").arg(file.fileName(), file.errorString()));
    }
    return {};
}

Result<FlightData> read(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return failure(ReadFailed, QStringLiteral("Could not read %1: %2").arg(path, file.errorString()));
    return decode(file.readAll());
}

} // namespace FlightFile
