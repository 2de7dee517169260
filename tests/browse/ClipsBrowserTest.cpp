// The clips section against a real library server: the pool, keep, toss and retrim reaching the
// flights' clips.json, picks made into a story, and the section's controls.
#include "ClipFlights.h"
#include "CoroTest.h"

#include <gtest/gtest.h>

#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>

namespace {
using TwoFlights::lagoon;
using TwoFlights::ridge;

QStringList keys(const QList<PoolClip> &clips)
{
    QStringList out;
    for (const PoolClip &c : clips)
        out.append(c.identity());
    return out;
}

class ClipsLibrary : public ::testing::Test
{
protected:
    QTemporaryDir dir;
    QSettings settings{dir.filePath("prefs.ini"), QSettings::IniFormat};
    ClipsSection section{TwoFlights::flights(), std::chrono::milliseconds(80), &settings};
    TestServer &server = section.server;
    ClipsBrowserStore *store = section.store.get();
    ClipsBrowserModel *model = section.browser.get();

    PoolClip clip(const QString &identity) const
    {
        for (const PoolClip &c : store->all())
            if (c.identity() == identity)
                return c;
        ADD_FAILURE() << "no clip " << identity.toStdString();
        return {};
    }
};
} // namespace

TEST_F(ClipsLibrary, TheWholePoolNewestFlightFirstInPlaceGroups)
{
    EXPECT_FALSE(store->loading());
    EXPECT_EQ(model->screen(), "content");
    EXPECT_EQ(keys(store->all()), QStringList({"20240601_184512_0002-c1-1.0", "20240601_184512_0002-s2-4.0",
                                               "20240512_093000_0001-c1-2.0", "20240512_093000_0001-s1-6.0"}));
    EXPECT_EQ(model->countLine(), "4 clips · 0:10 of footage");
    EXPECT_EQ(model->placeLine(), "2 places");
    ASSERT_EQ(model->groups().size(), 2);
    EXPECT_EQ(model->groups()[0].label, "Cedar Ridge");  // two each: by name

    model->setFilter("suggested");
    EXPECT_EQ(keys(model->visible()), QStringList({"20240601_184512_0002-s2-4.0", "20240512_093000_0001-s1-6.0"}));
    model->setGroup("month");
    EXPECT_EQ(model->groups()[0].label, "June 2024");
    model->setGroup("nonsense");
    EXPECT_EQ(model->group(), "month");

    // The controls are kept for the next start.
    ClipsBrowserModel again(store, &settings);
    EXPECT_EQ(again.filter(), "suggested");
    EXPECT_EQ(again.group(), "month");
}

TEST_F(ClipsLibrary, KeepTossAndRetrimReachTheServer)
{
    const QString s1 = QString::fromStdString(lagoon) + "-s1-6.0";
    const QString s2 = QString::fromStdString(ridge) + "-s2-4.0";
    const QString c1 = QString::fromStdString(lagoon) + "-c1-2.0";

    ASSERT_TRUE(run(store->keep(clip(s1))));
    EXPECT_EQ(clip(s1).autoSuggested, std::optional<bool>(false));
    auto stored = storedClips(server, lagoon);
    EXPECT_FALSE(stored["clips"][1].contains("auto"));
    EXPECT_EQ(stored["clips"][1]["why"], "Orbit · 270° around one point");  // the rest of the clip stays
    EXPECT_EQ(stored["note"], "kept by the server");                       // and so does the rest of the file

    ASSERT_TRUE(run(store->toss(clip(s2))));
    EXPECT_FALSE(keys(store->all()).contains(s2));
    stored = storedClips(server, ridge);
    ASSERT_EQ(stored["clips"].size(), 1u);
    // Its span is remembered (beside whatever the library itself set aside when the flight came).
    ASSERT_TRUE(stored["dismissed"].is_array());
    EXPECT_EQ(stored["dismissed"].back(), nlohmann::json::parse(R"({"in":4.0,"out":6.5})"));

    // Times go in hundredths; the clip's picture is named after its new start.
    ASSERT_TRUE(run(store->retrim(clip(c1), 2.344, 5.996)));
    const QString moved = QString::fromStdString(lagoon) + "-c1-2.34";
    EXPECT_EQ(clip(moved).end, 6.0);
    EXPECT_EQ(clip(moved).thumb, std::optional<QString>(QString::fromStdString("flights/" + lagoon + "/clipthumb_c1_23.jpg")));
    stored = storedClips(server, lagoon);
    EXPECT_EQ(stored["clips"][0]["in"], 2.34);
    EXPECT_EQ(stored["clips"][0]["out"], 6.0);
    const auto picture = server.client()->Get(("/" + clip(moved).thumb->toStdString()).c_str());
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->status, 200);
    EXPECT_EQ(picture->get_header_value("Content-Type"), "image/jpeg");
    EXPECT_EQ(model->visibleCount(), 3);  // the list follows every change without a reload
}

