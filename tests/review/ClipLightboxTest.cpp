// The clip lightbox on the real player (headless libmpv) against a real library server: a clip
// loops, play-all walks the list and closes after the last clip, keep and toss move on, and a
// trim is saved only once it moves more than a hair.
#include "ClipFlights.h"
#include "ClipLightboxModel.h"
#include "CoroTest.h"
#include "MpvPlayer.h"

#include <gtest/gtest.h>

namespace {
using TwoFlights::lagoon;
using TwoFlights::ridge;

class ClipLightbox : public ::testing::Test
{
protected:
    ClipsSection section{TwoFlights::flights(), std::chrono::milliseconds(5000)};
    TestServer &server = section.server;
    ClipsBrowserStore *store = section.store.get();
    ClipsBrowserModel *browser = section.browser.get();
    std::unique_ptr<ClipLightboxModel> lightbox;

    void SetUp() override
    {
        lightbox = std::make_unique<ClipLightboxModel>(
            browser, [] { return std::make_unique<MpvPlayer>(MpvPlayer::Output::Headless); });
        lightbox->setMetric(true);
        ASSERT_EQ(browser->visibleCount(), 4);
    }
    void TearDown() override { lightbox.reset(); }
    LightboxEngine &engine() const { return *lightbox->engine(); }
    bool playingWithin(double from, double to) const
    {
        return engine().player() && engine().player()->isPlaying() && engine().current() >= from
            && engine().current() <= to;
    }
};
} // namespace

TEST_F(ClipLightbox, AClipPlaysInALoopWithItsTelemetry)
{
    browser->openLightbox(2, false);
    ASSERT_TRUE(lightbox->open());
    EXPECT_EQ(lightbox->placeText(), "Saltmarsh Lagoon");
    EXPECT_EQ(lightbox->lengthText(), "3.0 s");
    EXPECT_EQ(lightbox->positionText(), "1 of 2 from this flight");
    EXPECT_FALSE(lightbox->suggested());
    ASSERT_TRUE(waitUntil([&] { return playingWithin(2, 3); }, 20000));
    ASSERT_TRUE(waitUntil([&] { return !lightbox->altitudeText().isEmpty(); }, 10000));
    EXPECT_TRUE(lightbox->altitudeText().endsWith(" m"));
    EXPECT_TRUE(lightbox->speedText().endsWith(" km/h"));

    // Past the end it comes back to the start by itself.
    ASSERT_TRUE(waitUntil([&] { return engine().current() > 4.6; }, 10000));
    ASSERT_TRUE(waitUntil([&] { return playingWithin(2, 3); }, 10000));

    // The next clip is another flight's: its file replaces this one.
    lightbox->previous();
    EXPECT_EQ(browser->lightboxIndex(), 1);
    EXPECT_TRUE(lightbox->suggested());
    EXPECT_EQ(lightbox->why(), "Climb · 40 m");
    EXPECT_TRUE(engine().loadedUrl().toString().contains(QString::fromStdString(ridge)));
    ASSERT_TRUE(waitUntil([&] { return playingWithin(4, 6.5); }, 20000));

    // Closing pauses, and the playhead is no longer followed.
    lightbox->close();
    EXPECT_FALSE(lightbox->open());
    EXPECT_FALSE(engine().player()->isPlaying());
}

TEST_F(ClipLightbox, PlayAllMovesOnAndTheLastClipCloses)
{
    browser->openLightbox(2, true);
    ASSERT_TRUE(waitUntil([&] { return playingWithin(2, 5); }, 20000));
    ASSERT_TRUE(waitUntil([&] { return browser->lightboxIndex() == 3; }, 15000));
    EXPECT_EQ(lightbox->lengthText(), "2.5 s");
    ASSERT_TRUE(waitUntil([&] { return !browser->lightboxOpen(); }, 15000));
    EXPECT_FALSE(engine().player()->isPlaying());
}

