// `aeroloom-cli cut` as a pilot runs it: the real executable against a real library, with
// originals on two cards; its lines, its exit status, and what Ctrl-C leaves behind.
#include "CutTestKit.h"

#include <ProcessRunner.h>

#include <CutOriginals.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

#include <csignal>

using namespace CutTestKit;
using nlohmann::json;

namespace {

class CutCli : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QDir().mkpath(dir.filePath("A"));
        QDir().mkpath(dir.filePath("B"));
        ASSERT_TRUE(Fixtures::makeOriginal(dir.filePath("A/DJI_0001.MP4"), {2.0, 160, 120, 25, 25, true, std::nullopt, "ultrafast"}).ok());
        ASSERT_TRUE(Fixtures::makeOriginal(dir.filePath("B/DJI_0002.MOV"), {2.0, 160, 120, 25, 25, true, std::nullopt, "ultrafast"}).ok());
        library.addFlight("f1", "DJI_0001.MP4");
        library.addFlight("f2", "DJI_0002.MP4");
        library.addFlight("f3", "DJI_0003.MP4");
        library.addTrack("01.Bed.m4a", 3);
    }
    ProcessResult cli(QStringList args)
    {
        args.prepend(QStringLiteral("cut"));
        args << QStringLiteral("--server") << library.base();
        const auto result = ProcessRunner::runBlocking(QStringLiteral(AEROLOOM_CLI), args);
        EXPECT_TRUE(result.ok());
        return result.ok() ? *result : ProcessResult{-99, {}, {}};
    }

    StoryLibrary library;
    QTemporaryDir dir;
};

} // namespace

TEST_F(CutCli, CutsAndStitchesAStoryFromTwoCards)
{
    const std::string id = library.addStory("Two Cards", json::array({{{"flightId", "f1"}, {"in", 0.2}, {"out", 1.2}, {"label", "a"}},
                                                                      {{"flightId", "f2"}, {"in", 0.5}, {"out", 1.5}, {"label", "b"}}}));
    const auto made = cli({"--story", "Two Cards", "--originals", dir.filePath("A"), "--originals", dir.filePath("B"),
                           "--out", dir.filePath("out"), "--fast", "--stitch", "--music", "none"});
    const QString out = QString::fromUtf8(made.stdOut);
    EXPECT_EQ(made.status, 0) << out.toStdString() << made.stdErr.toStdString();
    EXPECT_TRUE(out.startsWith("two-cards_01.mp4\tReady\ntwo-cards_02.mp4\tReady\n")) << out.toStdString();
    EXPECT_TRUE(out.contains("two-cards_01.mp4\tDone\n"));
    EXPECT_TRUE(out.contains("two-cards_02.mp4\tDone\n"));
    EXPECT_TRUE(out.endsWith("two-cards_story.mp4\tDone\n")) << out.toStdString();
    EXPECT_TRUE(QFile::exists(dir.filePath("out/two-cards/two-cards_story.mp4")));

    // Run again by id: both are there already, which counts as cut.
    const auto again = cli({"--story", QString::fromStdString(id), "--originals", dir.filePath("A"), "--originals",
                            dir.filePath("B"), "--out", dir.filePath("out")});
    EXPECT_EQ(again.status, 0) << again.stdErr.toStdString();
    EXPECT_EQ(QString::fromUtf8(again.stdOut), "two-cards_01.mp4\tAlready cut\ntwo-cards_02.mp4\tAlready cut\n");
}

TEST_F(CutCli, AMissingOriginalOrStoryFailsTheRun)
{
    (void)library.addStory("Gaps", json::array({{{"flightId", "f1"}, {"in", 0.2}, {"out", 1.2}, {"label", "a"}},
                                                {{"flightId", "f3"}, {"in", 0.2}, {"out", 1.2}, {"label", "c"}}}));
    const auto gaps = cli({"--story", "Gaps", "--originals", dir.filePath("A"), "--out", dir.filePath("out"), "--fast"});
    EXPECT_EQ(gaps.status, 1);
    EXPECT_TRUE(gaps.stdOut.contains("gaps_02.mp4\tNo original\n")) << gaps.stdOut.toStdString();
    EXPECT_TRUE(gaps.stdOut.contains("gaps_01.mp4\tDone\n"));

    const auto unknown = cli({"--story", "Nowhere", "--originals", dir.filePath("A"), "--out", dir.filePath("out")});
    EXPECT_EQ(unknown.status, 1);
    EXPECT_EQ(unknown.stdErr, QStringLiteral("aeroloom-cli cut: there is no story “Nowhere” in the library\n"));
    const auto noFolder = cli({"--story", "Gaps", "--originals", dir.filePath("C"), "--out", dir.filePath("out")});
    EXPECT_EQ(noFolder.status, 1);
    EXPECT_TRUE(noFolder.stdErr.contains("no such folder"));
}

TEST_F(CutCli, CtrlCStopsFfmpegAndRemovesTheHalfCutClip)
{
    ASSERT_TRUE(Fixtures::makeOriginal(dir.filePath("A/DJI_0004.MP4"), {20.0, 640, 360, 25, 25, true, std::nullopt, "ultrafast"}).ok());
    library.addFlight("f4", "DJI_0004.MP4");
    (void)library.addStory("Long", json::array({{{"flightId", "f4"}, {"in", 0.5}, {"out", 19.5}, {"label", "long"}}}));

    QProcess process;
    process.start(QStringLiteral(AEROLOOM_CLI), {"cut", "--story", "Long", "--originals", dir.filePath("A"), "--out",
                                                 dir.filePath("out"), "--server", library.base()});
    ASSERT_TRUE(process.waitForStarted());
    QByteArray seen;
    // The first progress figure means ffmpeg is writing the clip.
    while (!seen.contains("%\n") && process.state() == QProcess::Running) {
        process.waitForReadyRead(200);
        seen += process.readAllStandardOutput();
    }
    ASSERT_TRUE(seen.contains("long_01.mp4\t")) << seen.toStdString();
    ::kill(static_cast<pid_t>(process.processId()), SIGINT);
    ASSERT_TRUE(process.waitForFinished(20000));
    EXPECT_EQ(process.exitCode(), 130);
    EXPECT_FALSE(QFile::exists(dir.filePath("out/long/long_01.mp4")));
}
