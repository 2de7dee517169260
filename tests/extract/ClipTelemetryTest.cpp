#include "ClipTelemetry.h"
#include "ExifToolReader.h"
#include "ProcessError.h"
#include "TelemetryError.h"

#include "Printers.h"
#include "TestTools.h"

#include <CoroTest.h>
#include <DjiTelemetry.h>
#include <Fixtures.h>

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTimer>

namespace {

class ClipTelemetryTest : public ::testing::Test
{
protected:
    QString clip(const QString &name, Fixtures::ClipOptions o = {})
    {
        const QString path = dir.filePath(name);
        const auto made = Fixtures::makeClip(path, o);
        EXPECT_TRUE(made.ok()) << made.errorText().toStdString();
        return path;
    }

    QTemporaryDir dir;
};

} // namespace

TEST_F(ClipTelemetryTest, VideoWithoutTelemetryThroughTheBundledExifTool)
{
    Fixtures::ClipOptions o;
    o.encoder = QStringLiteral("Pocket Cam");
    o.creationTime = QStringLiteral("2024-05-06T07:08:09.000000Z");
    o.audio = true;
    // Quotes, spaces and letters beyond ASCII reach both tools intact.
    const QString path = clip(QStringLiteral("it's a \"test\" — Zürich.MP4"), o);

    const auto json = run(TelemetryParser::runExifTool(*ToolLocator::findExifTool(), path));
    ASSERT_TRUE(json.ok()) << json.errorText().toStdString();
    EXPECT_TRUE(json->contains("\"Main:Encoder\": \"Pocket Cam\""));
    EXPECT_EQ(TelemetryParser::parseExifTool(*json, QStringLiteral("x")).failure().code, TelemetryError::NoTelemetry);

    const auto d = run(ClipTelemetry::read(path, std::nullopt));
    ASSERT_TRUE(d.ok()) << d.errorText().toStdString();
    EXPECT_EQ(d->meta.model, QStringLiteral("Pocket Cam"));
    EXPECT_NEAR(d->meta.duration, 2.0, 0.05);
    EXPECT_EQ(d->meta.samples, 0);
    EXPECT_TRUE(d->track.empty());
    EXPECT_EQ(d->meta.created, o.creationTime);
    EXPECT_EQ(d->meta.source, QStringLiteral("it's a \"test\" — Zürich.MP4"));
    EXPECT_FALSE(d->meta.bounds.has_value());
}

TEST_F(ClipTelemetryTest, LowResolutionFileWithoutTelemetryFails)
{
    const QString path = clip(QStringLiteral("-i.LRF"));
    const auto d = run(ClipTelemetry::read(path, std::nullopt));
    ASSERT_FALSE(d.ok());
    EXPECT_EQ(d.errorText(), QStringLiteral("No GPS telemetry found in -i.LRF — is this a DJI clip?"));
}

TEST_F(ClipTelemetryTest, SidecarGivesTheTrackAndTheProbeGivesModelAndDuration)
{
    Fixtures::ClipOptions o;
    o.encoder = QStringLiteral("DJI Mini 4 Pro");
    const QString path = clip(QStringLiteral("DJI_20240102030405_0001_D.MP4"), o);
    const QString srt = dir.filePath(QStringLiteral("DJI_20240102030405_0001_D.SRT"));
    ASSERT_TRUE(Fixtures::writeFile(srt, Fixtures::srtText(Fixtures::straightPath(20))).ok());
    const auto d = run(ClipTelemetry::read(path, srt));
    ASSERT_TRUE(d.ok()) << d.errorText().toStdString();
    EXPECT_EQ(d->meta.samples, 20);
    EXPECT_EQ(d->meta.model, QStringLiteral("DJI Mini 4 Pro"));
    EXPECT_NEAR(d->meta.duration, 2.0, 0.05);
    EXPECT_NEAR(d->meta.maxSpeed, 5.0, 0.5); // six decimals of a degree are ~8 cm
    EXPECT_FALSE(d->meta.created.has_value()); // only flights without telemetry carry it

    // A sidecar full of binary garbage is a video without telemetry, not a crash.
    QByteArray garbage(200000, '\0');
    for (int i = 0; i < garbage.size(); ++i)
        garbage[i] = static_cast<char>((i * 7919 + 13) % 251);
    ASSERT_TRUE(writeBytes(srt, garbage));
    const auto g = run(ClipTelemetry::read(path, srt));
    ASSERT_FALSE(g.ok()); // not UTF-8: a read error, which fails the step
    EXPECT_FALSE(TelemetryError::is(g.failure()));
}

TEST_F(ClipTelemetryTest, EmptyClipIsAVideoWithNothingKnown)
{
    const QString path = dir.filePath(QStringLiteral("empty.MP4"));
    ASSERT_TRUE(writeBytes(path, QByteArray()));
    const auto d = run(ClipTelemetry::read(path, std::nullopt));
    ASSERT_TRUE(d.ok()) << d.errorText().toStdString();
    EXPECT_EQ(d->meta.model, QStringLiteral("DJI"));
    EXPECT_EQ(d->meta.duration, 0);
    EXPECT_FALSE(d->meta.created.has_value());
}

