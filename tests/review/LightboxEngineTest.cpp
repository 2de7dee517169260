// The lightbox engine's stretch, loop and seek rules, and the filmstrip's drags, on a scripted
// player whose seeks take as long as a test says.
#include "ClipFilmstrip.h"
#include "CoroTest.h"
#include "LightboxEngine.h"
#include "ScriptedPlayer.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QSignalSpy>

#include <cmath>

namespace {
const QUrl flightA(QStringLiteral("http://library/flights/A/proxy.mp4"));
const QUrl flightB(QStringLiteral("http://library/flights/B/proxy.mp4"));

struct Rig {
    ScriptedPlayer *player = nullptr;
    LightboxEngine engine{[this] {
        auto made = std::make_unique<ScriptedPlayer>();
        player = made.get();
        return made;
    }};

    /// Loads `start`..`end` of flight A, observing, and lets the first seek land.
    void show(double start, double end, LightboxEngine::SegmentEnd onEnd = {})
    {
        engine.load(flightA, {}, start, end, std::move(onEnd));
        engine.startObserving();
        settle();
    }
    void settle() { ASSERT_TRUE(waitUntil([&] { return !engine.seeking(); })); }
};
} // namespace

TEST(LightboxEngine, ASecondStretchOfTheSameFileOnlySeeks)
{
    Rig rig;
    rig.engine.load(flightA, {"Authorization: Bearer t"}, 5, 10);
    ASSERT_TRUE(rig.player);
    EXPECT_TRUE(rig.player->isMuted());
    EXPECT_TRUE(rig.player->isPlaying());
    EXPECT_TRUE(std::isnan(rig.engine.assetDuration()));
    rig.player->setDuration(30);
    EXPECT_EQ(rig.engine.assetDuration(), 30);

    rig.engine.load(flightA, {}, 12, 15);
    EXPECT_EQ(rig.player->loads.size(), 1);
    EXPECT_EQ(rig.engine.assetDuration(), 30);  // still the same file
    ASSERT_EQ(rig.player->seeks.size(), 2);
    EXPECT_EQ(rig.player->seeks[1].time, 12);
    EXPECT_EQ(rig.player->seeks[1].before, 0);  // exact, both ways
    EXPECT_EQ(rig.player->seeks[1].after, 0);

    rig.engine.load(flightB, {}, 1, 3);
    EXPECT_EQ(rig.player->loads, QList<QUrl>({flightA, flightB}));
    EXPECT_TRUE(std::isnan(rig.engine.assetDuration()));
}

TEST(LightboxEngine, LoopsWhenThePlayheadLeavesTheStretch)
{
    Rig rig;
    rig.show(5, 10);
    const auto seeks = [&] { return rig.player->seeks.size(); };

    rig.player->tick(9.9);
    EXPECT_EQ(seeks(), 1);
    rig.player->tick(10.05);  // past the end: back to the start
    EXPECT_EQ(seeks(), 2);
    EXPECT_EQ(rig.player->lastSeek(), 5);
    rig.player->tick(11);  // that seek is still in flight: no second one
    EXPECT_EQ(seeks(), 2);
    EXPECT_EQ(rig.engine.current(), 11);
    rig.settle();

    // A landing up to 1.5 s early still counts as inside.
    rig.player->tick(3.6);
    EXPECT_EQ(seeks(), 2);
    rig.player->tick(3.4);
    EXPECT_EQ(seeks(), 3);
    rig.settle();

    // While the strip has the playhead nothing loops; nor do times that aren't times.
    rig.engine.setScrubbing(true);
    rig.player->tick(20);
    rig.engine.setScrubbing(false);
    rig.player->tick(std::nan(""));
    EXPECT_EQ(seeks(), 3);
    EXPECT_EQ(rig.engine.current(), 20);
}

