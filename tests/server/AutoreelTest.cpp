// Automatic stories drafted by the library, and the times stories carry, read by the program's
// own client.
#include "APIError.h"
#include "CoroTest.h"
#include "Database.h"
#include "LoopbackClient.h"
#include "PathFlights.h"
#include "RecordFormats.h"
#include "TestServer.h"

#include <gtest/gtest.h>

#include <set>

using nlohmann::json;

namespace {
// Cedar Ridge, widescreen: the showreel's three suggestions and two clips the pilot marked.
const std::string ridgeWide = "20240601_100000_0001";
// Cedar Ridge, filmed tall: the same shots.
const std::string ridgeTall = "20240601_110000_0002";
// Harbour Point, widescreen: a pan, a top-down view, a reveal, a descent and a fly-by.
const std::string harbour = "20240602_090000_0003";
// Harbour Point, from a camera without GPS: nothing to draw from.
const std::string noGps = "20240603_090000_0004";

Fixtures::FlightPath harbourPath()
{
    Fixtures::FlightPath path;
    path.hover(3);
    path.pan(8, 120);
    path.hover(3);
    path.tilt(2, -90);
    path.hover(6);
    path.tilt(4, -10);
    path.hover(3);
    path.climb(8, -2.5);
    path.hover(3);
    path.straight(6, 10);
    path.hover(3);
    return path;
}

double lengthOf(const QList<ReelItem> &items)
{
    double total = 0;
    for (const ReelItem &i : items)
        total += i.end - i.start;
    return total;
}

std::set<QString> flightsOf(const Project &story)
{
    std::set<QString> ids;
    for (const ReelItem &i : story.items)
        ids.insert(i.flightId.value_or(QString()));
    return ids;
}

/// No two items of one flight share footage.
void expectNoFrameTwice(const Project &story)
{
    for (qsizetype i = 0; i < story.items.size(); ++i) {
        for (qsizetype j = i + 1; j < story.items.size(); ++j) {
            const ReelItem &a = story.items[i], &b = story.items[j];
            if (a.flightId != b.flightId)
                continue;
            EXPECT_TRUE(a.end <= b.start || b.end <= a.start) << a.label.toStdString() << " and " << b.label.toStdString();
        }
    }
}

class Autoreel : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const auto showreel = PathFlights::showreel().path;
        ASSERT_EQ(PathFlights::upload(*client, ridgeWide, showreel, QStringLiteral("Cedar Ridge"))->status, 200);
        ASSERT_EQ(PathFlights::upload(*client, ridgeTall, showreel, QStringLiteral("Cedar Ridge"), true)->status, 200);
        ASSERT_EQ(PathFlights::upload(*client, harbour, harbourPath(), QStringLiteral("Harbour Point"))->status, 200);
        auto bare = PathFlights::withoutTelemetry(60);
        bare.meta.place = QStringLiteral("Harbour Point");
        ASSERT_EQ(PathFlights::upload(*client, noGps, bare)->status, 200);

        json clips = jsonOf(client->Get(("/flights/" + ridgeWide + "/clips.json").c_str()));
        clips["clips"].push_back({{"id", "c1_500"}, {"in", 0.5}, {"out", 2.5}, {"label", "Take-off"}});
        clips["clips"].push_back({{"id", "c2_27500"}, {"in", 27.5}, {"out", 29.5}, {"label", "Still"}});
        ASSERT_EQ(client->Post(("/api/clips/" + ridgeWide).c_str(), clips.dump(), "application/json")->status, 200);
    }

    Project draft(double target, std::optional<QStringList> flights = std::nullopt,
                  std::optional<QString> place = std::nullopt, bool clipsOnly = false)
    {
        auto story = run(api->makeAutoreel(target, std::move(flights), std::move(place), clipsOnly));
        EXPECT_TRUE(story.ok()) << story.errorText().toStdString();
        return story.ok() ? story.value() : Project{};
    }

    TestServer server;
    std::unique_ptr<httplib::Client> client = server.client();
    LoopbackClient api{server};
};
} // namespace

TEST_F(Autoreel, TheWholeLibraryGivesOnePlaceAndShapeTheKeptClipFirst)
{
    const Project story = draft(30);
    ASSERT_FALSE(story.items.isEmpty());
    // The tall flight of the same place and the other place stay out.
    EXPECT_EQ(flightsOf(story), std::set<QString>{QString::fromStdString(ridgeWide)});
    EXPECT_EQ(story.items.first().clipId, QStringLiteral("c1_500"));
    EXPECT_EQ(story.items.first().end - story.items.first().start, 2.0);
    EXPECT_NEAR(lengthOf(story.items), 30, 1.0);
    EXPECT_EQ(story.title, QStringLiteral("Cedar Ridge highlights"));

    // It is a story of the library now, in the list the hub shows.
    const auto list = run(api->fetchProjects());
    ASSERT_TRUE(list.ok());
    ASSERT_EQ(list->size(), 1);
    EXPECT_EQ(list->first().id, story.id);
    EXPECT_EQ(list->first().count, story.items.size());
}

