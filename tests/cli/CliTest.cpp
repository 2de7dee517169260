// aeroloom-cli as a user runs it: the real executable, real tools, files made on the spot.
#include <FlightFile.h>
#include <ProcessRunner.h>
#include <SrtReader.h>

#include <DjiTelemetry.h>
#include <Fixtures.h>
#include <TestPaths.h>

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <nlohmann/json.hpp>

namespace {

ProcessResult cli(const QStringList &args)
{
    const auto result = ProcessRunner::runBlocking(QStringLiteral(AEROLOOM_CLI), args);
    EXPECT_TRUE(result.ok()) << result.errorText().toStdString();
    return result.ok() ? *result : ProcessResult{-99, {}, {}};
}

class CliTest : public ::testing::Test
{
protected:
    QString clip(const QString &name, const Fixtures::ClipOptions &o = {})
    {
        const QString path = dir.filePath(name);
        EXPECT_TRUE(Fixtures::makeClip(path, o).ok());
        return path;
    }
    QTemporaryDir dir;
};

} // namespace

TEST_F(CliTest, HelpListsEveryCommand)
{
    const auto help = cli({QStringLiteral("--help")});
    EXPECT_EQ(help.status, 0);
    for (const char *name : {"id", "probe", "telemetry"})
        EXPECT_TRUE(help.stdOut.contains(QByteArray("\n  ") + name + ' ')) << name;
    const auto usage = cli({QStringLiteral("telemetry"), QStringLiteral("--help")});
    EXPECT_EQ(usage.status, 0);
    EXPECT_TRUE(usage.stdOut.startsWith("usage: aeroloom-cli telemetry CLIP [--srt SIDECAR]"));
    const auto unknown = cli({QStringLiteral("fly")});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_TRUE(unknown.stdErr.contains(QStringLiteral("unknown command “fly”")));
}

TEST_F(CliTest, IdNamesEachFileAndFallsBackOnRequest)
{
    const QString plain = clip(QStringLiteral("clip one.mp4"), Fixtures::ClipOptions{
        1.0, 160, 120, 10, QStringLiteral("2024-01-02T03:04:05.000000Z"), std::nullopt, std::nullopt, false});
    const auto named = cli({QStringLiteral("id"), QStringLiteral("/x/DJI_20240102030405_0007_D.MP4"), plain});
    EXPECT_EQ(named.status, 0);
    const QStringList lines = QString::fromUtf8(named.stdOut).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines[0].startsWith(QStringLiteral("20240102_030405_0007\t2024-01-02T03:04:05")));
    EXPECT_EQ(lines[1], QStringLiteral("clip one\t-\t") + plain);

    const auto fallback = cli({QStringLiteral("id"), QStringLiteral("--fallback"), plain});
    EXPECT_TRUE(fallback.stdOut.startsWith("20240102_030405_")) << fallback.stdOut.toStdString();
    EXPECT_TRUE(fallback.stdOut.contains("\t2024-01-02T03:04:05Z\t"));
}

TEST_F(CliTest, ProbePrintsFormatAndVideoFacts)
{
    Fixtures::ClipOptions o;
    o.rotation = 90;
    o.encoder = QStringLiteral("DJI Air 3");
    const auto out = cli({QStringLiteral("probe"), clip(QStringLiteral("-i.mp4"), o)});
    ASSERT_EQ(out.status, 0) << out.stdErr.toStdString();
    const auto json = nlohmann::json::parse(out.stdOut.toStdString());
    EXPECT_EQ(json["format"]["encoder"], "DJI Air 3");
    EXPECT_NEAR(json["format"]["duration"].get<double>(), 2.0, 0.05);
    EXPECT_TRUE(json["format"]["creationTime"].is_null());
    EXPECT_EQ(json["video"], (nlohmann::json{{"w", 240}, {"h", 320}, {"vertical", true}}));
}

