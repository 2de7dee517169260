#include "GalleryStore.h"

#include "APIClient.h"
#include "AppEvents.h"
#include "CoroTest.h"
#include "RecordingServer.h"
#include "StallingServer.h"

#include <gtest/gtest.h>

#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <atomic>

namespace {
const QByteArray manifest = R"({"flights":[
  {"id":"F1","date":"2024-05-01T10:00:00","place":"Vík","model":"Mavic 3","centroid":{"lat":63.42,"lon":-19.01},"pathLength":1200},
  {"id":"F2","date":"2024-05-03T10:00:00","place":"Vík","model":"Mini 4","centroid":{"lat":63.43,"lon":-19.02}},
  {"id":"F3","date":"2024-06-10T22:30:00","place":"Reykjavík","model":"Mavic 3","relAlt":{"max":100},"maxSpeed":10},
  {"id":"F4","place":"Reykjavík","extra":"ignored"}]})";

/// A library server's replies, switchable per path while a test runs.
struct FakeLibrary {
    RecordingServer server;
    std::atomic<int> manifestStatus{200}, clipsStatus{200}, hiddenStatus{200}, writeStatus{200};

    FakeLibrary()
    {
        server.setHandler([this](const RecordingServer::Request &r) {
            auto answer = [](int status, QByteArray body) {
                RecordingServer::Reply reply;
                reply.status = status;
                reply.body = std::move(body);
                // No keep-alive: the server's worker would otherwise hold its stop for seconds.
                reply.headers.insert("Connection", "close");
                return reply;
            };
            if (r.target == "/manifest.json")
                return answer(manifestStatus, manifestStatus == 200 ? manifest : QByteArray("{}"));
            if (r.target == "/api/clips")
                return answer(clipsStatus,
                              R"({"clips":[{"flightId":"F1"},{"flightId":"F1","auto":true},{"flightId":"F3"}]})");
            if (r.target == "/api/hidden")
                return answer(hiddenStatus, R"({"ids":["F4"]})");
            if (r.target == "/api/autoreel")
                return answer(writeStatus, R"({"id":"P9","title":"Auto","items":[]})");
            return answer(writeStatus, "{}");
        });
    }
};

struct Fixture {
    FakeLibrary library;
    QTemporaryDir dir;
    QSettings settings{dir.filePath("prefs.ini"), QSettings::IniFormat};
    AppEvents events;
    std::unique_ptr<GalleryStore> owned =
        std::make_unique<GalleryStore>(std::make_shared<APIClient>(library.server.base(), std::nullopt), &settings, &events);
    GalleryStore &store = *owned;

    // The client's connections close before the server stops, so its stop doesn't wait them out.
    ~Fixture()
    {
        owned.reset();
        waitUntil([] { return false; }, 60);
    }

    QStringList visible() const
    {
        QStringList ids;
        for (const int row : store.filteredRows())
            ids.append(store.library().flights[row].id);
        return ids;
    }
    QList<RecordingServer::Request> requestsTo(const QByteArray &target) const
    {
        QList<RecordingServer::Request> found;
        for (const auto &r : library.server.requests())
            if (r.target == target)
                found.append(r);
        return found;
    }
};
} // namespace

TEST(GalleryStoreLoad, FillsTheLibraryAndDegradesTheExtrasSilently)
{
    Fixture f;
    EXPECT_EQ(f.store.screen(), "content");
    run(f.store.reload());
    EXPECT_FALSE(f.store.loading());
    EXPECT_EQ(f.store.flightCount(), 4);
    EXPECT_EQ(f.visible(), QStringList({"F3", "F2", "F1"}));  // newest first, F4 hidden
    EXPECT_EQ(f.store.library().clipCounts.value("F1"), 1);    // suggestions don't count
    EXPECT_EQ(f.store.library().todCache.size(), 4);
    EXPECT_EQ(f.store.models(), QStringList({"Mavic 3", "Mini 4"}));
    EXPECT_EQ(f.store.stats().value("count").toString(), "3");
    EXPECT_EQ(f.store.hiddenSwitchText(), "Show hidden flights only (1)");

    // Without the hidden set every flight shows; without counts "clips only" finds nothing.
    f.library.hiddenStatus = 500;
    f.library.clipsStatus = 500;
    run(f.store.reload());
    EXPECT_EQ(f.store.error(), "");
    EXPECT_EQ(f.visible().size(), 4);
    f.store.setClipsOnly(true);
    EXPECT_TRUE(f.visible().isEmpty());
}

