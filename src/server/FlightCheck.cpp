#include "FlightCheck.h"

#include "FlightFile.h"

#include <QString>

#include <regex>

using json = nlohmann::ordered_json;

namespace FlightCheck {

namespace {
Failure invalid(const QString &why)
{
    return Failure{QStringLiteral("flight"), 1, QStringLiteral("flight.json is not a valid flight file: %1").arg(why)};
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
    const auto data = FlightFile::read(QString::fromStdString(file.string()));
    if (!data)
        return invalid(data.errorText());
    return std::move(FlightFile::toJSON(data.value())["meta"]);
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
