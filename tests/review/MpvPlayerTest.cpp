// The libmpv player without video or sound, streaming real proxies from a token-guarded library
// server: loading with and without the library's header, playing, seeking and its completions,
// time observers, and files that are not videos at all.
#include "CoroTest.h"
#include "MpvPlayer.h"
#include "PlaybackLibrary.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>

#include <cmath>
#include <memory>
#include <vector>

namespace {

class MpvPlayerTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite() { library = new PlaybackLibrary(); }
    static void TearDownTestSuite()
    {
        delete library;
        library = nullptr;
    }

    /// Opens `url` with the library's header and waits for its first frame.
    void open(const QUrl &url)
    {
        QSignalSpy ready(&player, &VideoPlayer::firstFrameReady);
        player.replaceItem(url, library->headers());
        ASSERT_TRUE(ready.wait(20000)) << "no first frame of " << url.toString().toStdString();
    }

    /// Seeks and waits for the completion; how it ended, or nothing when it never came.
    std::optional<bool> seekAndWait(double time, double tolerance = 0)
    {
        std::optional<bool> result;
        player.seek(time, tolerance, tolerance, [&](bool finished) { result = finished; });
        waitUntil([&] { return result.has_value(); }, 20000);
        return result;
    }

    static inline PlaybackLibrary *library = nullptr;
    MpvPlayer player{MpvPlayer::Output::Headless};
};

TEST_F(MpvPlayerTest, OpensOverHttpOnlyWithTheLibrarysAuthorisation)
{
    // Without the header the server answers 401, which is a failure in mpv's words.
    QSignalSpy failed(&player, &VideoPlayer::loadFailed);
    QSignalSpy ready(&player, &VideoPlayer::firstFrameReady);
    player.replaceItem(library->good(), {});
    ASSERT_TRUE(failed.wait(20000));
    EXPECT_FALSE(failed.first().first().toString().isEmpty());
    EXPECT_EQ(ready.count(), 0);
    EXPECT_TRUE(std::isnan(player.duration()));
    EXPECT_TRUE(std::isnan(player.currentTime()));

    // With it the file opens, paused at 0, and its length is known.
    QSignalSpy durationChanged(&player, &VideoPlayer::durationChanged);
    open(library->good());
    EXPECT_EQ(player.currentUrl(), library->good());
    EXPECT_NEAR(player.duration(), PlaybackLibrary::seconds, PlaybackLibrary::frame);
    EXPECT_GE(durationChanged.count(), 1);
    EXPECT_NEAR(player.currentTime(), 0.0, 1e-6);
    EXPECT_FALSE(player.isPlaying());
    EXPECT_EQ(failed.count(), 1);
}

TEST_F(MpvPlayerTest, PlaysPausesAndStopsOnTheLastFrame)
{
    open(library->good());
    QSignalSpy playing(&player, &VideoPlayer::playingChanged);
    player.play();
    EXPECT_TRUE(player.isPlaying());
    ASSERT_TRUE(waitUntil([&] { return player.currentTime() > 0.4; }, 10000));

    player.pause();
    EXPECT_FALSE(player.isPlaying());
    QTest::qWait(150);
    const double stopped = player.currentTime();
    QTest::qWait(300);
    EXPECT_NEAR(player.currentTime(), stopped, 1e-6) << "time went on while paused";
    EXPECT_EQ(playing.count(), 2);

    // At the end the player pauses by itself and keeps the file: it can still seek.
    ASSERT_EQ(seekAndWait(PlaybackLibrary::seconds - 0.3), true);
    player.play();
    ASSERT_TRUE(waitUntil([&] { return !player.isPlaying(); }, 10000)) << "still playing at the end";
    EXPECT_NEAR(player.currentTime(), PlaybackLibrary::seconds, 2 * PlaybackLibrary::frame);
    EXPECT_EQ(seekAndWait(1.0), true);
    EXPECT_NEAR(player.currentTime(), 1.0, PlaybackLibrary::frame);
}

TEST_F(MpvPlayerTest, SeeksLandWhereTheirTolerancesAllow)
{
    open(library->good());
    // Forwards, backwards, and to where the player already stands.
    for (const double target : {3.37, 1.02, 5.5, 0.0, 0.0}) {
        ASSERT_EQ(seekAndWait(target), true) << target;
        EXPECT_NEAR(player.currentTime(), target, PlaybackLibrary::frame) << target;
    }
    ASSERT_EQ(seekAndWait(2.5, 0.05), true);
    EXPECT_NEAR(player.currentTime(), 2.5, 0.05 + PlaybackLibrary::frame);

    // Seeking doesn't start playback, and a seek while playing keeps playing.
    EXPECT_FALSE(player.isPlaying());
    player.play();
    ASSERT_EQ(seekAndWait(1.0), true);
    EXPECT_TRUE(player.isPlaying());
}

