// Editing one story against a real library: the coalesced saves, what sends nothing, and the
// order of the cut list.
#include "ReelDetailModel.h"
#include "ReelModel.h"
#include "StoriesFixture.h"

#include <QAbstractItemModelTester>

using namespace std::chrono_literals;

namespace {

class StoryEditing : public StoriesFixture
{
protected:
    std::unique_ptr<ReelModel> reel;
    std::string id;

    void SetUp() override
    {
        StoriesFixture::SetUp();
        id = makeStory("Ridge day");
        run(store->reload());
        ASSERT_EQ(store->pool().size(), 4);
        auto project = run(client->fetchProject(QString::fromStdString(id)));
        ASSERT_TRUE(project);
        reel = std::make_unique<ReelModel>(project.value(), store.get());
        proxy->clear();
    }
    void TearDown() override
    {
        reel.reset();
        StoriesFixture::TearDown();
    }
    const PoolClip &clip(const char *clipId) const
    {
        for (const PoolClip &c : store->pool())
            if (c.clipId == QString::fromLatin1(clipId))
                return c;
        throw std::runtime_error("no such clip");
    }
    QStringList labels() const
    {
        QStringList out;
        for (const ReelItem &i : reel->project().items)
            out.append(i.label);
        return out;
    }
    bool settled() const { return waitUntil([&] { return !reel->saving(); }, 5000); }
};

TEST_F(StoryEditing, ASlowSaveLosesNoEditAndCostsTwoRequests)
{
    proxy->holdSaves(300ms);
    reel->add(clip("c1"));
    // The hub knows at once, long before the server has answered.
    EXPECT_EQ(store->summary(QString::fromStdString(id))->count, 1);
    reel->add(clip("c3"));
    reel->rename("Ridge and lagoon");
    EXPECT_TRUE(reel->saving());
    EXPECT_EQ(store->summary(QString::fromStdString(id))->title, "Ridge and lagoon");
    ASSERT_TRUE(settled());

    const auto saved = serverStory(id);
    EXPECT_EQ(saved["title"], "Ridge and lagoon");
    ASSERT_EQ(saved["items"].size(), 2u);
    EXPECT_EQ(saved["items"][1]["clipId"], "c3");
    const auto saves = proxy->saves();
    ASSERT_EQ(saves.size(), 2u);
    // The first carried only the first edit; the second carried both later ones at once.
    EXPECT_EQ(nlohmann::json::parse(saves[0].body)["items"].size(), 1u);
    EXPECT_EQ(nlohmann::json::parse(saves[1].body)["title"], "Ridge and lagoon");
    EXPECT_EQ(nlohmann::json::parse(saves[1].body)["notes"], "");
    EXPECT_FALSE(nlohmann::json::parse(saves[1].body)["items"][0].contains("uid"));
    EXPECT_EQ(store->toast(), "Renamed");

    // Dragging a trim handle: a burst of edits during one save is one more request.
    proxy->clear();
    const QUuid uid = reel->project().items[0].uid;
    for (int step = 1; step <= 8; ++step)
        reel->trim(uid, 0.5 + step * 0.1, 2.0);
    ASSERT_TRUE(settled());
    EXPECT_EQ(proxy->saves().size(), 2u);
    EXPECT_NEAR(serverStory(id)["items"][0]["in"].get<double>(), 1.3, 1e-9);
}

TEST_F(StoryEditing, AnEditDuringAFailingSaveGoesWithTheNextOne)
{
    proxy->holdSaves(200ms);
    proxy->answer("POST", "/api/projects/" + id, 500);
    reel->add(clip("c1"));
    reel->add(clip("c2"));  // lands during the failing save
    ASSERT_TRUE(settled());
    EXPECT_EQ(store->toast(), "Save failed — is serve.py running?");
    EXPECT_EQ(proxy->saves().size(), 1u);  // no retry
    EXPECT_TRUE(reel->resaveQueued());
    EXPECT_EQ(reel->project().items.size(), 2);  // the edits stay here
    EXPECT_EQ(serverStory(id)["items"].size(), 0u);

    proxy->forget("POST", "/api/projects/" + id);
    reel->add(clip("c4"));
    ASSERT_TRUE(settled());
    EXPECT_EQ(serverStory(id)["items"].size(), 3u);
}

TEST_F(StoryEditing, EditsThatChangeNothingSendNothing)
{
    reel->add(clip("c1"));
    ASSERT_TRUE(settled());
    store->toastSlot().show("");
    proxy->clear();

    reel->trim(QUuid::createUuid(), 0, 1);
    reel->rename("   ");
    reel->rename(" Ridge day ");
    reel->remove(QList<int>{7});
    reel->move(QList<int>{0}, 0);
    reel->move(QList<int>{0}, 1);
    waitUntil([] { return false; }, 100);
    EXPECT_TRUE(proxy->saves().empty());
    EXPECT_EQ(store->toast(), "");
}

TEST_F(StoryEditing, MovesAndRemovesKeepTheListAndItsRowsInStep)
{
    QAbstractItemModelTester tester(reel->items(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    for (const char *c : {"c1", "c2", "c3", "c4"})
        reel->add(clip(c));
    const QStringList start{"Lagoon reveal", "Low pass over the reeds", "Ridge climb", "Sunset orbit"};
    ASSERT_EQ(labels(), start);

    // Before the item now at the target: down to the end, up to the top, two at once.
    reel->move({0}, 4);
    EXPECT_EQ(labels(), (QStringList{"Low pass over the reeds", "Ridge climb", "Sunset orbit", "Lagoon reveal"}));
    reel->move({3}, 0);
    EXPECT_EQ(labels(), start);
    reel->move({0, 2}, 4);
    EXPECT_EQ(labels(), (QStringList{"Low pass over the reeds", "Sunset orbit", "Lagoon reveal", "Ridge climb"}));
    reel->move({3}, 1);
    EXPECT_EQ(labels(), (QStringList{"Low pass over the reeds", "Ridge climb", "Sunset orbit", "Lagoon reveal"}));

    // A dragged row ends where it was let go, even past either end.
    reel->moveRow(0, 2);
    EXPECT_EQ(labels(), (QStringList{"Ridge climb", "Sunset orbit", "Low pass over the reeds", "Lagoon reveal"}));
    reel->moveRow(3, -4);
    EXPECT_EQ(labels(), (QStringList{"Lagoon reveal", "Ridge climb", "Sunset orbit", "Low pass over the reeds"}));
    reel->moveRow(0, 9);
    reel->moveRow(2, 0);
    EXPECT_EQ(labels(), (QStringList{"Low pass over the reeds", "Ridge climb", "Sunset orbit", "Lagoon reveal"}));

    // Rows say the same as the story.
    for (int row = 0; row < 4; ++row)
        EXPECT_EQ(reel->items()->index(row).data(ReelItemsModel::LabelRole).toString(), labels()[row]);

    const QUuid third = reel->project().items[2].uid;
    reel->remove(QList<int>{0, 3});
    EXPECT_EQ(labels(), (QStringList{"Ridge climb", "Sunset orbit"}));
    reel->remove(third);
    EXPECT_EQ(labels(), QStringList{"Ridge climb"});
    ASSERT_TRUE(settled());
    EXPECT_EQ(serverStory(id)["items"][0]["label"], "Ridge climb");
    EXPECT_EQ(reel->items()->rowCount(), 1);
}

TEST_F(StoryEditing, ItemsFindTheirClipsAndTheStoryItsShape)
{
    // Two vertical (Cedar Ridge) of four is not vertical; three of four is; none is not.
    EXPECT_FALSE(reel->storyVertical());
    for (const char *c : {"c1", "c2", "c3", "c4"})
        reel->add(clip(c));
    EXPECT_FALSE(reel->storyVertical());
    reel->add(clip("c3"));
    EXPECT_TRUE(reel->storyVertical());  // 3 of 5
    reel->remove(QList<int>{0, 1});
    EXPECT_TRUE(reel->storyVertical());  // 3 of 3
    reel->remove(QList<int>{2});
    reel->add(clip("c1"));
    EXPECT_TRUE(reel->storyVertical());  // 2 of 3

    // The same clip twice counts twice; a moved start under the same id is still that clip.
    EXPECT_EQ(reel->count(clip("c3")), 1);
    reel->add(clip("c3"));
    EXPECT_EQ(reel->count(clip("c3")), 2);
    reel->trim(reel->project().items.last().uid, 1.6, 2.5);
    EXPECT_EQ(reel->count(clip("c3")), 2);

    // An item whose clip is gone from its flight still shows, under its own label.
    ReelItem orphan;
    orphan.flightId = "20240512_093000_0001";
    orphan.clipId = "deleted";
    orphan.start = 5.0;
    orphan.end = 5.5;
    orphan.label = "Gone";
    EXPECT_FALSE(reel->poolClip(orphan));
    orphan.start = 3.02;  // …unless another clip of that flight starts within 0.05 s
    ASSERT_TRUE(reel->poolClip(orphan));
    EXPECT_EQ(reel->poolClip(orphan)->clipId, "c2");
    EXPECT_DOUBLE_EQ(reel->totalDuration(), 3 * 1.5 + 0.9);
    ASSERT_TRUE(settled());
}

TEST_F(StoryEditing, AStoryClosedMidSaveStillReachesTheServer)
{
    auto detail = std::make_unique<ReelDetailModel>();
    detail->setStore(store.get());
    detail->setStoryId(QString::fromStdString(id));
    run(detail->fetch());
    ASSERT_TRUE(detail->reel());
    EXPECT_FALSE(detail->failed());

    proxy->holdSaves(250ms);
    detail->reel()->add(clip("c1"));
    detail->reel()->add(clip("c4"));
    detail.reset();
    ASSERT_TRUE(waitUntil([&] { return serverStory(id)["items"].size() == 2; }));

    // A story that isn't there any more shows the failed state.
    detail = std::make_unique<ReelDetailModel>();
    detail->setStore(store.get());
    detail->setStoryId("no-such-story");
    run(detail->fetch());
    EXPECT_TRUE(detail->failed());
    EXPECT_FALSE(detail->loading());
    EXPECT_EQ(detail->reel(), nullptr);
}

} // namespace
