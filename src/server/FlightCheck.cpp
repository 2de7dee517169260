#include "FlightCheck.h"

#include <fstream>
#include <regex>
#include <sstream>

using nlohmann::json;

namespace FlightCheck {

namespace {
Failure invalid(const QString &why)
{
    return Failure{QStringLiteral("flight"), 1, QStringLiteral("flight.json is not a valid flight file: %1").arg(why)};
}

bool isNumber(const json &o, const char *key)
{
    const auto it = o.find(key);
    return it != o.end() && it->is_number();
}

/// A key that may be absent or null, but when present has the given kind.
template <typename Test>
bool optionalOf(const json &o, const char *key, Test test)
{
    const auto it = o.find(key);
    return it == o.end() || it->is_null() || test(*it);
}

std::optional<QString> checkSample(const json &s)
{
    if (!s.is_object())
        return QStringLiteral("a track entry is not an object");
    for (const char *key : {"t", "lat", "lon", "speed", "climb"}) {
        if (!isNumber(s, key))
            return QStringLiteral("a track entry lacks the number \"%1\"").arg(QLatin1String(key));
    }
    for (const char *key : {"relAlt", "absAlt", "yaw", "pitch", "roll", "gimbalYaw", "gimbalPitch", "iso", "fnum"}) {
        if (!optionalOf(s, key, [](const json &v) { return v.is_number(); }))
            return QStringLiteral("a track entry has a \"%1\" that is not a number").arg(QLatin1String(key));
    }
    if (!optionalOf(s, "shutter", [](const json &v) { return v.is_string() || v.is_number(); }))
        return QStringLiteral("a track entry has a \"shutter\" that is neither text nor number");
    return std::nullopt;
}

std::optional<QString> checkMeta(const json &meta)
{
    if (!meta.is_object())
        return QStringLiteral("\"meta\" is missing");
    const auto isString = [&meta](const char *k) { return meta.contains(k) && meta[k].is_string(); };
    if (!isString("model") || !isString("source"))
        return QStringLiteral("\"meta\" lacks \"model\" or \"source\"");
    for (const char *key : {"duration", "maxSpeed", "pathLength"}) {
        if (!isNumber(meta, key))
            return QStringLiteral("\"meta\" lacks the number \"%1\"").arg(QLatin1String(key));
    }
    if (!meta.contains("samples") || !meta["samples"].is_number_integer())
        return QStringLiteral("\"meta\" lacks the count \"samples\"");
    const auto objectOrNull = [](const json &v) { return v.is_object(); };
    for (const char *key : {"bounds", "centroid", "relAlt", "video"}) {
        if (!optionalOf(meta, key, objectOrNull))
            return QStringLiteral("\"meta\" has a \"%1\" that is not an object").arg(QLatin1String(key));
    }
    if (meta.contains("centroid") && meta["centroid"].is_object()
        && !(isNumber(meta["centroid"], "lat") && isNumber(meta["centroid"], "lon")))
        return QStringLiteral("\"centroid\" lacks \"lat\" or \"lon\"");
    return std::nullopt;
}

void copyIfNumber(nlohmann::ordered_json &out, const char *to, const json &from, const char *key)
{
    const auto it = from.find(key);
    if (it != from.end() && it->is_number())
        out[to] = *it;
}
} // namespace

Result<json> readMeta(const std::filesystem::path &file)
{
    std::error_code ec;
    const auto size = std::filesystem::file_size(file, ec);
    if (ec)
        return invalid(QStringLiteral("it was not uploaded"));
    if (static_cast<std::int64_t>(size) > maxFlightFileBytes)
        return invalid(QStringLiteral("it is larger than 64 MB"));
    std::ifstream in(file, std::ios::binary);
    json doc = json::parse(in, nullptr, false);
    if (doc.is_discarded())
        return invalid(QStringLiteral("it is not JSON, or it was cut short"));
    if (!doc.is_object())
        return invalid(QStringLiteral("it is not a JSON object"));
    if (const auto why = checkMeta(doc.contains("meta") ? doc["meta"] : json()))
        return invalid(*why);
    if (!doc.contains("track") || !doc["track"].is_array())
        return invalid(QStringLiteral("\"track\" is missing"));
    for (const auto &sample : doc["track"]) {
        if (const auto why = checkSample(sample))
            return invalid(*why);
    }
    return std::move(doc["meta"]);
}

std::optional<std::string> dateFromId(const std::string &id)
{
    static const std::regex pattern(R"((\d{4})(\d{2})(\d{2})_(\d{2})(\d{2})(\d{2})(_.*)?)");
    std::smatch m;
    if (!std::regex_match(id, m, pattern) || id.rfind("00000000", 0) == 0)
        return std::nullopt;
    return m[1].str() + "-" + m[2].str() + "-" + m[3].str() + "T" + m[4].str() + ":" + m[5].str() + ":" + m[6].str();
}

nlohmann::ordered_json manifestEntry(const std::string &id, const json &meta, bool p480)
{
    nlohmann::ordered_json out;
    out["id"] = id;
    if (auto date = dateFromId(id)) {
        out["date"] = *date;
    } else if (meta.contains("created") && meta["created"].is_string() && meta["created"].get<std::string>().size() >= 19) {
        out["date"] = meta["created"].get<std::string>().substr(0, 19);
    }
    if (meta.contains("model") && meta["model"].is_string())
        out["model"] = meta["model"];
    copyIfNumber(out, "duration", meta, "duration");
    copyIfNumber(out, "pathLength", meta, "pathLength");
    copyIfNumber(out, "maxSpeed", meta, "maxSpeed");
    if (meta.contains("relAlt") && meta["relAlt"].is_object()) {
        nlohmann::ordered_json rel = nlohmann::ordered_json::object();
        copyIfNumber(rel, "min", meta["relAlt"], "min");
        copyIfNumber(rel, "max", meta["relAlt"], "max");
        out["relAlt"] = rel;
    }
    if (meta.contains("centroid") && meta["centroid"].is_object()) {
        nlohmann::ordered_json c;
        copyIfNumber(c, "lat", meta["centroid"], "lat");
        copyIfNumber(c, "lon", meta["centroid"], "lon");
        out["centroid"] = c;
    }
    if (meta.contains("place") && meta["place"].is_string())
        out["place"] = meta["place"];
    if (meta.contains("video") && meta["video"].is_object()) {
        const auto &v = meta["video"];
        nlohmann::ordered_json video = nlohmann::ordered_json::object();
        copyIfNumber(video, "w", v, "w");
        copyIfNumber(video, "h", v, "h");
        if (v.contains("vertical") && v["vertical"].is_boolean())
            video["vertical"] = v["vertical"];
        out["video"] = video;
    }
    if (meta.contains("samples") && meta["samples"].is_number_integer())
        out["samples"] = meta["samples"];
    out["p480"] = p480;
    return out;
}

std::string sourceStem(const json &meta)
{
    if (!meta.contains("source") || !meta["source"].is_string())
        return {};
    std::string name = meta["source"].get<std::string>();
    if (const auto slash = name.find_last_of("/\\"); slash != std::string::npos)
        name = name.substr(slash + 1);
    if (const auto dot = name.rfind('.'); dot != std::string::npos && dot > 0)
        name.resize(dot);
    return name;
}

} // namespace FlightCheck
