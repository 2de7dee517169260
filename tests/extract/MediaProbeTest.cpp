#include "MediaProbe.h"
#include "ToolLocator.h"

#include "Printers.h"

#include <CoroTest.h>
#include <Fixtures.h>

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <thread>

using MediaProbe::readFormat;
using MediaProbe::readVideo;

TEST(MediaProbeReading, VideoLineWithRotation)
{
    EXPECT_EQ(readVideo("1920,1080,-90\n"), (FlightVideo{1080, 1920, true}));
    EXPECT_EQ(readVideo("3840,2160,180\n"), (FlightVideo{3840, 2160, false}));
    EXPECT_EQ(readVideo("1080,1920\n"), (FlightVideo{1080, 1920, true}));
    EXPECT_EQ(readVideo("1080,1080\n"), (FlightVideo{1080, 1080, false}));
    EXPECT_EQ(readVideo("1920,1080,,x,270\n"), (FlightVideo{1080, 1920, true})); // unreadable fields dropped
    EXPECT_EQ(readVideo("\n1920,1080\n640,480,90\n"), (FlightVideo{1920, 1080, false}));  // first line only
    EXPECT_FALSE(readVideo("").has_value());
    EXPECT_FALSE(readVideo("1920\n").has_value());
    EXPECT_FALSE(readVideo("wide,1080\n").has_value());
}

TEST(MediaProbeReading, FormatJson)
{
    const auto info = readFormat(R"({"format":{"duration":"12.500000","tags":{"encoder":"  DJI Mini 4 Pro ",)"
                                 R"("creation_time":"2024-01-02T03:04:05.000000Z"}}})");
    EXPECT_EQ(info.encoder, QStringLiteral("DJI Mini 4 Pro"));
    EXPECT_EQ(info.duration, 12.5);
    EXPECT_EQ(info.creationTime, QStringLiteral("2024-01-02T03:04:05.000000Z"));
    // "format" without "tags" still gives the duration; bad pieces are simply unknown.
    EXPECT_EQ(readFormat(R"({"format":{"duration":"3"}})"), (MediaInfo{std::nullopt, 3.0, std::nullopt}));
    EXPECT_EQ(readFormat(R"({"format":{"duration":3,"tags":{"encoder":" ","creation_time":5}}})"), MediaInfo{});
    EXPECT_EQ(readFormat(R"({"format":{"duration":"3 s"}})"), MediaInfo{});
    EXPECT_EQ(readFormat(R"({"format":[]})"), MediaInfo{});
    EXPECT_EQ(readFormat("[1]"), MediaInfo{});
    EXPECT_EQ(readFormat("garbage"), MediaInfo{});
}

TEST(MediaProbe, RealFilesThroughFfprobe)
{
    QTemporaryDir dir;
    const QString ffprobe = *ToolLocator::ffprobe();
    const QString clip = dir.filePath(QStringLiteral("-i.mp4")); // a name that reads like an option
    Fixtures::ClipOptions o;
    o.seconds = 1.5;
    o.rotation = -90;
    o.encoder = QStringLiteral("DJI Mini 4 Pro");
    o.creationTime = QStringLiteral("2024-01-02T03:04:05.000000Z");
    ASSERT_TRUE(Fixtures::makeClip(clip, o).ok());

    const MediaInfo info = run(MediaProbe::probeFormat(ffprobe, clip));
    EXPECT_EQ(info.encoder, QStringLiteral("DJI Mini 4 Pro"));
    EXPECT_NEAR(*info.duration, 1.5, 0.01);
    EXPECT_EQ(info.creationTime, o.creationTime);
    EXPECT_EQ(run(MediaProbe::probeVideo(ffprobe, clip)), (FlightVideo{240, 320, true}));

    // Not media, or no file at all: nothing is known, nothing fails.
    const QString text = dir.filePath(QStringLiteral("notes.mp4"));
    ASSERT_TRUE(Fixtures::writeFile(text, "just text").ok());
    EXPECT_EQ(run(MediaProbe::probeFormat(ffprobe, text)), MediaInfo{});
    EXPECT_FALSE(run(MediaProbe::probeVideo(ffprobe, text)).has_value());
    EXPECT_EQ(run(MediaProbe::probeFormat(ffprobe, dir.filePath(QStringLiteral("gone.mp4")))), MediaInfo{});

    // The blocking forms give the same answers on a worker thread.
    MediaInfo blockingInfo;
    std::optional<FlightVideo> blockingVideo;
    std::thread worker([&] {
        blockingInfo = MediaProbe::probeFormatBlocking(ffprobe, clip);
        blockingVideo = MediaProbe::probeVideoBlocking(ffprobe, clip);
    });
    worker.join();
    EXPECT_EQ(blockingInfo, info);
    EXPECT_EQ(blockingVideo, (FlightVideo{240, 320, true}));
}