TEST_F(ClipTelemetryTest, ExifToolThatHangsIsEndedByCancellation)
{
    const QString fake = writeScript(dir.filePath(QStringLiteral("exiftool")), "sleep 60\n");
    ScopedEnv env(ToolLocator::exiftoolEnv, fake);
    const QString path = clip(QStringLiteral("a.MP4"));
    CancelToken token;
    QTimer::singleShot(200, &token, &CancelToken::cancel);
    QElapsedTimer clock;
    clock.start();
    const auto json = run(TelemetryParser::runExifTool(*ToolLocator::findExifTool(), path, &token));
    EXPECT_LT(clock.elapsed(), 10000);
    ASSERT_FALSE(json.ok());
    EXPECT_EQ(json.failure().domain, ProcessError::domain);
    EXPECT_TRUE(json.errorText().startsWith(QStringLiteral("exiftool exited ")));
}

TEST_F(ClipTelemetryTest, ExifToolStatusCountsOnlyWithoutOutput)
{
    const QString path = clip(QStringLiteral("a.MP4"));
    // Output and a non-zero status: the output is read.
    const QString talkative = writeScript(
        dir.filePath(QStringLiteral("talkative")),
        "echo '[{\"Doc1:GPSLatitude\":\"47 deg 30'\"'\"' 0.00\\\" N\",\"Doc1:GPSLongitude\":8.5,\"Doc1:SampleTime\":\"0 s\"}]'\n"
        "echo 'Warning: minor trouble' >&2; exit 1\n");
    {
        ScopedEnv env(ToolLocator::exiftoolEnv, talkative);
        const auto d = run(ClipTelemetry::read(path, std::nullopt));
        ASSERT_TRUE(d.ok()) << d.errorText().toStdString();
        ASSERT_EQ(d->track.size(), 1u);
        EXPECT_EQ(d->track[0].lat, 47.5);
    }
    // No output: the status and the tail of standard error are the words, for a video too.
    const QString broken = writeScript(dir.filePath(QStringLiteral("broken")),
                                       "printf 'one\\ntwo\\nthree\\nfour\\nfive\\n' >&2; exit 7\n");
    ScopedEnv env(ToolLocator::exiftoolEnv, broken);
    const auto d = run(ClipTelemetry::read(path, std::nullopt));
    ASSERT_FALSE(d.ok());
    EXPECT_EQ(d.errorText(), QStringLiteral("exiftool exited 7:\ntwo\nthree\nfour\nfive"));
}

TEST_F(ClipTelemetryTest, EmbeddedDjiTrackDecodedByTheBundledExifTool)
{
    const QString path = dir.filePath(QStringLiteral("DJI_20240102030405_0003_D.MP4"));
    std::vector<Fixtures::DjiSample> samples;
    for (const Fixtures::Cue &cue : Fixtures::straightPath(25)) {
        Fixtures::DjiSample s;
        s.cue = cue;
        s.yaw = -45.5;
        s.gimbalPitch = -30;
        s.shutterDen = 240;
        samples.push_back(s);
    }
    ASSERT_TRUE(Fixtures::makeClip(path, Fixtures::ClipOptions{3.0, 160, 120, 10, std::nullopt, std::nullopt, std::nullopt, false}).ok());
    ASSERT_TRUE(Fixtures::addDjiTelemetry(path, samples).ok());

    const auto d = run(ClipTelemetry::read(path, std::nullopt));
    ASSERT_TRUE(d.ok()) << d.errorText().toStdString();
    EXPECT_EQ(d->meta.model, QStringLiteral("DJI Mini 4 Pro"));
    ASSERT_EQ(d->track.size(), samples.size());
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const TelemetrySample &got = d->track[i];
        const Fixtures::Cue &want = samples[i].cue;
        SCOPED_TRACE(i);
        EXPECT_NEAR(got.t, want.t, 0.006);           // exiftool prints two decimals
        EXPECT_NEAR(got.lat, want.lat, 0.01 / 3600); // and hundredths of an arc second
        EXPECT_NEAR(got.lon, want.lon, 0.01 / 3600);
        EXPECT_NEAR(*got.relAlt, want.relAlt, 1e-3);
        EXPECT_NEAR(*got.absAlt, want.absAlt, 1e-3);
        EXPECT_EQ(got.yaw, -45.5);
        EXPECT_EQ(got.gimbalPitch, -30);
        EXPECT_EQ(got.shutter, RawJSON::text(QStringLiteral("1/240")));
        EXPECT_EQ(got.fnum, 1.7);
    }
    EXPECT_NEAR(d->meta.pathLength, 5.0 * 2.4, 0.5);
    // The video facts of the clip are untouched by the added track.
    EXPECT_NEAR(d->meta.duration, 3.0, 0.05);
}

TEST_F(ClipTelemetryTest, TelemetryOfANewerLayoutIsNamedAsUnknown)
{
    const QString path = dir.filePath(QStringLiteral("DJI_0004.LRF"));
    ASSERT_TRUE(Fixtures::makeClip(path).ok());
    std::vector<Fixtures::DjiSample> samples(3);
    for (int i = 0; i < 3; ++i)
        samples[static_cast<std::size_t>(i)].cue = Fixtures::straightPath(3)[static_cast<std::size_t>(i)];
    ASSERT_TRUE(Fixtures::addDjiTelemetry(path, samples, QStringLiteral("DJI Air 9"), QStringLiteral("dvtm_Air9")).ok());
    const auto d = run(ClipTelemetry::read(path, std::nullopt));
    ASSERT_FALSE(d.ok());
    EXPECT_EQ(d.errorText(),
              QStringLiteral("DJI_0004.LRF: telemetry format dvtm_Air9.proto is not decoded by exiftool yet (new DJI model?)"));
}