TEST_F(ClipsLibrary, AChangeThatFailsSaysSoAndChangesNothing)
{
    const QString s2 = QString::fromStdString(ridge) + "-s2-4.0";
    const PoolClip suggestion = clip(s2);
    ASSERT_EQ(server.client()->Delete(("/api/flights/" + ridge).c_str())->status, 200);
    EXPECT_FALSE(run(store->keep(suggestion)));
    EXPECT_FALSE(run(store->toss(suggestion)));
    EXPECT_FALSE(run(store->retrim(suggestion, 1, 2)));
    EXPECT_EQ(clip(s2), suggestion);
}

TEST_F(ClipsLibrary, PicksBecomeAStoryOnTheServer)
{
    QSignalSpy created(model, &ClipsBrowserModel::storyCreated);
    model->toggleSelecting();
    model->press(QString::fromStdString(lagoon) + "-s1-6.0");
    model->press(QString::fromStdString(lagoon) + "-c1-2.0");
    EXPECT_EQ(model->selectedText(), "2 selected");
    ASSERT_TRUE(model->canMakeStory());

    run(model->runMakeStory());
    ASSERT_EQ(created.size(), 1);
    const std::string id = created[0][0].toString().toStdString();
    const auto story = jsonOf(server.client()->Get(("/api/projects/" + id).c_str()));
    EXPECT_EQ(story["title"], "Saltmarsh Lagoon story");
    ASSERT_EQ(story["items"].size(), 2u);
    // In the order the clips are shown, not the order they were picked.
    EXPECT_EQ(story["items"][0]["clipId"], "c1");
    EXPECT_EQ(story["items"][1]["clipId"], "s1");
    EXPECT_EQ(story["items"][1]["in"], 6.0);
    EXPECT_FALSE(model->selecting());
    EXPECT_EQ(model->pickCount(), 0);
    EXPECT_EQ(store->toast(), "Story created");
    EXPECT_TRUE(waitUntil([&] { return store->toast().isEmpty(); }));
}

TEST_F(ClipsLibrary, WideAndTallDontMixAndHiddenPicksCountForNothing)
{
    model->toggleSelecting();
    model->press(QString::fromStdString(ridge) + "-s2-4.0");   // upright
    model->press(QString::fromStdString(lagoon) + "-c1-2.0");  // wide
    EXPECT_TRUE(model->mixedAspect());
    EXPECT_FALSE(model->canMakeStory());

    // The wide clip is the pilot's own: the suggestions filter hides it, and its pick with it.
    model->setFilter("suggested");
    EXPECT_EQ(model->pickCount(), 1);
    EXPECT_FALSE(model->mixedAspect());
    EXPECT_TRUE(model->canMakeStory());
    model->setFilter("all");
    EXPECT_EQ(model->pickCount(), 2);  // still picked, only hidden

    // Leaving selection drops every pick.
    model->toggleSelecting();
    model->toggleSelecting();
    EXPECT_EQ(model->pickCount(), 0);
}

TEST_F(ClipsLibrary, WithTheLibraryGoneTheListAndThePicksStay)
{
    model->toggleSelecting();
    model->press(QString::fromStdString(lagoon) + "-c1-2.0");
    const QList<PoolClip> before = store->all();
    store->setClient(std::make_shared<APIClient>(QStringLiteral("http://127.0.0.1:9"), std::nullopt));

    run(model->runMakeStory());
    EXPECT_EQ(store->toast(), "Couldn't create the story");
    EXPECT_TRUE(model->selecting());
    EXPECT_EQ(model->pickCount(), 1);  // to try again
    EXPECT_FALSE(model->makingStory());

    run(store->reload());
    EXPECT_TRUE(store->loadFailed());
    EXPECT_FALSE(store->loading());
    EXPECT_EQ(store->all(), before);
    EXPECT_EQ(model->screen(), "error");
}

TEST_F(ClipsLibrary, AFlightsTelemetryIsAskedForOnce)
{
    // Two callers at once: the first waits for the server, the second gets nothing at once.
    std::optional<QList<TrackSample>> first;
    auto firstCall = [&]() -> QCoro::Task<> { first = co_await store->track(QString::fromStdString(lagoon)); };
    auto running = firstCall();
    const auto second = run(store->track(QString::fromStdString(lagoon)));
    EXPECT_TRUE(second.isEmpty());
    ASSERT_TRUE(waitUntil([&] { return first.has_value(); }));
    EXPECT_EQ(first->size(), 121);  // 12 s at 10 Hz
    EXPECT_EQ(run(store->track(QString::fromStdString(lagoon))).size(), 121);

    // A failed fetch is not tried again.
    EXPECT_TRUE(run(store->track("no-such-flight")).isEmpty());
    EXPECT_TRUE(run(store->track("no-such-flight")).isEmpty());
}