TEST(LightboxEngine, AStretchThatRunsToTheEndOfTheFileStillLoops)
{
    Rig rig;
    rig.show(8, 12);
    rig.player->setDuration(12);
    // The player stops on the last frame, a little before the stretch's end.
    rig.player->pause();
    rig.player->tick(11.96);
    EXPECT_EQ(rig.player->lastSeek(), 8);
    EXPECT_TRUE(rig.player->isPlaying());
}

TEST(LightboxEngine, ASegmentEndActionReplacesTheLoop)
{
    Rig rig;
    int ends = 0;
    rig.show(5, 10, [&] { ++ends; });
    rig.player->tick(10.2);
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(rig.player->seeks.size(), 1);
}

TEST(LightboxEngine, StopPausesAndStopsReadingThePlayhead)
{
    Rig rig;
    rig.show(5, 10);
    rig.engine.startObserving();  // a second start adds no second observer
    EXPECT_EQ(rig.player->observerCount(), 1);
    rig.engine.stop();
    EXPECT_FALSE(rig.player->isPlaying());
    EXPECT_EQ(rig.player->observerCount(), 0);
    rig.player->tick(7);
    EXPECT_NE(rig.engine.current(), 7);
    EXPECT_EQ(rig.player->loads.size(), 1);  // the file stays
}

namespace {
/// A strip 1000 points wide over a clip of 10..20 s: the range is 5..25 s, 50 points a second,
/// the in handle at 250 and the out handle at 750.
struct StripRig : Rig {
    ClipFilmstrip strip{&engine, 2.0};
    StripRig(double start = 10, double end = 20, double width = 1000)
    {
        show(start, end);
        strip.setClip(flightA, {}, start, end);
        strip.setWidth(width);
    }
    QString dragFrom(double x)
    {
        strip.dragChanged(x, x);
        const QString mode = strip.property("dragMode").toString();
        strip.dragEnded();
        strip.clearDraft();
        settle();
        return mode;
    }
};
} // namespace

TEST(ClipFilmstrip, AHandleIsTakenFromUpTo18PointsAway)
{
    StripRig rig;
    EXPECT_EQ(rig.strip.rangeStart(), 5);
    EXPECT_EQ(rig.strip.rangeEnd(), 25);
    EXPECT_EQ(rig.dragFrom(268), "in");
    EXPECT_EQ(rig.dragFrom(268.5), "scrub");
    EXPECT_EQ(rig.dragFrom(732), "out");
    EXPECT_EQ(rig.dragFrom(731.5), "scrub");

    // Handles close together on a narrow strip: exactly between them takes the in point.
    StripRig narrow(10, 10.6, 100);
    const double middle = (narrow.strip.xOf(10) + narrow.strip.xOf(10.6)) / 2;
    EXPECT_EQ(narrow.dragFrom(middle), "in");
    EXPECT_EQ(narrow.dragFrom(middle + 0.01), "out");
}

TEST(ClipFilmstrip, HandlesMoveTheDraftAndKeepTheShortestClip)
{
    StripRig rig;
    QSignalSpy committed(&rig.strip, &ClipFilmstrip::handleCommitted);
    rig.strip.dragChanged(250, 350);  // in point to 12 s
    EXPECT_TRUE(rig.engine.scrubbing());
    EXPECT_FALSE(rig.player->isPlaying());
    EXPECT_EQ(rig.strip.draftStart(), 12);
    EXPECT_EQ(rig.strip.draftEnd(), 20);
    EXPECT_EQ(rig.strip.savedStart(), 10);  // the clip itself is untouched
    rig.strip.dragChanged(250, 900);        // far past the out point: stops 2 s before it
    EXPECT_EQ(rig.strip.draftStart(), 18);
    rig.settle();
    rig.strip.dragEnded();
    ASSERT_EQ(committed.size(), 1);
    EXPECT_EQ(committed[0][0].toDouble(), 18);
    EXPECT_EQ(committed[0][1].toDouble(), 20);
    EXPECT_EQ(rig.engine.boundsStart(), 18);  // the draft now loops
    EXPECT_EQ(rig.player->lastSeek(), 18);
    EXPECT_FALSE(rig.engine.scrubbing());
    EXPECT_TRUE(rig.player->isPlaying());

    // A clip shorter than the shortest allowed: moving a handle inwards pushes it outwards.
    StripRig shortClip(10, 11);
    shortClip.strip.dragChanged(shortClip.strip.xOf(10), shortClip.strip.xOf(10.5));
    EXPECT_EQ(shortClip.strip.draftStart(), 9);
    EXPECT_EQ(shortClip.strip.draftEnd(), 11);
}

