// The hub's filter, header and states over a real library, and the way to a story from
// elsewhere.
#include "GalleryStore.h"
#include "ReelsHubModel.h"
#include "StoriesFixture.h"
#include "StoryDevHooks.h"
#include "StoryNavigator.h"

#include <QAbstractItemModelTester>
#include <QSettings>
#include <QTemporaryDir>

namespace {

class StoriesHub : public StoriesFixture
{
protected:
    QTemporaryDir dir;
    QSettings settings{dir.filePath("prefs.ini"), QSettings::IniFormat};
    StoryNavigator navigator{store.get()};

    void SetUp() override
    {
        StoriesFixture::SetUp();
        deleteAllStories();
    }
    static QStringList shown(const ReelsHubModel &hub)
    {
        QStringList titles;
        for (const auto &row : hub.rows()->rows())
            titles.append(row.summary.title);
        std::sort(titles.begin(), titles.end());
        return titles;
    }
};

TEST_F(StoriesHub, FilterHeaderAndStatesFollowTheLibrary)
{
    ReelsHubModel hub(store.get(), &settings, &navigator);
    QAbstractItemModelTester tester(hub.rows(), QAbstractItemModelTester::FailureReportingMode::Fatal);

    // Nothing listed yet: the start loads, and an empty library says so.
    EXPECT_EQ(hub.state(), "empty");
    hub.appear();
    EXPECT_EQ(hub.state(), "loading");
    ASSERT_TRUE(waitUntil([&] { return !store->loading(); }));
    EXPECT_EQ(hub.state(), "empty");
    EXPECT_EQ(hub.headerText(), "0 stories");

    const std::string shared = makeStory("Shared one");
    const std::string made = makeStory("Made, not shared");
    makeStory("Draft");
    proxy->answer("GET", "/api/renders", 200, nlohmann::json{{"renders", {
        {{"id", "r1"}, {"projectId", shared}}, {{"id", "r2"}, {"projectId", made}}, {{"id", "r3"}}}}}.dump());
    proxy->answer("GET", "/api/shares", 200, nlohmann::json{{"shares", {
        {{"token", "t"}, {"url", "u"}, {"projectId", shared}, {"renderId", "r1"}, {"views", 0}, {"hearts", 0}}}}}.dump());
    hub.refresh();
    ASSERT_TRUE(waitUntil([&] { return !store->loading() && hub.state() == "list"; }));
    EXPECT_EQ(hub.headerText(), "3 stories · 3 completed");
    EXPECT_EQ(shown(hub), (QStringList{"Draft", "Made, not shared", "Shared one"}));

    const std::pair<const char *, QStringList> cases[] = {
        {"drafts", {"Draft"}},
        {"video", {"Made, not shared", "Shared one"}},
        {"shared", {"Shared one"}},
        {"unshared", {"Made, not shared"}},
        {"something newer", {"Draft", "Made, not shared", "Shared one"}},
    };
    for (const auto &[filter, titles] : cases) {
        hub.setFilter(filter);
        EXPECT_EQ(shown(hub), titles) << filter;
    }
    EXPECT_EQ(settings.value("storyHubFilter").toString(), "something newer");

    // What a row says.
    hub.setFilter("all");
    for (int i = 0; i < hub.rows()->rowCount(); ++i) {
        const QModelIndex at = hub.rows()->index(i);
        const QString title = at.data(ReelsHubRows::TitleRole).toString();
        EXPECT_EQ(at.data(ReelsHubRows::VideosTextRole).toString(), title == "Draft" ? "" : "1 video") << title.toStdString();
        EXPECT_EQ(at.data(ReelsHubRows::SharedRole).toBool(), title == "Shared one") << title.toStdString();
        EXPECT_TRUE(at.data(ReelsHubRows::EmptyRole).toBool());
        EXPECT_TRUE(at.data(ReelsHubRows::CountTextRole).toString().startsWith("0 clips")) << title.toStdString();
    }

    // The filter leaves nothing: its own state. It was kept for the next start.
    proxy->forget("GET", "/api/shares");
    proxy->answer("GET", "/api/shares", 200, R"({"shares":[]})");
    hub.setFilter("shared");
    run(store->reloadShares());
    EXPECT_EQ(hub.state(), "filtered");
    ReelsHubModel again(store.get(), &settings, &navigator);
    EXPECT_EQ(again.filter(), "shared");

    // A failed load with stories listed still lists them; with none, it's the failed state.
    proxy->answer("GET", "/api/projects", 500);
    run(store->reload());
    EXPECT_TRUE(store->loadFailed());
    EXPECT_EQ(hub.state(), "filtered");
    store->setClient(std::make_shared<APIClient>(proxy->base(), std::nullopt));
    run(store->reload());
    EXPECT_EQ(hub.state(), "failed");
}

TEST_F(StoriesHub, ANewOrDraftedStoryOpensAndOneMadeElsewhereIsListed)
{
    ReelsHubModel hub(store.get(), &settings, &navigator);
    run(hub.runCreate("  "));
    EXPECT_EQ(navigator.section(), "reels");
    ASSERT_FALSE(navigator.openedStoryId().isEmpty());
    EXPECT_EQ(serverStory(navigator.openedStoryId().toStdString())["title"], "Untitled story");
    navigator.closeStory();

    // The auto-story that finds nothing opens nothing.
    proxy->answer("POST", "/api/autoreel", 422, R"({"error":"nothing"})");
    run(hub.runAutoStory(30));
    EXPECT_TRUE(navigator.openedStoryId().isEmpty());
    EXPECT_FALSE(hub.drafting());

    // The gallery drafted a story the hub hasn't listed: opening it brings the list up to date.
    navigator.setSection("flights");
    const std::string elsewhere = makeStory("From the gallery");
    navigator.openStory(QString::fromStdString(elsewhere));
    EXPECT_EQ(navigator.section(), "reels");
    EXPECT_EQ(navigator.openedStoryId().toStdString(), elsewhere);
    // The whole reload, videos included, has to end before the count below means anything.
    ASSERT_TRUE(waitUntil([&] {
        return store->summary(QString::fromStdString(elsewhere)).has_value() && !store->loading();
    }));

    // Deleting asks for the videos again: they went with the story.
    const int rendersAsked = proxy->count("GET", "/api/renders");
    run(hub.runDelete(QString::fromStdString(elsewhere)));
    EXPECT_EQ(store->toast(), "Story deleted");
    EXPECT_EQ(proxy->count("GET", "/api/renders"), rendersAsked + 1);
    EXPECT_EQ(hub.deleteQuestion("Ridge"), "Delete story “Ridge”?");
}

TEST_F(StoriesHub, TheGallerysAutoStoryLandsOnTheNewStory)
{
    // Wired as the program wires it: the gallery's news goes to the navigator.
    GalleryStore gallery(client, &settings, nullptr);
    QObject::connect(&gallery, &GalleryStore::storyCreated, &navigator, &StoryNavigator::openStory);
    run(gallery.reload());
    ASSERT_EQ(gallery.flightCount(), 2);

    const std::string drafted = makeStory("Auto: Cedar Ridge", nlohmann::json::array({
        item("20240601_184512_0002", "c3", 1.0, 2.5, "Ridge climb")}));
    proxy->answer("POST", "/api/autoreel", 200, serverStory(drafted).dump());
    gallery.setSelecting(true);
    gallery.press("20240601_184512_0002");
    run(gallery.runAutoStory(30));
    EXPECT_EQ(navigator.section(), "reels");
    EXPECT_EQ(navigator.openedStoryId().toStdString(), drafted);
    // The hub behind it lists the new story once its reload is back.
    ASSERT_TRUE(waitUntil([&] { return store->summary(QString::fromStdString(drafted)).has_value(); }));
}

TEST_F(StoriesHub, TheStoryAidOpensOnceTheListIsThere)
{
    makeStory("Only story");
    QProcessEnvironment env;
    env.insert("SPIKE_STORY", "1");
    env.insert("SPIKE_ADD", "1");
    StoryDevHooks hooks(env);
    ReelsHubModel hub(store.get(), &settings, &navigator, &hooks);
    hub.appear();
    ASSERT_TRUE(waitUntil([&] { return !navigator.openedStoryId().isEmpty(); }));
    EXPECT_EQ(navigator.openedStoryId(), store->summaries()[0].id);
    EXPECT_TRUE(hooks.take("add"));
    EXPECT_FALSE(hooks.take("add"));
    EXPECT_FALSE(hooks.take("preview"));

    // Once: a later load doesn't open it again.
    navigator.closeStory();
    run(store->reload());
    EXPECT_TRUE(navigator.openedStoryId().isEmpty());
}

} // namespace
