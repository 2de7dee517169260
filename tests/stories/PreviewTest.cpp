// Story preview on the real libmpv player (no window, no sound) streaming the proxies of a real
// library: the clips play in order from one player, and the file changes only with the flight.
#include "ReelMatch.h"
#include "ReelModel.h"
#include "SegmentPlayer.h"
#include "StoriesFixture.h"
#include "StoryPlayer.h"

#include "MpvPlayer.h"

#include <QSignalSpy>

#include <cmath>
#include <map>

namespace {

class StoryPreview : public StoriesFixture
{
protected:
    MpvPlayer player{MpvPlayer::Output::Headless};

    /// What the player showed while each clip was the current one: first and last tick time.
    struct Seen {
        double first = NAN;
        double last = NAN;
        int ticks = 0;
    };

    static ClipPreview clipOf(const char *flightId, double start, double end, const char *label)
    {
        ClipPreview c;
        c.flightId = QString::fromLatin1(flightId);
        c.start = start;
        c.end = end;
        c.label = QString::fromUtf8(label);
        return c;
    }
};

TEST_F(StoryPreview, PlaysClipsOfTwoFlightsInOrderAndSwapsTheFileOncePerFlightChange)
{
    // A story straight from a real library's items: two clips of the lagoon, then one of the ridge.
    run(store->reload());
    Project project;
    project.id = "p";
    for (const PoolClip &clip : store->pool())
        if (clip.clipId == "c1" || clip.clipId == "c2" || clip.clipId == "c3")
            project.items.append(ReelMatch::itemOf(clip));
    std::sort(project.items.begin(), project.items.end(), [](const ReelItem &a, const ReelItem &b) { return a.clipId < b.clipId; });
    ReelModel reel(project, store.get());
    const QList<ClipPreview> clips = reel.previewClips();
    ASSERT_EQ(clips.size(), 3);
    EXPECT_EQ(clips[2].subtitle, "Cedar Ridge · Jun 1, 2024");

    StoryPlayer story(&player, clips, client, false);
    QSignalSpy frames(&player, &VideoPlayer::firstFrameReady);  // one per file the player opens
    QList<int> order;
    std::map<int, Seen> seen;
    QObject watcher;
    const int watch = player.addPeriodicTimeObserver(0.05, &watcher, [&](double t) {
        if (story.seeking() || std::isnan(t))
            return;
        Seen &s = seen[story.index()];
        if (s.ticks++ == 0)
            s.first = t;
        s.last = t;
    });
    QObject::connect(&story, &StoryPlayer::indexChanged, [&] { order.append(story.index()); });

    story.start();
    EXPECT_EQ(story.positionText(), "1 / 3");
    EXPECT_EQ(story.label(), "Lagoon reveal");
    // The story runs to its end and parks on its first clip, paused.
    ASSERT_TRUE(waitUntil([&] { return order.size() >= 3; }, 30000)) << order.size();
    ASSERT_TRUE(waitUntil([&] { return !story.seeking() && !player.isPlaying(); }, 10000));
    EXPECT_EQ(order, (QList<int>{1, 2, 0}));
    EXPECT_EQ(story.index(), 0);
    EXPECT_NEAR(player.currentTime(), clips[0].start, 0.1);
    EXPECT_EQ(player.currentUrl(), client->proxyURL(clips[0].flightId, false, false));

    // Lagoon, ridge, lagoon again: three files, though four clips were shown.
    EXPECT_EQ(frames.count(), 3);
    for (int i = 0; i < 3; ++i) {
        ASSERT_GT(seen[i].ticks, 3) << i;
        EXPECT_GE(seen[i].first, clips[i].start - 0.3) << i;
        EXPECT_LT(seen[i].first, clips[i].start + 0.5) << i;
        EXPECT_LE(seen[i].last, clips[i].end + 0.25) << i;
        EXPECT_GE(seen[i].last, clips[i].end - 0.3) << i;
    }

    // The buttons: on from the first clip, and a jump within the flight costs no file.
    EXPECT_FALSE(story.canGoBack());
    story.next();
    ASSERT_TRUE(waitUntil([&] { return player.isPlaying(); }, 10000));
    EXPECT_EQ(frames.count(), 3);
    EXPECT_EQ(story.label(), "Low pass over the reeds");

    player.removeTimeObserver(watch);
    story.teardown();
    EXPECT_FALSE(player.isPlaying());
}

TEST_F(StoryPreview, OneClipPlaysOnceAndAClipPastTheFileStopsAtItsEnd)
{
    const char *lagoon = "20240512_093000_0001";
    StoryPlayer once(&player, {clipOf(lagoon, 4.5, 5.2, "")}, client, false);
    once.start();
    EXPECT_EQ(once.label(), "Untitled clip");
    ASSERT_TRUE(waitUntil([&] { return player.isPlaying(); }, 20000));
    ASSERT_TRUE(waitUntil([&] { return !player.isPlaying() && !once.seeking(); }, 10000));
    EXPECT_EQ(once.index(), 0);
    EXPECT_NEAR(player.currentTime(), 4.5, 0.1);
    waitUntil([] { return false; }, 400);
    EXPECT_FALSE(player.isPlaying());  // parked, not looping
    once.teardown();

    // The proxy is 6 s long: a clip said to end at 9 s stops with the file, and nothing advances.
    StoryPlayer past(&player, {clipOf(lagoon, 5.0, 9.0, "Past the end"), clipOf(lagoon, 1.0, 2.0, "Never")}, client, false);
    past.start();
    ASSERT_TRUE(waitUntil([&] { return player.currentTime() > 5.9; }, 20000));
    waitUntil([] { return false; }, 500);
    EXPECT_EQ(past.index(), 0);
}

TEST_F(StoryPreview, AClipPreviewLoopsSilently)
{
    const QUrl lagoon = client->proxyURL("20240512_093000_0001", false, false);
    SegmentPlayer segment(&player, lagoon, client->mediaHeaders(), 1.0, 2.0);
    int wraps = 0;
    double previous = NAN;
    double lowest = 100, highest = 0;
    QObject watcher;
    player.addPeriodicTimeObserver(0.05, &watcher, [&](double t) {
        if (std::isnan(t) || !player.isPlaying())
            return;
        if (!std::isnan(previous) && t < previous - 0.5)
            ++wraps;
        previous = t;
        lowest = std::min(lowest, t);
        highest = std::max(highest, t);
    });
    segment.begin();
    EXPECT_TRUE(player.isMuted());
    ASSERT_TRUE(waitUntil([&] { return wraps >= 2; }, 20000));
    EXPECT_GE(lowest, 1.0 - 0.3);
    EXPECT_LE(highest, 2.0 + 0.25);
    segment.stop();
    EXPECT_FALSE(player.isPlaying());
}

} // namespace
