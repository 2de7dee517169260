#include "SampleMaker.h"

#include "FlightCheck.h"
#include "ToolRun.h"

#include <QString>

#include <cmath>
#include <fstream>
#include <numbers>

namespace fs = std::filesystem;
using nlohmann::ordered_json;

namespace {
struct Sample {
    const char *id;
    const char *source;
    const char *place;
    double lat, lon;
    const char *pattern;  ///< ffmpeg test source, so the samples look different
};

constexpr Sample samples[] = {
    {"20240512_093000_0001", "DJI_20240512093000_0001_D.MP4", "Saltmarsh Lagoon", 43.5185, 4.1912, "testsrc2"},
    {"20240601_184512_0002", "DJI_20240601184512_0002_D.MP4", "Cedar Ridge", 46.5593, 8.0031, "smptehdbars"},
    {"20240714_071530_0003", "DJI_20240714071530_0003_D.MP4", "Harbour Point", 38.7076, -9.4866, "rgbtestsrc"},
};

constexpr double earthRadius = 6371000.0;

double metresBetween(double lat1, double lon1, double lat2, double lon2)
{
    const double toRad = std::numbers::pi / 180.0;
    const double dLat = (lat2 - lat1) * toRad;
    const double dLon = (lon2 - lon1) * toRad;
    const double a = std::sin(dLat / 2) * std::sin(dLat / 2)
        + std::cos(lat1 * toRad) * std::cos(lat2 * toRad) * std::sin(dLon / 2) * std::sin(dLon / 2);
    return 2 * earthRadius * std::asin(std::sqrt(a));
}

bool writeText(const fs::path &file, const std::string &text)
{
    std::ofstream out(file, std::ios::binary);
    out << text;
    return bool(out.flush());
}

Result<void> makeMedia(const fs::path &folder, const Sample &sample, int seconds)
{
    const QString proxy = QString::fromStdString((folder / "proxy.mp4").string());
    auto made = ToolRun::run(ToolRun::ffmpeg(),
                             {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"),
                              QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                              QStringLiteral("%1=size=960x540:rate=30:duration=%2")
                                  .arg(QLatin1String(sample.pattern))
                                  .arg(seconds),
                              QStringLiteral("-c:v"), QStringLiteral("libx264"), QStringLiteral("-preset"),
                              QStringLiteral("ultrafast"), QStringLiteral("-crf"), QStringLiteral("30"), QStringLiteral("-pix_fmt"), QStringLiteral("yuv420p"),
                              QStringLiteral("-g"), QStringLiteral("30"), QStringLiteral("-movflags"),
                              QStringLiteral("+faststart"), QStringLiteral("-y"), proxy});
    if (!made)
        return made.failure();
    return ToolRun::run(ToolRun::ffmpeg(),
                        {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-ss"),
                         QStringLiteral("2"), QStringLiteral("-i"), proxy, QStringLiteral("-frames:v"),
                         QStringLiteral("1"), QStringLiteral("-vf"), QStringLiteral("scale=480:-2"),
                         QStringLiteral("-q:v"), QStringLiteral("4"), QStringLiteral("-y"),
                         QString::fromStdString((folder / "thumb.jpg").string())});
}

ordered_json clipsFile(int seconds)
{
    const double s = seconds;
    return {{"clips",
             {{{"id", "sample-orbit"}, {"in", 0.15 * s}, {"out", 0.4 * s}, {"label", "Orbit over the water"}},
              {{"id", "sample-climb"},
               {"in", 0.55 * s},
               {"out", 0.8 * s},
               {"label", ""},
               {"auto", true},
               {"why", "Steady climb with the horizon in view"}}}}};
}
} // namespace

