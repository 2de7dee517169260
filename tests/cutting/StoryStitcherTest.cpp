// The story stitch with real ffmpeg: its length, its size (from the first clip, rotation
// included), the music bed that loops when short, and what a bad clip stops before ffmpeg.
#include "CutTestKit.h"

#include <StoryStitcher.h>

#include <CoroTest.h>
#include <CutOriginals.h>
#include <Fixtures.h>

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

using namespace CutTestKit;

namespace {

class StoryStitcherTest : public ::testing::Test
{
protected:
    QString original(const QString &name, const Fixtures::OriginalOptions &o)
    {
        const QString path = dir.filePath(name);
        EXPECT_TRUE(Fixtures::makeOriginal(path, o).ok());
        return path;
    }
    Result<void> stitch(const QStringList &clips, std::optional<QString> bed, const QString &output, bool vertical)
    {
        return run(StoryStitcher::stitchStory(clips, bed, output, vertical, 0.5, 0.75,
                                              [this](double p) { progress << p; }, std::make_shared<CancelToken>()));
    }

    QTemporaryDir dir;
    QList<double> progress;
};

} // namespace

TEST_F(StoryStitcherTest, ClipsOfAnyShapeJoinIntoTheFirstOnesSizeAndTheStorysLength)
{
    // The first clip is filmed 320 × 240 but displays turned: the story is portrait.
    // Whole frames everywhere (0.5 s is 15 frames at 30 a second), so the length can be exact.
    const QString portrait = original("a.mp4", {2.0, 320, 240, 30, 30, true, 90, "ultrafast"});
    const QString landscape = original("b.mp4", {1.5, 320, 240, 30, 30, true, std::nullopt, "ultrafast"});
    const QString story = dir.filePath("story.mp4");
    const auto made = stitch({portrait, landscape}, std::nullopt, story, false);
    ASSERT_TRUE(made.ok()) << made.errorText().toStdString();

    EXPECT_EQ(displaySize(story), QSize(240, 320));
    EXPECT_NEAR(streamDuration(story, "v:0").value_or(0), 2.0 + 1.5 - 0.5, 1.0 / 30 + 1e-3);
    EXPECT_FALSE(streamDuration(story, "a:0").has_value());  // the clips' own sound is never used
    ASSERT_FALSE(progress.isEmpty());
    EXPECT_LE(progress.last(), 1.0);
}

TEST_F(StoryStitcherTest, AVertical4KStoryKeepsTheHeightAndLoopsAShortBed)
{
    const QString uhd = original("uhd.mp4", {1.0, 3840, 2160, 10, 10, false, std::nullopt, "ultrafast"});
    const QString bed = dir.filePath("bed.m4a");
    ASSERT_TRUE(Fixtures::makeBed(bed, 0.4).ok());
    const QString story = dir.filePath("story_vertical.mp4");
    const auto made = stitch({uhd}, bed, story, true);
    ASSERT_TRUE(made.ok()) << made.errorText().toStdString();

    EXPECT_EQ(displaySize(story), QSize(1214, 2160));
    // A single clip has no crossfade: the story is the clip's length, and the bed fills it.
    EXPECT_NEAR(streamDuration(story, "v:0").value_or(0), 1.0, 0.1);
    EXPECT_NEAR(streamDuration(story, "a:0").value_or(0), 1.0, 0.05);
}

TEST_F(StoryStitcherTest, AClipWithoutADurationStopsItBeforeFfmpeg)
{
    const QString good = original("good.mp4", {1.0, 160, 120, 25, 25, false, std::nullopt, "ultrafast"});
    const QString broken = dir.filePath("broken.mp4");
    ASSERT_TRUE(Fixtures::writeFile(broken, "not a video").ok());
    const QString story = dir.filePath("story.mp4");

    const auto made = stitch({good, broken}, std::nullopt, story, false);
    ASSERT_FALSE(made.ok());
    EXPECT_EQ(made.errorText(), QStringLiteral("stitch exited -1:\nbroken.mp4 has no readable duration"));
    EXPECT_FALSE(QFile::exists(story));
    EXPECT_EQ(stitch({}, std::nullopt, story, false).errorText(), QStringLiteral("stitch exited -1:\nno clips to stitch"));
}