TEST_F(MpvPlayerTest, OnlyTheLatestSeekLandsTheOthersCompleteWithFalse)
{
    std::vector<std::pair<int, bool>> completions;
    const auto note = [&](int which) { return [&completions, which](bool finished) { completions.emplace_back(which, finished); }; };

    // A seek made before the file has opened waits for it.
    player.replaceItem(library->good(), library->headers());
    player.seekExactly(4.0, note(1));
    ASSERT_TRUE(waitUntil([&] { return completions.size() == 1; }, 20000));
    EXPECT_EQ(completions.back(), std::make_pair(1, true));
    EXPECT_NEAR(player.currentTime(), 4.0, PlaybackLibrary::frame);

    // Three seeks in a row: the first two are replaced, in order, the last one lands.
    player.seekExactly(1.0, note(2));
    player.seekExactly(2.0, note(3));
    player.seek(3.0, 0.05, 0.05, note(4));
    ASSERT_TRUE(waitUntil([&] { return completions.size() == 4; }, 20000));
    EXPECT_EQ(completions[1], std::make_pair(2, false));
    EXPECT_EQ(completions[2], std::make_pair(3, false));
    EXPECT_EQ(completions[3], std::make_pair(4, true));
    EXPECT_NEAR(player.currentTime(), 3.0, 0.05 + PlaybackLibrary::frame);

    // A new file replaces a seek in flight.
    player.seekExactly(5.0, note(5));
    player.replaceItem(library->good(), library->headers());
    ASSERT_TRUE(waitUntil([&] { return completions.size() == 5; }, 20000));
    EXPECT_EQ(completions[4], std::make_pair(5, false));

    // Each completion comes once, and none comes late.
    QTest::qWait(500);
    EXPECT_EQ(completions.size(), 5u);
}

TEST_F(MpvPlayerTest, SeeksWithoutAFileCompleteWithFalseAndNoneOutliveThePlayer)
{
    std::optional<bool> beforeAnyFile;
    player.seekExactly(1.0, [&](bool finished) { beforeAnyFile = finished; });
    ASSERT_TRUE(waitUntil([&] { return beforeAnyFile.has_value(); }));
    EXPECT_FALSE(*beforeAnyFile);

    // A seek still pending when its player goes is never completed.
    auto doomed = std::make_unique<MpvPlayer>(MpvPlayer::Output::Headless);
    bool called = false;
    doomed->replaceItem(library->good(), library->headers());
    doomed->seekExactly(2.0, [&](bool) { called = true; });
    doomed->seekExactly(3.0, [&](bool) { called = true; });  // the first one's false is queued now
    doomed.reset();
    QTest::qWait(300);
    EXPECT_FALSE(called);
}

TEST_F(MpvPlayerTest, TimeObserversTickUntilRemovedOrTheirContextIsGone)
{
    open(library->good());
    player.play();
    QObject screen;
    auto lightbox = std::make_unique<QObject>();
    std::vector<double> ticks, lightboxTicks;
    int selfRemoving = 0;
    const auto id = player.addPeriodicTimeObserver(0.1, &screen, [&](double t) { ticks.push_back(t); });
    player.addPeriodicTimeObserver(0.1, lightbox.get(), [&](double) { lightboxTicks.push_back(0); });
    VideoPlayer::ObserverId once = 0;
    once = player.addPeriodicTimeObserver(0.05, &screen, [&](double) {
        ++selfRemoving;
        player.removeTimeObserver(once);
    });

    QTest::qWait(1000);
    // About ten a second, each with the playhead, which moves on.
    EXPECT_GE(ticks.size(), 7u);
    EXPECT_LE(ticks.size(), 12u);
    ASSERT_GE(ticks.size(), 2u);
    EXPECT_GT(ticks.back(), ticks.front());
    EXPECT_EQ(selfRemoving, 1);

    player.removeTimeObserver(id);
    lightbox.reset();
    const auto seen = ticks.size();
    const auto lightboxSeen = lightboxTicks.size();
    EXPECT_GE(lightboxSeen, 7u);
    QTest::qWait(400);
    EXPECT_EQ(ticks.size(), seen);
    EXPECT_EQ(lightboxTicks.size(), lightboxSeen);
    EXPECT_EQ(selfRemoving, 1);
}

TEST_F(MpvPlayerTest, FilesThatAreNotWholeVideosFailWithoutHarm)
{
    // Random bytes: a failure in mpv's words, the length stays unknown, seeks complete false.
    QSignalSpy failed(&player, &VideoPlayer::loadFailed);
    std::optional<bool> seekOnCorrupt;
    player.replaceItem(library->corrupt(), library->headers());
    player.seekExactly(1.0, [&](bool finished) { seekOnCorrupt = finished; });
    ASSERT_TRUE(failed.wait(20000));
    EXPECT_FALSE(failed.first().first().toString().isEmpty());
    ASSERT_TRUE(waitUntil([&] { return seekOnCorrupt.has_value(); }));
    EXPECT_FALSE(*seekOnCorrupt);
    EXPECT_TRUE(std::isnan(player.duration()));
    EXPECT_FALSE(player.isPlaying());

    // Half a file whose index comes first opens with its whole length; a seek past the cut
    // still completes, and playing into the cut stops instead of hanging.
    player.replaceItem(library->truncated(), library->headers());
    QSignalSpy ready(&player, &VideoPlayer::firstFrameReady);
    ASSERT_TRUE(ready.wait(20000));
    EXPECT_NEAR(player.duration(), PlaybackLibrary::seconds, PlaybackLibrary::frame);
    EXPECT_TRUE(seekAndWait(PlaybackLibrary::seconds - 0.5).has_value());
    ASSERT_EQ(seekAndWait(1.0), true);
    player.play();
    EXPECT_TRUE(waitUntil([&] { return !player.isPlaying(); }, 15000)) << "still playing past the cut";

    // The same player then plays a good file.
    open(library->good());
    EXPECT_EQ(seekAndWait(2.0), true);
}

} // namespace
