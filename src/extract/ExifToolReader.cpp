#include "ExifToolReader.h"

#include "ExifToolCommand.h"
#include "FlightSummary.h"
#include "LineBreaks.h"
#include "ProcessError.h"
#include "ProcessRunner.h"
#include "StrictNumber.h"
#include "TelemetryError.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <cmath>
#include <map>
#include <set>

using json = nlohmann::json;

namespace {

const QRegularExpression groupingPattern(QStringLiteral("^Doc(\\d+):(.+)$"));
const QRegularExpression coordinatePattern(QStringLiteral("([\\d.]+)\\s*deg\\s*([\\d.]+)'\\s*([\\d.]+)\"\\s*([NSEW])"));
const QRegularExpression unknownProtocolPattern(QStringLiteral("Unknown protocol (\\S+\\.proto)"));

// JSON may hold 1e400, which reads as infinity: no field of ours can carry it.
std::optional<double> finite(const json &value)
{
    const double v = value.get<double>();
    return std::isfinite(v) ? std::optional<double>(v) : std::nullopt;
}

QString text(const json &value)
{
    return QString::fromStdString(value.get<std::string>());
}

QStringList pieces(const QString &text)
{
    static const QRegularExpression space(QStringLiteral("\\s+"));
    return text.split(space, Qt::SkipEmptyParts);
}

std::optional<RawJSON> rawValue(const json &value)
{
    if (value.is_string())
        return RawJSON::text(text(value));
    if (value.is_number() && std::isfinite(value.get<double>()))
        return RawJSON::number(value.get<double>());
    return RawJSON::text(QString::fromStdString(value.dump()));
}

QString textForm(const json &value)
{
    return value.is_string() ? text(value) : QString::fromStdString(value.dump());
}

using DocTable = std::map<long long, std::map<std::string, json>>;

std::optional<json> find(const std::map<std::string, json> &doc, const char *tag)
{
    const auto it = doc.find(tag);
    return it == doc.end() ? std::nullopt : std::optional<json>(it->second);
}

std::optional<TelemetrySample> readDoc(const std::map<std::string, json> &doc)
{
    using namespace TelemetryParser;
    const auto lat = find(doc, "GPSLatitude");
    const auto lon = find(doc, "GPSLongitude");
    const auto latValue = lat ? coordinateValue(*lat) : std::nullopt;
    const auto lonValue = lon ? coordinateValue(*lon) : std::nullopt;
    if (!latValue || !lonValue)
        return std::nullopt;
    TelemetrySample s;
    s.lat = *latValue;
    s.lon = *lonValue;
    const auto number = [&](const char *tag) {
        const auto v = find(doc, tag);
        return v ? numberValue(*v) : std::nullopt;
    };
    const auto t = find(doc, "SampleTime");
    s.t = t ? timeValue(*t).value_or(0.0) : 0.0;
    s.relAlt = number("RelativeAltitude");
    s.absAlt = number("AbsoluteAltitude");
    s.yaw = number("DroneYaw");
    s.pitch = number("DronePitch");
    s.roll = number("DroneRoll");
    s.gimbalYaw = number("GimbalYaw");
    s.gimbalPitch = number("GimbalPitch");
    s.iso = number("ISO");
    if (const auto shutter = find(doc, "ShutterSpeed"))
        s.shutter = rawValue(*shutter);
    s.fnum = number("FNumber");
    return s;
}

QString modelOf(const DocTable &docs, const json &root)
{
    const auto usable = [](const json *value) -> std::optional<QString> {
        if (!value)
            return std::nullopt;
        QString name = trimBlanks(textForm(*value));
        return name.isEmpty() ? std::nullopt : std::optional<QString>(name);
    };
    if (!docs.empty()) {
        const auto &first = docs.begin()->second;
        const auto it = first.find("Model");
        if (auto name = usable(it == first.end() ? nullptr : &it->second))
            return *name;
    }
    for (const char *key : {"Main:Encoder", "Main:Model"}) {
        const auto it = root.find(key);
        if (auto name = usable(it == root.end() ? nullptr : &*it))
            return *name;
    }
    return QStringLiteral("DJI");
}

Failure whyNoSamples(const json &root, const QString &source)
{
    std::set<QString> names;
    for (const auto &[key, value] : root.items()) {
        if (!value.is_string())
            continue;
        auto it = unknownProtocolPattern.globalMatch(text(value));
        while (it.hasNext())
            names.insert(it.next().captured(1));
    }
    if (names.empty())
        return TelemetryError::noTelemetry(source);
    return TelemetryError::unknownProtocol(source, QStringList(names.begin(), names.end()));
}

} // namespace

