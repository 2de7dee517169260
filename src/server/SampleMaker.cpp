#include "SampleMaker.h"

#include "FlightAnalyst.h"
#include "FlightCheck.h"
#include "FlightFile.h"
#include "Suggestions.h"
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

/// The gimbal over the flight: level-ish, then down to the ground, then up to the horizon.
double gimbalPitch(double phase)
{
    if (phase < 0.6)
        return -20.0;
    if (phase < 0.75)
        return -20.0 - 50.0 * (phase - 0.6) / 0.15;
    if (phase < 0.88)
        return -70.0;
    return -70.0 + 65.0 * (phase - 0.88) / 0.12;
}

/// A sample's clips: one kept, as a pilot would have marked it, and what the analysis suggests.
ordered_json clipsFile(int seconds, const std::vector<Shot> &shots, int &suggested)
{
    const double s = seconds;
    const ordered_json kept = {
        {"clips", {{{"id", "sample-orbit"}, {"in", 0.15 * s}, {"out", 0.4 * s}, {"label", "Orbit over the water"}}}}};
    return Suggestions::clips(kept, shots, s, suggested);
}
} // namespace

namespace SampleMaker {

FlightData flightFile(double lat, double lon, double seconds, const std::string &source, const std::string &place)
{
    // Three quarters of an orbit that widens while the aircraft climbs to 80 m and comes back
    // down, at the easy pace of a filming flight (about 10 m/s), the camera on the centre; it
    // looks down on the way down and tilts up to the horizon at the end.
    const double rate = 10.0;
    const int count = static_cast<int>(seconds * rate) + 1;
    FlightData data;
    FlightBounds bounds{90, -90, 180, -180};
    FlightRelAlt relAlt{1e9, -1e9};
    double sumLat = 0, sumLon = 0, maxSpeed = 0, path = 0;
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
        TelemetrySample sample;
        sample.t = t;
        sample.lat = pLat;
        sample.lon = pLon;
        sample.relAlt = alt;
        sample.absAlt = alt + 12.5;
        sample.yaw = std::remainder(angle * 180 / std::numbers::pi + 180, 360);  // facing the centre
        sample.pitch = -4.0;
        sample.roll = 2.0;
        sample.gimbalYaw = sample.yaw;
        sample.gimbalPitch = gimbalPitch(phase);
        sample.iso = 100.0;
        sample.shutter = RawJSON::text(QStringLiteral("1/500"));
        sample.fnum = 2.8;
        sample.speed = i ? step * rate : 0;
        sample.climb = i ? (alt - prevAlt) * rate : 0;
        data.track.push_back(sample);
        path += step;
        maxSpeed = std::max(maxSpeed, sample.speed);
        bounds = {std::min(bounds.minLat, pLat), std::max(bounds.maxLat, pLat), std::min(bounds.minLon, pLon),
                  std::max(bounds.maxLon, pLon)};
        relAlt = {std::min(relAlt.min, alt), std::max(relAlt.max, alt)};
        sumLat += pLat, sumLon += pLon;
        prevLat = pLat, prevLon = pLon, prevAlt = alt;
    }
    FlightMeta &meta = data.meta;
    meta.model = QStringLiteral("Sample Drone");
    meta.duration = seconds;
    meta.samples = count;
    meta.bounds = bounds;
    meta.centroid = FlightCentroid{sumLat / count, sumLon / count};
    meta.relAlt = relAlt;
    meta.maxSpeed = maxSpeed;
    meta.pathLength = path;
    meta.source = QString::fromStdString(source);
    meta.place = QString::fromStdString(place);
    meta.video = FlightVideo{960, 540, false};
    return data;
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
        // The samples' suggestions and moments come from the same analysis as every flight's.
        const auto found = FlightAnalyst::findings(flight);
        int suggested = 0;
        const ordered_json clipsDoc = clipsFile(seconds, found.shots, suggested);
        const std::string clips = clipsDoc.dump();
        const bool written = media && FlightFile::write(flight, QString::fromStdString(folder.string()))
            && writeText(folder / "clips.json", clips)
            && writeText(folder / "moments.json", Suggestions::moments(nullptr, found.shots, clipsDoc).dump());
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
        const auto meta = FlightFile::toJSON(flight)["meta"];
        index.put({sample.id, FlightCheck::manifestEntry(sample.id, meta, false).dump(), FlightCheck::sourceStem(meta), Library::folderBytes(library.flight(sample.id)), true,
                   clips});
        ++made;
    }
    return made;
}

} // namespace SampleMaker
