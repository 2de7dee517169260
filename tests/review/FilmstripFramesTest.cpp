// Filmstrip stills from real ffmpeg over the library's authorised HTTP: in order, bounded in
// size, nothing without the header, nothing from a file that isn't a video, nothing late.
#include "FilmstripFrames.h"

#include "CoroTest.h"
#include "PlaybackLibrary.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QSignalSpy>

namespace {
class FilmstripFramesTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite() { library = new PlaybackLibrary(); }
    static void TearDownTestSuite()
    {
        delete library;
        library = nullptr;
    }
    static QString ffmpegHeaders() { return library->headers().join("\r\n") + "\r\n"; }
    static QList<double> sixSlices() { return {0.5, 1.5, 2.5, 3.5, 4.5, 5.5}; }

    static inline PlaybackLibrary *library = nullptr;
    FilmstripFrames frames;
    QSignalSpy ready{&frames, &FilmstripFrames::frameReady};
    QSignalSpy finished{&frames, &FilmstripFrames::finished};
};
} // namespace

TEST_F(FilmstripFramesTest, StillsArriveInOrderNoTallerThanAsked)
{
    frames.start(library->good(), ffmpegHeaders(), sixSlices(), 90);
    ASSERT_TRUE(finished.wait(60000));
    ASSERT_EQ(ready.size(), 6);
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(ready[i][0].toInt(), i);
        QImage still;
        ASSERT_TRUE(still.loadFromData(ready[i][1].toByteArray(), "JPG")) << i;
        EXPECT_EQ(still.height(), 90);  // the 180-line proxy, brought down
        EXPECT_EQ(still.width(), 160);
    }

    // A bound above the video's own height doesn't blow it up.
    ready.clear();
    frames.start(library->good(), ffmpegHeaders(), {1.0}, 1000);
    ASSERT_TRUE(finished.wait(60000));
    ASSERT_EQ(ready.size(), 1);
    QImage still;
    ASSERT_TRUE(still.loadFromData(ready[0][1].toByteArray(), "JPG"));
    EXPECT_EQ(still.height(), 180);
}

TEST_F(FilmstripFramesTest, NothingComesWithoutTheLibrarysHeaderOrFromABrokenFile)
{
    frames.start(library->good(), {}, sixSlices(), 90);
    ASSERT_TRUE(finished.wait(60000));
    EXPECT_EQ(ready.size(), 0);

    frames.start(library->corrupt(), ffmpegHeaders(), sixSlices(), 90);
    ASSERT_TRUE(finished.wait(60000));
    EXPECT_EQ(ready.size(), 0);

    // A file cut half way gives the stills of the half that is there.
    frames.start(library->truncated(), ffmpegHeaders(), sixSlices(), 90);
    ASSERT_TRUE(finished.wait(60000));
    EXPECT_GE(ready.size(), 1);
    EXPECT_LT(ready.size(), 6);
}

TEST_F(FilmstripFramesTest, AStripThatGoesAwayGetsNothingLate)
{
    frames.start(library->good(), ffmpegHeaders(), sixSlices(), 90);
    ASSERT_TRUE(ready.wait(60000));  // one has come, more are on their way
    frames.cancel();
    const auto seen = ready.size();
    waitUntil([] { return false; }, 1500);
    EXPECT_EQ(ready.size(), seen);
    EXPECT_EQ(finished.size(), 0);
    EXPECT_FALSE(frames.running());

    // Destroyed in the middle of a run: the run ends quietly.
    auto doomed = std::make_unique<FilmstripFrames>();
    doomed->start(library->good(), ffmpegHeaders(), sixSlices(), 90);
    waitUntil([] { return false; }, 50);
    doomed.reset();
    waitUntil([] { return false; }, 1500);
}
