// The reckoning behind story videos and their pages, where a slip would pass unseen in a
// finished video: frame counts, snapped cuts, bar lines, proposed words, filled pages.
#include "BeatTracker.h"
#include "CutPlan.h"
#include "ShareCopy.h"
#include "SharePage.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

namespace {
constexpr int fps = 30;

/// Each cross-fade starts where the video so far ends, less the fade: what xfade needs.
void expectJoined(const CutPlan &plan)
{
    const auto &pieces = plan.pieces();
    for (std::size_t k = 1; k < pieces.size(); ++k) {
        EXPECT_EQ(pieces[k].offset, pieces[k - 1].offset + pieces[k - 1].frames - plan.xfadeFrames()) << "piece " << k;
        EXPECT_GE(pieces[k].frames, 2 * plan.xfadeFrames()) << "piece " << k;
    }
    EXPECT_EQ(plan.totalFrames(), pieces.back().offset + pieces.back().frames);
}

double nearestLine(double t, const std::vector<double> &grid)
{
    double best = 1e9;
    for (const double line : grid)
        best = std::min(best, std::abs(line - t));
    return best;
}
} // namespace

TEST(CutPlan, TheWholeIsWithinHalfAFrameHoweverManyCuts)
{
    std::vector<CutPlan::Clip> clips;
    double sum = 0;
    for (int i = 0; i < 12; ++i) {
        const double length = 1.0 + 0.137 * i + 0.011 * (i % 3);
        clips.push_back({0.3 * i, 0.3 * i + length, 30});
        sum += length;
    }
    const auto plan = CutPlan::make(clips, 0.25, fps);
    ASSERT_EQ(plan.pieces().size(), clips.size());
    EXPECT_NEAR(plan.seconds(), sum - 0.25 * 11, 0.5 / fps);
    expectJoined(plan);
}

TEST(CutPlan, CutsMoveToTheNearestLineTheClipCanReach)
{
    std::vector<double> grid;
    for (double t = 0.3; t < 40; t += 2.0)
        grid.push_back(t);
    // The middle clip has no footage past its out point: its cut can only come earlier.
    const std::vector<CutPlan::Clip> clips{{0, 3.0, 10}, {1, 4.0, 4.0}, {2, 5.0, 10}, {0, 3.0, 10}};
    const auto plan = CutPlan::make(clips, 0.2, fps, grid);
    expectJoined(plan);
    for (std::size_t k = 1; k < plan.pieces().size(); ++k)
        EXPECT_LT(nearestLine(plan.cutTime(k), grid), 1.0 / fps) << "cut " << k << " at " << plan.cutTime(k);
    EXPECT_LE(plan.pieces()[1].frames, 3 * fps) << "the second clip grew past its footage";
    EXPECT_EQ(plan.pieces()[3].frames, 3 * fps) << "the last clip keeps its length";
    // Each cut moves at most half the lines' spacing from where it was, so no drift adds up.
    EXPECT_NEAR(plan.seconds(), 3 + 3 + 3 + 3 - 3 * 0.2, 1.0);
}

TEST(CutPlan, CutsStayPutWhenNoLineIsWithinReach)
{
    const std::vector<CutPlan::Clip> clips{{0, 2.0, 2.0}, {0, 2.0, 2.0}};
    const auto plain = CutPlan::make(clips, 0.2, fps);
    const auto snapped = CutPlan::make(clips, 0.2, fps, {50.0, 52.0});
    EXPECT_EQ(snapped.totalFrames(), plain.totalFrames());
    EXPECT_EQ(snapped.pieces()[0].frames, plain.pieces()[0].frames);
}

TEST(CutPlan, ShortClipsShortenTheCrossFadeAndEmptyOnesAreLeftOut)
{
    const std::vector<CutPlan::Clip> clips{{0, 2, 5}, {1, 1, 5}, {0, 0.3, 5}, {0, 2, 5}};
    const auto plan = CutPlan::make(clips, 1.0, fps);
    ASSERT_EQ(plan.pieces().size(), 3u);
    EXPECT_EQ(plan.pieces()[1].clip, 2u);
    EXPECT_EQ(plan.pieces()[2].clip, 3u);
    EXPECT_NEAR(plan.xfade(), 0.15, 1e-9);
    EXPECT_LE(plan.xfadeFrames() * 2, 9);
    expectJoined(plan);
}

TEST(BeatTracker, BarsAreEveryFourthBeatOfEachPassOfALoopedTrack)
{
    BeatTracker::Beats beats;
    beats.seconds = 10;
    for (double t = 0.25; t < 10; t += 0.5)
        beats.times.push_back(t);
    const auto bars = BeatTracker::grid(beats, true, 25);
    const std::vector<double> expected{0.25, 2.25, 4.25, 6.25, 8.25, 10.25, 12.25, 14.25, 16.25, 18.25, 20.25, 22.25, 24.25};
    ASSERT_EQ(bars.size(), expected.size());
    for (std::size_t i = 0; i < bars.size(); ++i)
        EXPECT_DOUBLE_EQ(bars[i], expected[i]);
    EXPECT_EQ(BeatTracker::grid(beats, false, 25).size(), 50u);
    EXPECT_TRUE(BeatTracker::grid({}, true, 25).empty());
}

TEST(ShareCopy, ProposalsTakeDifferentAnglesOnWhatIsKnown)
{
    StoryFacts facts;
    facts.title = "Ridge day";
    facts.places = {"Cedar Ridge", "Harbour Point"};
    facts.days = {"2024-06-01", "2024-06-03"};
    facts.shots = {"orbit", "fast-pass", "climb", "reveal"};
    facts.labels = {"Sunrise orbit", "Low pass"};
    facts.clips = 5;
    facts.seconds = 42;
    const auto proposals = ShareCopy::suggest(facts);
    ASSERT_GE(proposals.size(), 4u);
    std::set<std::string> titles;
    for (const auto &p : proposals)
        EXPECT_TRUE(titles.insert(p.title).second) << "twice: " << p.title;
    EXPECT_EQ(proposals[0].title, "Cedar Ridge from above");
    EXPECT_EQ(proposals[0].description, "An orbit, a fast pass and a climb over Cedar Ridge and Harbour Point, June 2024.");
    EXPECT_TRUE(titles.count("Cedar Ridge, June 2024"));
    EXPECT_TRUE(titles.count("Ridge day"));
}

TEST(ShareCopy, AStoryTheLibraryKnowsNothingOfStillGetsWords)
{
    StoryFacts facts;
    facts.title = "Untitled story";
    facts.clips = 1;
    const auto proposals = ShareCopy::suggest(facts);
    ASSERT_EQ(proposals.size(), 1u);
    EXPECT_FALSE(proposals[0].title.empty());

    facts.days = {"2023-11-30", "2024-02-01"};
    facts.places = {"Dune"};
    for (const auto &p : ShareCopy::suggest(facts))
        EXPECT_EQ(p.title.find("2023"), std::string::npos) << "a title named one year of two: " << p.title;
}

TEST(SharePage, WordsFilledInAreNeverReadAsTheTemplate)
{
    const std::string templ = "<title>{{title}}</title><script>{{script}}</script>{{unknown}}";
    const auto page = SharePage::filled(templ, {{"title", SharePage::escaped("{{script}} \"<b>'")}, {"script", "run()"}});
    EXPECT_EQ(page, "<title>{{script}} &quot;&lt;b&gt;&#39;</title><script>run()</script>{{unknown}}");
}