TEST_F(CliTest, TelemetryPrintsTheFlightFileExactly)
{
    const QString video = clip(QStringLiteral("DJI_0001.MP4"));
    const QString srt = TestPaths::realData(QStringLiteral("python_DJI_SRT_parser/DJI_0023.SRT"));
    const auto out = cli({QStringLiteral("telemetry"), video, QStringLiteral("--srt"), srt});
    ASSERT_EQ(out.status, 0) << out.stdErr.toStdString();
    EXPECT_TRUE(out.stdErr.isEmpty());
    // The bytes are the flight file: nothing before, nothing after.
    auto expected = TelemetryParser::parseSRTFile(srt, QStringLiteral("Lavf59.27.100"), 2.0, QStringLiteral("DJI_0001.MP4"));
    ASSERT_TRUE(expected.ok());
    const auto decoded = FlightFile::decode(out.stdOut);
    ASSERT_TRUE(decoded.ok());
    EXPECT_EQ(decoded->meta.samples, 1203);
    EXPECT_EQ(decoded->meta.source, QStringLiteral("DJI_0001.MP4"));
    EXPECT_EQ(decoded->track, expected->track);
    EXPECT_EQ(decoded->meta.pathLength, expected->meta.pathLength);
    EXPECT_EQ(out.stdOut, *FlightFile::encode(*decoded));

    // Without telemetry: a video is a flight with an empty track.
    const auto bare = cli({QStringLiteral("telemetry"), video});
    ASSERT_EQ(bare.status, 0);
    EXPECT_EQ(FlightFile::decode(bare.stdOut)->meta.samples, 0);
}

TEST_F(CliTest, TelemetryFailuresAreWordsOnStandardError)
{
    const QString lrf = clip(QStringLiteral("DJI_0002.LRF"));
    const auto none = cli({QStringLiteral("telemetry"), lrf});
    EXPECT_EQ(none.status, 1);
    EXPECT_TRUE(none.stdOut.isEmpty());
    EXPECT_EQ(none.stdErr, QStringLiteral("No GPS telemetry found in DJI_0002.LRF — is this a DJI clip?\n"));

    const auto zeros = cli({QStringLiteral("telemetry"), lrf, QStringLiteral("--srt"),
                            TestPaths::realData(QStringLiteral("DJI_SRT_Parser/broken_empty.SRT"))});
    EXPECT_EQ(zeros.status, 1);

    const auto missing = cli({QStringLiteral("telemetry"), dir.filePath(QStringLiteral("gone.MP4"))});
    EXPECT_EQ(missing.status, 1);
    EXPECT_TRUE(missing.stdErr.endsWith(QStringLiteral("gone.MP4: no such file\n")));
}

TEST_F(CliTest, EveryFileOfASyntheticCard)
{
    const auto card = Fixtures::makeCard(dir.path());
    ASSERT_TRUE(card.ok()) << card.errorText().toStdString();
    const auto ids = cli({QStringLiteral("id"), QStringLiteral("--fallback"), card->lowRes, card->fullRes, card->plain});
    const QStringList lines = QString::fromUtf8(ids.stdOut).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 3);
    EXPECT_EQ(lines[0].section(QLatin1Char('\t'), 0, 0), lines[1].section(QLatin1Char('\t'), 0, 0)); // twins share an id
    EXPECT_TRUE(lines[2].startsWith(QStringLiteral("20240102_032000_")));

    const auto lowRes = FlightFile::decode(cli({QStringLiteral("telemetry"), card->lowRes}).stdOut);
    ASSERT_TRUE(lowRes.ok());
    EXPECT_EQ(lowRes->meta.model, QStringLiteral("DJI Mini 4 Pro"));
    EXPECT_EQ(lowRes->meta.samples, 20);
    const auto sidecar = FlightFile::decode(
        cli({QStringLiteral("telemetry"), card->withSidecar, QStringLiteral("--srt"), card->sidecar}).stdOut);
    ASSERT_TRUE(sidecar.ok());
    EXPECT_EQ(sidecar->meta.samples, 20);
    EXPECT_EQ(sidecar->meta.model, QStringLiteral("DJI Mini 4 Pro"));
}