TEST(GalleryStoreLoad, AFailedManifestKeepsWhatWasShownOrShowsTheErrorScreen)
{
    Fixture f;
    f.library.manifestStatus = 503;
    run(f.store.reload());
    EXPECT_EQ(f.store.error(), "Server returned 503.");
    EXPECT_EQ(f.store.screen(), "error");
    EXPECT_FALSE(f.store.loading());

    f.library.manifestStatus = 200;
    run(f.store.reload());
    EXPECT_EQ(f.store.screen(), "content");
    f.library.manifestStatus = 401;
    run(f.store.reload());
    EXPECT_EQ(f.store.flightCount(), 4);  // the old list stays
    EXPECT_EQ(f.store.screen(), "content");
    EXPECT_FALSE(f.store.error().isEmpty());
}

TEST(GalleryStoreLoad, ALibraryThatStallsEndsTheLoadWithAnError)
{
    using namespace std::chrono_literals;
    StallingServer stalled;
    QTemporaryDir dir;
    QSettings settings(dir.filePath("prefs.ini"), QSettings::IniFormat);
    GalleryStore store(std::make_shared<APIClient>(stalled.base(), std::nullopt, nullptr, nullptr, 200ms), &settings,
                       nullptr);
    store.load();
    EXPECT_TRUE(store.loading());
    ASSERT_TRUE(waitUntil([&] { return !store.loading(); }, 5000)) << "the gallery spins for ever";
    EXPECT_EQ(store.screen(), "error");
    EXPECT_EQ(store.error(), "The request timed out.");
}

TEST(GalleryStoreLoad, ReloadsWhenAFlightIsImportedOrSamplesChange)
{
    Fixture f;
    Q_EMIT f.events.flightImported("F9");
    ASSERT_TRUE(waitUntil([&] { return f.store.flightCount() == 4 && !f.store.loading(); }));
    const int before = f.requestsTo("/manifest.json").size();
    Q_EMIT f.events.samplesChanged();
    ASSERT_TRUE(waitUntil([&] { return f.requestsTo("/manifest.json").size() == before + 1 && !f.store.loading(); }));
}

TEST(GalleryStoreActions, HideIsOptimisticAndUndoneOnFailure)
{
    Fixture f;
    run(f.store.reload());
    QSignalSpy pins(&f.store, &GalleryStore::mapPinsChanged);

    // The card goes before the server answers.
    auto hide = f.store.changeHidden("F2", true);
    EXPECT_FALSE(f.visible().contains("F2"));
    run(std::move(hide));
    EXPECT_FALSE(f.visible().contains("F2"));
    const auto sent = f.requestsTo("/api/hidden/F2");
    ASSERT_EQ(sent.size(), 1);
    EXPECT_EQ(sent[0].method, "POST");
    EXPECT_EQ(sent[0].body, R"({"hidden":true})");
    EXPECT_EQ(pins.count(), 1);

    // A refused hide brings the card back, in its place, without a word.
    f.library.writeStatus = 500;
    run(f.store.changeHidden("F1", true));
    EXPECT_EQ(f.visible(), QStringList({"F3", "F1"}));
    EXPECT_TRUE(f.store.deleteError().isEmpty());

    // A refused unhide hides it again.
    f.store.setShowHidden(true);
    EXPECT_EQ(f.store.title(), "Hidden Flights");
    run(f.store.changeHidden("F4", false));
    EXPECT_TRUE(f.visible().contains("F4"));
}

