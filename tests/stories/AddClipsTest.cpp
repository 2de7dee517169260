// The add-clips picker over a real library's clips: the search text, "Hide added", and what
// an add does.
#include "AddClipsModel.h"
#include "ReelModel.h"
#include "StoriesFixture.h"

#include <QAbstractItemModelTester>

namespace {

class AddClips : public StoriesFixture
{
protected:
    std::unique_ptr<ReelModel> reel;
    std::unique_ptr<AddClipsModel> picker;

    void SetUp() override
    {
        StoriesFixture::SetUp();
        run(store->reload());
        ASSERT_EQ(store->pool().size(), 4);
        Project project;
        project.id = QString::fromStdString(makeStory("Picker"));
        project.title = "Picker";
        reel = std::make_unique<ReelModel>(project, store.get());
        picker = std::make_unique<AddClipsModel>();
        picker->setReel(reel.get());
    }
    void TearDown() override
    {
        picker.reset();
        waitUntil([&] { return !reel->saving(); });
        reel.reset();
        StoriesFixture::TearDown();
    }
    QStringList shown() const
    {
        QStringList labels;
        for (int row = 0; row < picker->rowCount(); ++row)
            labels.append(picker->index(row).data(AddClipsModel::LabelRole).toString());
        return labels;
    }
};

TEST_F(AddClips, SearchLooksAtLabelPlaceAndDate)
{
    const QStringList all{"Lagoon reveal", "Low pass over the reeds", "Ridge climb", "Sunset orbit"};
    EXPECT_EQ(shown(), all);
    const std::pair<const char *, QStringList> cases[] = {
        {" \t ", all},  // blanks are no search
        {"  CLIMB ", {"Ridge climb"}},
        {"cedar", {"Ridge climb", "Sunset orbit"}},  // the place
        {"may 12, 2024", {"Lagoon reveal", "Low pass over the reeds"}},  // the date as shown
        {"jun", {"Ridge climb", "Sunset orbit"}},
        {"reveal saltmarsh", {"Lagoon reveal"}},  // label then place, as one text
        {"orbit cedar", {"Sunset orbit"}},
        {"cedar orbit", {}},
    };
    for (const auto &[search, labels] : cases) {
        picker->setSearch(search);
        EXPECT_EQ(shown(), labels) << search;
    }
    picker->setSearch("lagoon reveal");
    EXPECT_EQ(picker->index(0).data(AddClipsModel::SubtitleRole).toString(), "Saltmarsh Lagoon · May 12, 2024");
}

TEST_F(AddClips, AddingCountsTheClipAndHideAddedTakesItAway)
{
    QAbstractItemModelTester tester(picker.get(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    picker->add(2);
    picker->add(2);
    EXPECT_EQ(store->toast(), "Added to story");
    EXPECT_EQ(reel->project().items.size(), 2);
    EXPECT_EQ(reel->project().items[0].clipId, "c3");
    EXPECT_EQ(picker->index(2).data(AddClipsModel::InStoryTextRole).toString(), "2 in story");
    EXPECT_EQ(picker->index(1).data(AddClipsModel::InStoryTextRole).toString(), "");

    picker->setHideAdded(true);
    EXPECT_EQ(shown(), (QStringList{"Lagoon reveal", "Low pass over the reeds", "Sunset orbit"}));
    // Adding from the shortened list takes the clip on that row, and it goes from the list.
    picker->add(2);
    EXPECT_EQ(reel->project().items.last().clipId, "c4");
    EXPECT_EQ(shown(), (QStringList{"Lagoon reveal", "Low pass over the reeds"}));
    EXPECT_FALSE(picker->poolEmpty());
}

TEST(AddClipsRule, TwoUnnamedClipsOfOneFlightAreOneClip)
{
    PoolClip first;
    first.flightId = "F";
    first.start = 1;
    first.end = 2;
    first.label = "first";
    PoolClip second = first;
    second.start = 8;
    second.label = "second";
    PoolClip other = first;
    other.flightId = "G";
    ReelItem added;
    added.flightId = "F";
    added.start = 1;
    added.end = 2;
    const QList<int> kept = AddClipsModel::visible({first, second, other}, {added}, {}, true);
    EXPECT_EQ(kept, QList<int>{2});
    // An item without a flight matches nothing.
    added.flightId.reset();
    EXPECT_EQ(AddClipsModel::visible({first, second, other}, {added}, {}, true), (QList<int>{0, 1, 2}));
}

} // namespace