TEST_F(Autoreel, FlightsPlaceAndClipsOnlyNarrowWhatItDrawsFrom)
{
    const auto id = [](const std::string &s) { return QString::fromStdString(s); };
    EXPECT_EQ(flightsOf(draft(30, QStringList{id(harbour)})), std::set<QString>{id(harbour)});
    EXPECT_EQ(flightsOf(draft(30, QStringList{id(ridgeTall), id(harbour)}, QStringLiteral("Cedar Ridge"))),
              std::set<QString>{id(ridgeTall)});

    const Project kept = draft(30, QStringList{id(ridgeWide), id(ridgeTall)}, std::nullopt, true);
    ASSERT_EQ(kept.items.size(), 2);
    EXPECT_EQ(kept.items[0].clipId, QStringLiteral("c1_500"));
    EXPECT_EQ(kept.items[1].clipId, QStringLiteral("c2_27500"));

    // Hidden flights are out of the whole library, as they are out of the gallery.
    ASSERT_EQ(client->Post(("/api/hidden/" + ridgeWide).c_str(), R"({"hidden":true})", "application/json")->status,
              200);
    const auto rest = flightsOf(draft(30));
    EXPECT_EQ(rest.size(), 1u);
    EXPECT_EQ(rest.count(id(ridgeWide)), 0u);
}

TEST_F(Autoreel, TheTargetSetsTheLengthAsFarAsTheFootageGoes)
{
    const QStringList ridge{QString::fromStdString(ridgeWide)};
    const double shortStory = lengthOf(draft(15, ridge).items);
    const double longStory = lengthOf(draft(120, ridge).items);
    EXPECT_NEAR(shortStory, 15, 1.0);
    // The flight has 40 s of shots and 4 s of the pilot's: all of it, and no more.
    EXPECT_NEAR(longStory, 44, 2.0);
    // The harbour's top-down view runs into its reveal: the story shows their frames once.
    const Project harbourStory = draft(120, QStringList{QString::fromStdString(harbour)});
    EXPECT_EQ(harbourStory.items.size(), 5);
    expectNoFrameTwice(harbourStory);
}

TEST_F(Autoreel, NothingToDrawFromIsAFailureTheClientReports)
{
    const auto refused = [&](const json &body) {
        const auto reply = client->Post("/api/autoreel", body.dump(), "application/json");
        EXPECT_TRUE(jsonOf(reply)["detail"].is_string());
        return reply->status;
    };
    EXPECT_EQ(refused({{"target", 30}, {"flightIds", {noGps}}, {"clipsOnly", false}}), 422);
    EXPECT_EQ(refused({{"target", 30}, {"flightIds", {harbour}}, {"clipsOnly", true}}), 422);
    EXPECT_EQ(refused({{"target", 30}, {"flightIds", {"20990101_000000_0009"}}, {"clipsOnly", false}}), 422);
    EXPECT_EQ(refused({{"target", 30}, {"place", "Nowhere"}, {"clipsOnly", false}}), 422);
    EXPECT_EQ(refused({{"target", "long"}, {"clipsOnly", false}}), 400);
    EXPECT_EQ(refused({{"target", 30}, {"flightIds", harbour}}), 400);

    const auto story = run(api->makeAutoreel(60, QStringList{QString::fromStdString(noGps)}, std::nullopt, false));
    ASSERT_FALSE(story.ok());
    EXPECT_TRUE(APIError::isStatus(story.failure(), 422));
    EXPECT_EQ(run(api->fetchProjects())->size(), 0) << "no empty story is left behind";
}

TEST(StoryTimes, AreReadByTheClientOldOnesWithMillisecondsToo)
{
    TestServer server;
    LoopbackClient api(server);
    const auto made = run(api->createProject(QStringLiteral("Cliffs")));
    ASSERT_TRUE(made.ok());
    auto list = run(api->fetchProjects());
    ASSERT_TRUE(list.ok() && list->size() == 1);
    ASSERT_TRUE(list->first().created && list->first().updated);
    EXPECT_TRUE(RecordFormats::parseISO8601(*list->first().created)) << list->first().created->toStdString();
    EXPECT_TRUE(RecordFormats::parseISO8601(*list->first().updated));

    // A library from before stored its times with milliseconds.
    {
        auto db = Database::open(server.library() / "library.db");
        ASSERT_TRUE(db.ok());
        auto guard = db.value()->lock();
        ASSERT_TRUE(db.value()->prepare("UPDATE projects SET updated='2024-05-01T10:00:00.123Z'").run());
    }
    list = run(api->fetchProjects());
    ASSERT_TRUE(list.ok());
    EXPECT_EQ(list->first().updated, QStringLiteral("2024-05-01T10:00:00Z"));
    EXPECT_TRUE(list->first().subtitle().endsWith(RecordFormats::monthDay(*RecordFormats::parseISO8601(
        QStringLiteral("2024-05-01T10:00:00Z")))));
}
