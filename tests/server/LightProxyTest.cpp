// The light proxy the library makes by itself: after each commit, in the background, one flight
// at a time, listed as p480 once it is whole; a stop mid-encode leaves nothing half made.
#include "TestServer.h"

#include "CoroTest.h"

#include <gtest/gtest.h>

#include <QProcess>

namespace fs = std::filesystem;

namespace {
/// A flight folder whose proxy is `width`×`height`, `seconds` long.
fs::path flightWithProxy(const fs::path &where, int width, int height, double seconds)
{
    const fs::path folder = makeFlightFolder(where, 1.0);
    QProcess ffmpeg;
    ffmpeg.start(QStringLiteral("ffmpeg"),
                 {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-f"),
                  QStringLiteral("lavfi"), QStringLiteral("-i"),
                  QStringLiteral("testsrc2=size=%1x%2:rate=30:duration=%3").arg(width).arg(height).arg(seconds),
                  QStringLiteral("-c:v"), QStringLiteral("libx264"), QStringLiteral("-preset"), QStringLiteral("ultrafast"),
                  QStringLiteral("-pix_fmt"), QStringLiteral("yuv420p"), QStringLiteral("-y"),
                  QString::fromStdString((folder / "proxy.mp4").string())});
    ffmpeg.waitForFinished(-1);
    EXPECT_EQ(ffmpeg.exitCode(), 0);
    return folder;
}

/// "WxH" of a video's first stream.
QString sizeOf(const fs::path &video)
{
    QProcess ffprobe;
    ffprobe.start(QStringLiteral("ffprobe"), {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-select_streams"),
                                              QStringLiteral("v:0"), QStringLiteral("-show_entries"),
                                              QStringLiteral("stream=width,height"), QStringLiteral("-of"),
                                              QStringLiteral("csv=s=x:p=0"), QString::fromStdString(video.string())});
    ffprobe.waitForFinished(-1);
    return QString::fromUtf8(ffprobe.readAllStandardOutput()).trimmed();
}

/// The largest gap between a video's keyframes, in seconds; its length when it has only one.
double longestKeyframeGap(const fs::path &video)
{
    QProcess ffprobe;
    ffprobe.start(QStringLiteral("ffprobe"),
                  {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-select_streams"), QStringLiteral("v:0"),
                   QStringLiteral("-skip_frame"), QStringLiteral("nokey"), QStringLiteral("-show_entries"),
                   QStringLiteral("frame=pts_time:format=duration"), QStringLiteral("-of"), QStringLiteral("csv=p=0"),
                   QString::fromStdString(video.string())});
    ffprobe.waitForFinished(-1);
    QList<double> times;
    for (const QString &line : QString::fromUtf8(ffprobe.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts))
        times.append(line.split(u',').first().toDouble());
    // The container's duration comes last.
    double gap = 0;
    for (qsizetype i = 1; i < times.size(); ++i)
        gap = std::max(gap, times[i] - times[i - 1]);
    return gap;
}

bool listedLight(TestServer &server, const std::string &id)
{
    const auto manifest = jsonOf(server.client()->Get("/manifest.json"));
    for (const auto &entry : manifest["flights"]) {
        if (entry["id"] == id)
            return entry["p480"] == true;
    }
    return false;
}

void light(ServerConfig &config)
{
    config.lightProxies = true;
}
} // namespace