namespace SampleMaker {

ordered_json flightFile(double lat, double lon, double seconds, const std::string &source, const std::string &place)
{
    // Three quarters of an orbit that widens while the aircraft climbs to 80 m and comes back
    // down, at the easy pace of a filming flight (about 10 m/s).
    const double rate = 10.0;
    const int count = static_cast<int>(seconds * rate) + 1;
    ordered_json track = ordered_json::array();
    double minLat = 90, maxLat = -90, minLon = 180, maxLon = -180, sumLat = 0, sumLon = 0;
    double minAlt = 1e9, maxAlt = -1e9, maxSpeed = 0, path = 0;
    double prevLat = lat, prevLon = lon, prevAlt = 0;
    for (int i = 0; i < count; ++i) {
        const double t = i / rate;
        const double phase = t / seconds;
        const double angle = 2 * std::numbers::pi * phase * 0.75;
        const double radius = 20 + 40 * phase;
        const double north = radius * std::cos(angle) - 20;
        const double east = radius * std::sin(angle);
        const double pLat = lat + north / earthRadius * 180 / std::numbers::pi;
        const double pLon = lon + east / (earthRadius * std::cos(lat * std::numbers::pi / 180)) * 180 / std::numbers::pi;
        const double alt = 80 * std::sin(std::numbers::pi * std::min(1.0, phase * 1.1));
        const double step = i ? metresBetween(prevLat, prevLon, pLat, pLon) : 0;
        const double speed = i ? step * rate : 0;
        const double climb = i ? (alt - prevAlt) * rate : 0;
        path += step;
        maxSpeed = std::max(maxSpeed, speed);
        minLat = std::min(minLat, pLat), maxLat = std::max(maxLat, pLat);
        minLon = std::min(minLon, pLon), maxLon = std::max(maxLon, pLon);
        minAlt = std::min(minAlt, alt), maxAlt = std::max(maxAlt, alt);
        sumLat += pLat, sumLon += pLon;
        const double yaw = std::fmod(angle * 180 / std::numbers::pi + 90, 360) - 180;
        track.push_back({{"t", t}, {"lat", pLat}, {"lon", pLon}, {"relAlt", alt}, {"absAlt", alt + 12.5},
                         {"yaw", yaw}, {"pitch", -4.0}, {"roll", 2.0}, {"gimbalYaw", yaw}, {"gimbalPitch", -20.0},
                         {"iso", 100.0}, {"shutter", "1/500"}, {"fnum", 2.8}, {"speed", speed}, {"climb", climb}});
        prevLat = pLat, prevLon = pLon, prevAlt = alt;
    }
    ordered_json meta;
    meta["model"] = "Sample Drone";
    meta["duration"] = seconds;
    meta["samples"] = count;
    meta["bounds"] = {{"minLat", minLat}, {"maxLat", maxLat}, {"minLon", minLon}, {"maxLon", maxLon}};
    meta["centroid"] = {{"lat", sumLat / count}, {"lon", sumLon / count}};
    meta["relAlt"] = {{"min", minAlt}, {"max", maxAlt}};
    meta["maxSpeed"] = maxSpeed;
    meta["pathLength"] = path;
    meta["source"] = source;
    meta["place"] = place;
    meta["video"] = {{"w", 960}, {"h", 540}, {"vertical", false}};
    return {{"meta", meta}, {"track", track}};
}

Result<int> make(const Library &library, FlightIndex &index, std::mutex &folderLock, int seconds)
{
    int made = 0;
    for (const auto &sample : samples) {
        if (index.exists(sample.id))
            continue;
        const fs::path folder = library.tmpName(".sample");
        std::error_code ec;
        fs::create_directories(folder, ec);
        const auto media = makeMedia(folder, sample, seconds);
        const auto flight = flightFile(sample.lat, sample.lon, seconds, sample.source, sample.place);
        const std::string clips = clipsFile(seconds).dump();
        const bool written = media && writeText(folder / "flight.json", flight.dump())
            && writeText(folder / "clips.json", clips)
            && writeText(folder / "moments.json",
                         ordered_json{{"moments",
                                       {{{"id", "m1"}, {"in", 0.5 * seconds}, {"out", 0.7 * seconds}, {"score", 0.8},
                                         {"why", "Steady climb"}}}}}
                             .dump());
        if (!written) {
            fs::remove_all(folder, ec);
            return media ? Failure{QStringLiteral("server"), 3, QStringLiteral("The sample flights can't be written.")}
                         : media.failure();
        }
        std::lock_guard guard(folderLock);
        fs::rename(folder, library.flight(sample.id), ec);
        if (ec) {
            fs::remove_all(folder, ec);
            continue;
        }
        index.put({sample.id, FlightCheck::manifestEntry(sample.id, flight["meta"], false).dump(),
                   FlightCheck::sourceStem(flight["meta"]), Library::folderBytes(library.flight(sample.id)), true,
                   clips});
        ++made;
    }
    return made;
}

} // namespace SampleMaker
