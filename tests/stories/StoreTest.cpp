// The stories store against a real library: the full load, what each action says, and the
// toast rule.
#include "StoriesFixture.h"

#include <QSignalSpy>

#include <algorithm>
#include <set>

namespace {

class StoriesStore : public StoriesFixture
{
protected:
    void SetUp() override
    {
        StoriesFixture::SetUp();
        deleteAllStories();
    }
    QStringList titles() const
    {
        QStringList out;
        for (const ProjectSummary &s : store->summaries())
            out.append(s.title);
        return out;
    }
};

TEST_F(StoriesStore, FullLoadKeepsWhatArrivedAndSaysWhenSomethingFailed)
{
    makeStory("Ridge day", nlohmann::json::array({item("20240601_184512_0002", "c3", 1.0, 2.5, "Ridge climb")}));
    QSignalSpy loading(store.get(), &ReelsStore::loadingChanged);
    run(store->reload());
    EXPECT_FALSE(store->loading());
    EXPECT_FALSE(store->loadFailed());
    EXPECT_EQ(titles(), QStringList{"Ridge day"});
    EXPECT_EQ(store->summaries()[0].count, 1);
    ASSERT_EQ(store->pool().size(), 4);
    EXPECT_GE(loading.count(), 2);
    // The list and the pool are asked for together, before anything else.
    const auto seen = proxy->seen();
    ASSERT_GE(seen.size(), 2u);
    EXPECT_EQ((std::set<std::string>{seen[0].path, seen[1].path}), (std::set<std::string>{"/api/projects", "/api/clips"}));

    // The pool fails: the list that came is kept, and so is the pool from before.
    makeStory("Lagoon morning");
    proxy->answer("GET", "/api/clips", 500);
    run(store->reload());
    EXPECT_TRUE(store->loadFailed());
    EXPECT_FALSE(store->loading());
    EXPECT_EQ(store->summaries().size(), 2);
    EXPECT_EQ(store->pool().size(), 4);

    // Videos and links are looked for whatever happened before.
    EXPECT_EQ(proxy->count("GET", "/api/renders"), 2);
    EXPECT_EQ(proxy->count("GET", "/api/shares"), 2);

    proxy->forget("GET", "/api/clips");
    run(store->reload());
    EXPECT_FALSE(store->loadFailed());
}

TEST_F(StoriesStore, VideosAndLinksBelongOnlyToTheirStory)
{
    const std::string a = makeStory("With videos");
    const std::string b = makeStory("Draft");
    // The library doesn't list videos or links yet: the proxy answers for it.
    proxy->answer("GET", "/api/renders", 200, nlohmann::json{{"renders", {
        {{"id", "r1"}, {"projectId", a}, {"url", "v/r1.mp4"}},
        {{"id", "r0"}}, // no story: counts for none
        {{"id", "r2"}, {"projectId", a}, {"url", "v/r2.mp4"}},
    }}}.dump());
    proxy->answer("GET", "/api/shares", 200, nlohmann::json{{"shares", {
        {{"token", "t1"}, {"url", "https://x/s/t1"}, {"projectId", a}, {"renderId", "r2"}, {"views", 3}, {"hearts", 0}},
        {{"token", "t2"}, {"url", "https://x/s/t2"}, {"projectId", b}, {"renderId", "r9"}, {"views", 0}, {"hearts", 0}},
    }}}.dump());
    run(store->reload());
    ASSERT_EQ(store->videosOf(QString::fromStdString(a)).size(), 2);
    EXPECT_EQ(store->videosOf(QString::fromStdString(a))[0].id, "r1");
    EXPECT_TRUE(store->videosOf(QString::fromStdString(b)).isEmpty());
    EXPECT_TRUE(store->videosOf(QString()).isEmpty());
    EXPECT_TRUE(store->isShared(QString::fromStdString(a)));
    // A link to a video the story doesn't have doesn't make it shared.
    EXPECT_FALSE(store->isShared(QString::fromStdString(b)));

    // Links that fail to come leave the known ones as they were.
    proxy->answer("GET", "/api/shares", 500);
    run(store->reloadShares());
    EXPECT_TRUE(store->isShared(QString::fromStdString(a)));
}

TEST_F(StoriesStore, CreateNamesBlankTitlesAndSaysWhatHappened)
{
    auto made = run(store->create("   "));
    ASSERT_TRUE(made);
    EXPECT_EQ(made->title, "Untitled story");
    EXPECT_EQ(serverStory(made->id.toStdString())["title"], "Untitled story");
    EXPECT_EQ(store->toast(), "Story created");
    EXPECT_EQ(titles(), QStringList{"Untitled story"});

    // The list failing afterwards doesn't take back the news.
    proxy->answer("GET", "/api/projects", 500);
    made = run(store->create("  Cedar Ridge at dusk "));
    ASSERT_TRUE(made);
    EXPECT_EQ(made->title, "Cedar Ridge at dusk");
    EXPECT_EQ(store->toast(), "Story created");
    EXPECT_EQ(store->summaries().size(), 1);
    proxy->forget("GET", "/api/projects");

    proxy->answer("POST", "/api/projects", 500);
    EXPECT_FALSE(run(store->create("Nope")));
    EXPECT_EQ(store->toast(), "Create failed — is serve.py running?");
}

TEST_F(StoriesStore, AutoStoryAsksForTheWholeLibraryAndOpensWhatCameBack)
{
    const QString nothing = "No story this time — not enough standout moments in your library yet.";
    // Whatever the library answers, the words follow it: a library without auto-stories says 404,
    // one that has them drafts from the kept clips.
    const auto answered = run(store->autoStory({}, 60, std::nullopt));
    const auto asked = proxy->seen();
    const auto request = std::find_if(asked.begin(), asked.end(), [](const auto &r) { return r.path == "/api/autoreel"; });
    ASSERT_NE(request, asked.end());
    EXPECT_EQ(nlohmann::json::parse(request->body), (nlohmann::json{{"target", 60.0}, {"clipsOnly", false}}));
    if (answered)
        EXPECT_EQ(store->toast(), QStringLiteral("Auto-story drafted — %1 clips").arg(answered->count));
    else
        EXPECT_EQ(store->toast(), nothing);

    // Nothing to draw from, a failure, or a reply that isn't a story: no story, in the same words.
    for (const auto &[status, body] : {std::pair{422, R"({"error":"nothing"})"}, {500, "{}"}, {200, R"({"id":"x"})"}}) {
        store->toastSlot().show("");
        proxy->answer("POST", "/api/autoreel", status, body);
        EXPECT_FALSE(run(store->autoStory({}, 30, std::nullopt))) << status;
        EXPECT_EQ(store->toast(), nothing) << status;
    }

    // A drafted story: listed, counted, returned.
    const nlohmann::json items = nlohmann::json::array({item("20240512_093000_0001", "c1", 0.5, 2.0, "Lagoon reveal"),
                                                         item("20240512_093000_0001", "c2", 3.0, 4.5, "Low pass"),
                                                         item("20240601_184512_0002", "c3", 1.0, 2.5, "Ridge climb")});
    const std::string id = makeStory("Auto: Saltmarsh Lagoon", items);
    proxy->answer("POST", "/api/autoreel", 200, serverStory(id).dump());
    proxy->clear();
    const auto drafted = run(store->autoStory({"20240512_093000_0001"}, 120, QStringLiteral("Saltmarsh Lagoon")));
    ASSERT_TRUE(drafted);
    EXPECT_EQ(drafted->id.toStdString(), id);
    EXPECT_EQ(store->toast(), "Auto-story drafted — 3 clips");
    EXPECT_EQ(nlohmann::json::parse(proxy->seen().front().body),
              (nlohmann::json{{"target", 120.0}, {"flightIds", {"20240512_093000_0001"}}, {"place", "Saltmarsh Lagoon"},
                              {"clipsOnly", false}}));

    // Drafted but not in the list (gone meanwhile): said, but nothing to open.
    proxy->answer("POST", "/api/autoreel", 200, R"({"id":"gone","title":"T","items":[]})");
    EXPECT_FALSE(run(store->autoStory({}, 30, std::nullopt)));
    EXPECT_EQ(store->toast(), "Auto-story drafted — 0 clips");
}

TEST_F(StoriesStore, RenameKeepsTheItemsAndSaysSo)
{
    const nlohmann::json items = nlohmann::json::array({item("20240601_184512_0002", "c3", 1.0, 2.5, "Ridge climb")});
    const std::string id = makeStory("Ridge", items);
    run(store->reload());
    const ProjectSummary summary = store->summaries()[0];

    run(store->rename(summary, "  Ridge at dusk  "));
    EXPECT_EQ(store->toast(), "Renamed");
    EXPECT_EQ(titles(), QStringList{"Ridge at dusk"});
    EXPECT_EQ(serverStory(id)["items"], items);

    // Blanks keep the story's own title (and still save).
    run(store->rename(summary, "   "));
    EXPECT_EQ(serverStory(id)["title"], "Ridge at dusk");
    EXPECT_EQ(store->toast(), "Renamed");

    // A story the server no longer has.
    server->client()->Delete(("/api/projects/" + id).c_str());
    run(store->rename(summary, "Ghost"));
    EXPECT_EQ(store->toast(), "Save failed — is serve.py running?");
}

TEST_F(StoriesStore, DeleteRemovesTheStoryOrSaysItFailed)
{
    makeStory("Keep me");
    const std::string id = makeStory("Bin me");
    run(store->reload());
    const auto doomed = store->summary(QString::fromStdString(id));
    ASSERT_TRUE(doomed);
    run(store->deleteStory(*doomed));
    EXPECT_EQ(store->toast(), "Story deleted");
    EXPECT_EQ(titles(), QStringList{"Keep me"});
    EXPECT_EQ(server->client()->Get(("/api/projects/" + id).c_str())->status, 404);

    run(store->deleteStory(*doomed));
    EXPECT_EQ(store->toast(), "Delete failed");
}

TEST_F(StoriesStore, ToastStandsItsTimeAndANewerOneKeepsAllOfIts)
{
    using namespace std::chrono_literals;
    store->toastSlot().setStand(300ms);
    store->showToast("Renamed");
    waitUntil([] { return false; }, 200);
    store->showToast("Story deleted");
    // The first message's time is up, but the second one is on screen: it stays.
    waitUntil([] { return false; }, 180);
    EXPECT_EQ(store->toast(), "Story deleted");
    EXPECT_TRUE(waitUntil([&] { return store->toast().isEmpty(); }, 1000));

    // A store that goes with a toast standing leaves no timer behind.
    store->showToast("Added to story");
    store.reset();
    waitUntil([] { return false; }, 350);
}

TEST_F(StoriesStore, AnEditShowsInTheListBeforeTheServerAnswers)
{
    const std::string id = makeStory("Before");
    run(store->reload());
    QSignalSpy changed(store.get(), &ReelsStore::summariesChanged);
    store->touchSummary(QString::fromStdString(id), "After", 5);
    EXPECT_EQ(store->summaries()[0].title, "After");
    EXPECT_EQ(store->summaries()[0].count, 5);
    store->touchSummary(QString::fromStdString(id), "After", 5);
    store->touchSummary("unknown", "X", 1);
    EXPECT_EQ(changed.count(), 1);
}

} // namespace