namespace TelemetryParser {

std::optional<double> coordinateValue(const json &value)
{
    if (value.is_number())
        return finite(value);
    if (!value.is_string())
        return std::nullopt;
    const QString t = text(value);
    if (const auto m = coordinatePattern.match(t); m.hasMatch()) {
        const auto deg = strictNumber(m.capturedView(1));
        const auto min = strictNumber(m.capturedView(2));
        const auto sec = strictNumber(m.capturedView(3));
        if (deg && min && sec) {
            const double v = *deg + *min / 60 + *sec / 3600;
            const QString hemisphere = m.captured(4);
            return hemisphere == QLatin1String("S") || hemisphere == QLatin1String("W") ? -v : v;
        }
    }
    const QStringList parts = pieces(t);
    return parts.isEmpty() ? std::nullopt : strictNumber(parts.first());
}

std::optional<double> numberValue(const json &value)
{
    if (value.is_number())
        return finite(value);
    if (!value.is_string())
        return std::nullopt;
    const QStringList parts = pieces(text(value));
    return parts.isEmpty() ? std::nullopt : strictNumber(parts.first());
}

std::optional<double> timeValue(const json &value)
{
    if (value.is_number())
        return finite(value);
    if (!value.is_string())
        return std::nullopt;
    const QString t = trimBlanks(QString(text(value)).remove(QStringLiteral(" s")));
    if (!t.contains(QLatin1Char(':')))
        return strictNumber(t);
    double total = 0;
    for (const QString &piece : t.split(QLatin1Char(':'), Qt::SkipEmptyParts)) {
        const auto n = strictNumber(piece);
        if (!n)
            return std::nullopt;
        total = total * 60 + *n;
    }
    return total;
}

QCoro::Task<Result<QByteArray>> runExifTool(ToolLocator::ExifTool tool, QString path, CancelToken *token)
{
    // An absolute path never reads as an option, even for a clip named "-i.mp4".
    const QStringList args{QStringLiteral("-ee3"), QStringLiteral("-G3"), QStringLiteral("-api"),
                           QStringLiteral("RequestAll=3"), QStringLiteral("-j"), QFileInfo(path).absoluteFilePath()};
    const ExifToolCommand command = exifToolCommand(tool, args);
    const auto result = co_await ProcessRunner::run(command.program, command.arguments, {}, token);
    if (!result.ok())
        co_return result.failure();
    if (!result->stdOut.isEmpty())
        co_return result->stdOut;
    co_return ProcessError::failed(QStringLiteral("exiftool"), result->status, result->stdErr);
}

Result<FlightData> parseExifTool(const QByteArray &data, const QString &source)
{
    const json parsed = json::parse(data.begin(), data.end(), nullptr, false);
    if (parsed.is_discarded() || !parsed.is_array() || parsed.empty())
        return TelemetryError::badJSON();
    for (const json &element : parsed) {
        if (!element.is_object())
            return TelemetryError::badJSON();
    }
    const json &root = parsed.front();

    DocTable docs;
    for (const auto &[key, value] : root.items()) {
        const auto m = groupingPattern.match(QString::fromStdString(key));
        if (!m.hasMatch())
            continue;
        const auto number = strictInteger(m.capturedView(1));
        if (!number)
            continue;
        docs[*number][m.captured(2).toStdString()] = value;
    }

    // Document numbers are the time order of the file; the order of keys means nothing.
    std::vector<TelemetrySample> samples;
    for (const auto &[number, tags] : docs) {
        if (auto sample = readDoc(tags))
            samples.push_back(std::move(*sample));
    }
    if (samples.empty())
        return whyNoSamples(root, source);

    std::optional<double> duration;
    if (const auto it = root.find("Main:Duration"); it != root.end())
        duration = numberValue(*it);
    else if (const auto plain = root.find("Duration"); plain != root.end())
        duration = numberValue(*plain);
    return FlightSummary::makeFlightData(std::move(samples), modelOf(docs, root), duration, source, false);
}

} // namespace TelemetryParser