TEST(LightProxy, EachCommittedFlightGetsOneAndSaysSo)
{
    TestServer server(light);
    const fs::path wide = flightWithProxy(server.sandbox() / "wide", 1280, 720, 2);
    const fs::path tall = flightWithProxy(server.sandbox() / "tall", 720, 1280, 2);
    const fs::path small = flightWithProxy(server.sandbox() / "small", 320, 180, 1);
    auto http = server.client();
    ASSERT_EQ(uploadFlight(*http, "20240102_030405_0001", wide)->status, 200);
    EXPECT_FALSE(listedLight(server, "20240102_030405_0001")) << "listed only once it is whole";
    ASSERT_EQ(uploadFlight(*http, "20240102_030405_0002", tall)->status, 200);
    ASSERT_EQ(uploadFlight(*http, "20240102_030405_0003", small)->status, 200);

    ASSERT_TRUE(waitUntil([&] {
        return listedLight(server, "20240102_030405_0001") && listedLight(server, "20240102_030405_0002")
            && listedLight(server, "20240102_030405_0003");
    }, 120000));
    const fs::path flights = server.library() / "flights";
    EXPECT_EQ(sizeOf(flights / "20240102_030405_0001" / "proxy_480.mp4"), "854x480");
    EXPECT_EQ(sizeOf(flights / "20240102_030405_0002" / "proxy_480.mp4"), "480x854");
    EXPECT_EQ(sizeOf(flights / "20240102_030405_0003" / "proxy_480.mp4"), "320x180") << "never enlarged";
    const auto served = http->Get("/flights/20240102_030405_0001/proxy_480.mp4");
    ASSERT_EQ(served->status, 200);
    EXPECT_EQ(served->get_header_value("Content-Type"), "video/mp4");
    // The light proxy counts towards the library's size.
    std::int64_t onDisk = 0;
    for (const auto &file : fs::recursive_directory_iterator(flights))
        onDisk += file.is_regular_file() ? std::int64_t(file.file_size()) : 0;
    EXPECT_EQ(jsonOf(http->Get("/api/flights"))["used"], onDisk);

    // Sent again, the flight has a new proxy: listed without a light one until that is made.
    ASSERT_EQ(uploadFlight(*http, "20240102_030405_0001", small)->status, 200);
    EXPECT_FALSE(listedLight(server, "20240102_030405_0001"));
    ASSERT_TRUE(waitUntil([&] { return listedLight(server, "20240102_030405_0001"); }, 60000));
    EXPECT_EQ(sizeOf(flights / "20240102_030405_0001" / "proxy_480.mp4"), "320x180");
}

TEST(LightProxy, AStopMidEncodeLeavesNothingAndTheNextStartFinishesIt)
{
    auto first = std::make_unique<TestServer>(light);
    const fs::path library = first->library();
    const fs::path longFlight = flightWithProxy(first->sandbox() / "long", 1920, 1080, 20);
    const fs::path broken = first->sandbox() / "broken";
    fs::create_directories(broken);
    fs::copy_file(longFlight / "flight.json", broken / "flight.json");
    writeFile(broken / "proxy.mp4", "not a video at all");
    auto http = first->client();
    ASSERT_EQ(uploadFlight(*http, "20240102_030405_0004", broken)->status, 200);
    ASSERT_EQ(uploadFlight(*http, "20240102_030405_0005", longFlight)->status, 200);
    // Give the encoder time to start on the long one, then stop the server under it.
    QThread::msleep(1500);
    first->server().stop();
    EXPECT_FALSE(fs::exists(library / "flights" / "20240102_030405_0005" / "proxy_480.mp4"));
    EXPECT_TRUE(fs::is_empty(library / "tmp")) << "the part file went with the stop";

    // The same library served again: the sweep at start finds the flight still without one.
    TestServer second([&](ServerConfig &c) {
        c.library = library;
        c.lightProxies = true;
    });
    ASSERT_TRUE(waitUntil([&] { return listedLight(second, "20240102_030405_0005"); }, 180000));
    EXPECT_EQ(sizeOf(library / "flights" / "20240102_030405_0005" / "proxy_480.mp4"), "854x480");
    // A source with one keyframe in 20 s gets one a second, which is what keeps a jog fluid.
    EXPECT_LE(longestKeyframeGap(library / "flights" / "20240102_030405_0005" / "proxy_480.mp4"), 1.05);
    // A proxy ffmpeg can't read gets none, and holds nothing up.
    EXPECT_FALSE(listedLight(second, "20240102_030405_0004"));
    EXPECT_FALSE(fs::exists(library / "flights" / "20240102_030405_0004" / "proxy_480.mp4"));
    EXPECT_EQ(second.client()->Get("/flights/20240102_030405_0004/proxy.mp4")->status, 200);
}