TEST(GalleryStoreActions, DeleteAsksThenRemovesEverywhereOrSaysWhyNot)
{
    Fixture f;
    run(f.store.reload());
    f.store.setGroup("place");
    f.store.setSelecting(true);
    f.store.press("F3");

    f.store.askDelete("F3");
    EXPECT_EQ(f.store.deleteMessage(),
              "Reykjavík. Its video and any marked clips are permanently removed. This can't be undone.");
    f.store.cancelDelete();
    EXPECT_TRUE(f.store.deletingId().isEmpty());
    EXPECT_TRUE(f.requestsTo("/api/flights/F3").isEmpty());

    f.library.writeStatus = 500;
    f.store.askDelete("F3");
    run(f.store.runDelete());
    EXPECT_EQ(f.store.deleteError(), "Couldn't delete that flight — check your connection and try again.");
    EXPECT_EQ(f.store.flightCount(), 4);

    f.library.writeStatus = 200;
    f.store.dismissDeleteError();
    f.store.askDelete("F3");
    run(f.store.runDelete());
    EXPECT_EQ(f.requestsTo("/api/flights/F3").last().method, "DELETE");
    EXPECT_EQ(f.store.flightCount(), 3);
    EXPECT_FALSE(f.store.library().clipCounts.contains("F3"));
    EXPECT_FALSE(f.store.library().todCache.contains("F3"));
    EXPECT_TRUE(f.store.selectedIds().isEmpty());
    // Its place had no other visible flight: the section is gone.
    ASSERT_EQ(f.store.groups().size(), 1);
    EXPECT_EQ(f.store.groups()[0].id, "Vík");
}

TEST(GalleryStoreActions, SelectionFeedsTheAutoStory)
{
    Fixture f;
    run(f.store.reload());
    f.store.press("F1");
    EXPECT_EQ(f.store.openedId(), "F1");  // outside selection a press opens
    f.store.toggleSelecting();
    f.store.press("F2");
    f.store.press("F1");
    f.store.press("F3");
    f.store.press("F3");
    EXPECT_EQ(f.store.selectedText(), "2 selected");

    // Hiding a selected flight takes it off the screen but not out of the story.
    run(f.store.changeHidden("F2", true));
    EXPECT_EQ(f.store.selectedIds(), QStringList({"F2", "F1"}));

    f.store.setClipsOnly(true);
    EXPECT_EQ(f.store.reelLengthNote(), "Built from your marked clips only — the ★ Clips only filter is on.");
    f.store.askAutoStory();
    EXPECT_TRUE(f.store.askReelLength());
    f.store.cancelReelLength();
    EXPECT_EQ(f.store.selectedCount(), 2);

    f.library.writeStatus = 500;
    run(f.store.runAutoStory(60));
    EXPECT_EQ(f.store.directError(), "No story this time — those flights don’t have standout moments or marked clips "
                                     "yet. Try a different pick.");
    EXPECT_FALSE(f.store.directing());
    EXPECT_TRUE(f.store.selecting());

    f.library.writeStatus = 200;
    QSignalSpy made(&f.store, &GalleryStore::storyCreated);
    run(f.store.runAutoStory(30));
    EXPECT_EQ(f.requestsTo("/api/autoreel").last().body,
              R"({"target":30.0,"flightIds":["F2","F1"],"clipsOnly":true})");
    EXPECT_EQ(f.store.autoOpenId(), "P9");
    ASSERT_EQ(made.count(), 1);
    EXPECT_FALSE(f.store.selecting());
    EXPECT_EQ(f.store.selectedCount(), 0);
}

TEST(GalleryStoreMap, PinsChangeOnlyWithTheListOfIds)
{
    Fixture f;
    run(f.store.reload());
    QSignalSpy pins(&f.store, &GalleryStore::mapPinsChanged);
    ASSERT_EQ(f.store.pins().size(), 2);  // F3 has no centroid: no pin
    EXPECT_EQ(f.store.pins()[0].title, "Vík");

    f.store.setTod("day");  // the same flights pass
    f.store.setSearch("20");
    EXPECT_EQ(pins.count(), 0);
    f.store.setSort("oldest");  // order alone counts as a change
    EXPECT_EQ(pins.count(), 1);
    f.store.setSearch("nothing matches");
    EXPECT_EQ(pins.count(), 2);
    EXPECT_TRUE(f.store.pins().isEmpty());

    // The pressed pin opens its flight; an unknown id does nothing.
    f.store.openPin("nope");
    EXPECT_TRUE(f.store.openedId().isEmpty());
    f.store.openPin("F2");
    EXPECT_EQ(f.store.openedId(), "F2");
}

