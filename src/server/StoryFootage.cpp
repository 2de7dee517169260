#include "StoryFootage.h"

#include "FlightFile.h"
#include "Names.h"
#include "ToolRun.h"

#include <algorithm>
#include <map>

namespace fs = std::filesystem;
using nlohmann::ordered_json;

namespace StoryFootage {

namespace {
struct Video {
    double seconds = 0;
    int width = 0;
    int height = 0;
    std::shared_ptr<const std::vector<TelemetrySample>> track;
};

Result<Video> probe(const fs::path &file)
{
    const auto out = ToolRun::output(ToolRun::ffprobe(),
                                     {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-select_streams"),
                                      QStringLiteral("v:0"), QStringLiteral("-show_entries"),
                                      QStringLiteral("stream=width,height:format=duration"), QStringLiteral("-of"),
                                      QStringLiteral("json"), QString::fromStdString(file.string())});
    if (!out)
        return out.failure();
    const auto doc = ordered_json::parse(out->toStdString(), nullptr, false);
    Video video;
    if (doc.is_object() && doc.contains("streams") && doc["streams"].is_array() && !doc["streams"].empty()) {
        const auto &stream = doc["streams"][0];
        video.width = stream.value("width", 0);
        video.height = stream.value("height", 0);
    }
    if (doc.is_object() && doc.contains("format") && doc["format"].is_object()) {
        const auto duration = doc["format"].value("duration", ordered_json());
        if (duration.is_string())
            video.seconds = QString::fromStdString(duration.get<std::string>()).toDouble();
    }
    if (video.width <= 0 || video.height <= 0 || video.seconds <= 0)
        return Failure{QStringLiteral("render"), 1, QString()};
    return video;
}

std::shared_ptr<const std::vector<TelemetrySample>> telemetryOf(const fs::path &folder)
{
    auto flight = FlightFile::read(QString::fromStdString((folder / FlightFile::fileName).string()));
    if (!flight)
        return std::make_shared<const std::vector<TelemetrySample>>();
    return std::make_shared<const std::vector<TelemetrySample>>(std::move(flight.value().track));
}

std::optional<double> number(const ordered_json &item, const char *key)
{
    if (!item.contains(key) || !item[key].is_number())
        return std::nullopt;
    return item[key].get<double>();
}
} // namespace

Result<std::vector<Clip>> gather(const Library &library, const ordered_json &items, bool telemetry)
{
    std::vector<Clip> clips;
    std::map<std::string, Video> videos;
    for (const auto &item : items.is_array() ? items : ordered_json::array()) {
        if (!item.is_object() || !item.contains("flightId") || !item["flightId"].is_string())
            continue;
        const std::string flightId = item["flightId"];
        const auto in = number(item, "in"), out = number(item, "out");
        if (!Names::isSafeId(flightId) || !in || !out)
            continue;
        const fs::path folder = library.flight(flightId);
        const fs::path file = folder / "proxy.mp4";
        std::error_code ec;
        if (!fs::is_regular_file(file, ec))
            continue;
        auto known = videos.find(flightId);
        if (known == videos.end()) {
            auto video = probe(file);
            if (!video)
                return Failure{QStringLiteral("render"), 2,
                               QStringLiteral("The video of flight %1 can’t be read.").arg(QString::fromStdString(flightId))};
            if (telemetry)
                video.value().track = telemetryOf(folder);
            known = videos.emplace(flightId, std::move(video).value()).first;
        }
        const Video &video = known->second;
        Clip clip{flightId, file, std::clamp(*in, 0.0, video.seconds), std::clamp(*out, 0.0, video.seconds),
                  video.seconds, video.width, video.height, video.track};
        if (clip.end > clip.start)
            clips.push_back(std::move(clip));
    }
    return clips;
}

} // namespace StoryFootage