TEST_F(ClipLightbox, KeepAndTossUnderTheSuggestionsFilter)
{
    browser->setFilter("suggested");
    browser->openLightbox(0, false);
    ASSERT_EQ(lightbox->clip()->clipId, std::optional<QString>("s2"));

    // A kept clip leaves the filter: the next suggestion takes its place.
    run(lightbox->runKeep());
    EXPECT_EQ(store->toast(), "Kept — it's your clip now");
    EXPECT_FALSE(storedClips(server, ridge)["clips"][0].contains("auto"));
    ASSERT_TRUE(lightbox->hasClip());
    EXPECT_EQ(lightbox->clip()->clipId, std::optional<QString>("s1"));
    EXPECT_EQ(browser->lightboxIndex(), 0);

    // Tossing the last one leaves nothing to show.
    const auto dismissedBefore = storedClips(server, lagoon)["dismissed"].size();
    run(lightbox->runToss());
    EXPECT_EQ(store->toast(), "Tossed — won't be suggested again");
    EXPECT_FALSE(browser->lightboxOpen());
    EXPECT_EQ(storedClips(server, lagoon)["dismissed"].size(), dismissedBefore + 1);
    EXPECT_FALSE(lightbox->busy());
}

TEST_F(ClipLightbox, ATrimIsOfferedOnlyPastAHairAndSavedInHundredths)
{
    browser->openLightbox(2, false);  // lagoon c1, 2..5 s
    ClipFilmstrip &strip = *lightbox->strip();
    ASSERT_TRUE(waitUntil([&] { return engine().assetDuration() > 11; }, 20000));
    strip.setWidth(700);  // 0..7 s: 100 points a second
    ASSERT_EQ(strip.rangeStart(), 0);
    ASSERT_EQ(strip.rangeEnd(), 7);

    strip.dragChanged(200, 204);
    strip.dragEnded();
    EXPECT_TRUE(strip.hasDraft());
    EXPECT_FALSE(lightbox->dirty());  // 0.04 s is no change
    strip.dragChanged(204, 221.6);
    strip.dragEnded();
    EXPECT_TRUE(lightbox->dirty());
    EXPECT_EQ(engine().boundsStart(), strip.draftStart());  // the draft loops while it waits

    // "Cancel trim" goes back to the clip as saved.
    lightbox->cancelTrim();
    EXPECT_FALSE(strip.hasDraft());
    EXPECT_EQ(engine().boundsStart(), 2);

    strip.dragChanged(500, 462.345);
    strip.dragEnded();
    run(lightbox->runSaveTrim());
    EXPECT_EQ(store->toast(), "Trimmed");
    EXPECT_EQ(storedClips(server, lagoon)["clips"][0]["out"], 4.62);
    EXPECT_EQ(lightbox->clip()->end, 4.62);
    EXPECT_FALSE(strip.hasDraft());
    EXPECT_EQ(engine().boundsEnd(), 4.62);

    // A suggestion trimmed becomes the pilot's clip; a trim the server refuses keeps the draft.
    lightbox->next();
    strip.setWidth(700);
    strip.dragChanged(strip.xOf(6), strip.xOf(6.5));
    strip.dragEnded();
    run(lightbox->runSaveTrim());
    EXPECT_EQ(store->toast(), "Trimmed — it's your clip now");
    EXPECT_FALSE(storedClips(server, lagoon)["clips"][1].contains("auto"));
    EXPECT_FALSE(lightbox->suggested());

    ASSERT_EQ(server.client()->Delete(("/api/flights/" + lagoon).c_str())->status, 200);
    strip.dragChanged(strip.xOf(6.5), strip.xOf(7));
    strip.dragEnded();
    const auto draft = strip.draft();
    run(lightbox->runSaveTrim());
    EXPECT_EQ(store->toast(), "Trim failed");
    EXPECT_EQ(strip.draft(), draft);
    EXPECT_TRUE(lightbox->open());
}