TEST(GalleryStoreControls, ChangesAreStoredAtOnceAndReadBack)
{
    Fixture f;
    f.store.setLayout("map");
    f.store.setModelFilter("Mini 4");
    f.store.setShowHidden(true);
    f.store.setSort("bogus");  // not a case: ignored
    EXPECT_EQ(f.settings.value("gallery.layout").toString(), "map");
    EXPECT_EQ(f.settings.value("gallery.model").toString(), "Mini 4");
    EXPECT_FALSE(f.settings.contains("gallery.sort"));

    GalleryStore again(nullptr, &f.settings, nullptr);
    EXPECT_EQ(again.layout(), "map");
    EXPECT_EQ(again.modelFilter(), "Mini 4");
    EXPECT_FALSE(again.showHidden());
    EXPECT_EQ(again.activeFilterCount(), 1);
    again.clearAllFilters();
    EXPECT_EQ(again.modelFilter(), "all");
    EXPECT_EQ(again.layout(), "map");
}

TEST(GalleryRows, SectionsBecomeHeadersAndRowsOfCardsInTheChosenUnits)
{
    Fixture f;
    run(f.store.reload());
    GalleryRowsModel *rows = f.store.rows();
    rows->setColumns(1);
    // By place: Vík (F1, F2) then Reykjavík (F3; F4 is hidden).
    auto kinds = [rows] {
        QStringList out;
        for (int i = 0; i < rows->rowCount(); ++i)
            out.append(rows->data(rows->index(i), GalleryRowsModel::KindRole).toString());
        return out;
    };
    EXPECT_EQ(kinds(), QStringList({"header", "cards", "cards", "header", "cards"}));
    rows->setColumns(3);
    EXPECT_EQ(kinds(), QStringList({"header", "cards", "header", "cards"}));
    EXPECT_EQ(rows->data(rows->index(0), GalleryRowsModel::LabelRole).toString(), "Vík");
    EXPECT_EQ(rows->data(rows->index(0), GalleryRowsModel::CountRole).toInt(), 2);

    f.store.setGroup("flat");  // one untitled section: no header at all
    EXPECT_EQ(kinds(), QStringList({"cards"}));
    const QVariantList cards = rows->data(rows->index(0), GalleryRowsModel::CardsRole).toList();
    ASSERT_EQ(cards.size(), 3);
    const QVariantMap first = cards[0].toMap();
    EXPECT_EQ(first.value("id").toString(), "F3");
    EXPECT_EQ(first.value("clipCount").toInt(), 1);
    EXPECT_EQ(first.value("durationText").toString(), "0:00");
    EXPECT_TRUE(first.value("thumbUrl").toUrl().toString().endsWith("/flights/F3/thumb.jpg"));

    // Units follow the preference without a reload.
    f.store.setSelecting(true);
    f.store.press("F1");
    const auto card = [&](int i) { return rows->data(rows->index(0), GalleryRowsModel::CardsRole).toList()[i].toMap(); };
    EXPECT_TRUE(card(2).value("selected").toBool());
    f.store.setMetric(false);
    EXPECT_EQ(card(0).value("altitudeText").toString(), "328 ft");  // truncated, not rounded
    EXPECT_EQ(card(0).value("speedText").toString(), "22 mph");
    EXPECT_EQ(f.store.stats().value("distanceCaption").toString(), "mi");
    f.store.setMetric(true);
    EXPECT_EQ(card(0).value("altitudeText").toString(), "100 m");
    EXPECT_EQ(card(0).value("speedText").toString(), "36 km/h");
    EXPECT_EQ(f.store.stats().value("distanceCaption").toString(), "km");
}