TEST(ClipFilmstrip, AScrubStaysInsideTheClipAndLeavesItAlone)
{
    StripRig rig;
    QSignalSpy committed(&rig.strip, &ClipFilmstrip::handleCommitted);
    rig.strip.dragChanged(500, 990);
    EXPECT_DOUBLE_EQ(rig.player->lastSeek(), 19.95);
    EXPECT_FALSE(rig.strip.hasDraft());
    rig.settle();
    rig.strip.dragChanged(500, 0);
    EXPECT_EQ(rig.player->lastSeek(), 10);
    rig.strip.dragEnded();
    EXPECT_TRUE(committed.isEmpty());
    EXPECT_EQ(rig.engine.boundsStart(), 10);
}

TEST(ClipFilmstrip, ADragNeverHasTwoSeeksInFlight)
{
    StripRig rig;
    rig.player->seekDelayMs = 200;
    const int before = int(rig.player->seeks.size());
    // A 30 Hz drag of the out point across the strip for about a second.
    QElapsedTimer clock;
    clock.start();
    double x = 750;
    while (clock.elapsed() < 1000) {
        x += 4;
        rig.strip.dragChanged(750, x);
        waitUntil([] { return false; }, 33);
    }
    const int sent = int(rig.player->seeks.size()) - before;
    EXPECT_EQ(rig.player->mostOutstanding, 1);
    // About one per 200 ms, skipping what moved meanwhile (a busy machine makes fewer).
    EXPECT_GE(sent, 2);
    EXPECT_LE(sent, int(clock.elapsed() / 200) + 1);
    // The next free seek went straight to where the handle then stood.
    ASSERT_TRUE(waitUntil([&] { return !rig.engine.seeking(); }));
    rig.strip.dragChanged(750, x + 4);
    EXPECT_DOUBLE_EQ(rig.player->lastSeek(), rig.strip.draftEnd());

    // Let go while a seek is in flight: the draft is committed, and no second seek is sent.
    const auto count = rig.player->seeks.size();
    rig.strip.dragEnded();
    EXPECT_EQ(rig.player->seeks.size(), count);
    EXPECT_EQ(rig.engine.boundsEnd(), rig.strip.draftEnd());
}

TEST(ClipFilmstrip, FramesCoverTheStripAtLeastSix)
{
    EXPECT_EQ(ClipFilmstrip::frameCount(1000, 60), 10);  // 16:9 frames of 106.7 points
    EXPECT_EQ(ClipFilmstrip::frameCount(40, 60), 6);     // a very narrow strip still has six
    EXPECT_EQ(ClipFilmstrip::frameCount(0, 60), 0);

    StripRig rig;
    const QList<double> times = rig.strip.frameTimes(1000, 60);
    ASSERT_EQ(times.size(), 10);
    EXPECT_DOUBLE_EQ(times.first(), 6);  // the middle of the first of ten slices of 5..25 s
    EXPECT_DOUBLE_EQ(times.last(), 24);

    // Once the video's length is known the strip ends there.
    rig.player->setDuration(22);
    EXPECT_EQ(rig.strip.rangeEnd(), 22);
    // A clip that runs to the video's last frame has nothing after it.
    rig.player->setDuration(20);
    EXPECT_EQ(rig.strip.rangeEnd(), 20);
}
