// The library's analysis of an uploaded flight: the shots it names from the telemetry, and how
// its suggestions live beside what the pilot did with them.
#include "CoroTest.h"
#include "Database.h"
#include "LoopbackClient.h"
#include "PathFlights.h"
#include "TestServer.h"

#include <gtest/gtest.h>

using nlohmann::json;
using Fixtures::FlightPath;

namespace {
const std::string flightId = "20240512_093000_0001";

/// The entries of a list whose "shot" is `shot`.
std::vector<json> withShot(const json &list, const std::string &shot)
{
    std::vector<json> found;
    for (const auto &entry : list) {
        if (entry.value("shot", "") == shot)
            found.push_back(entry);
    }
    return found;
}

/// Exactly one entry of `shot`, spanning the drawn leg give or take a second.
void expectOneAt(const json &list, const std::string &shot, FlightPath::Span drawn)
{
    const auto found = withShot(list, shot);
    ASSERT_EQ(found.size(), 1u) << shot << " in " << list.dump();
    EXPECT_NEAR(found[0]["in"].get<double>(), drawn.start, 1.0) << shot;
    EXPECT_NEAR(found[0]["out"].get<double>(), drawn.end, 1.0) << shot;
}

class Analysis : public ::testing::Test
{
protected:
    json get(const std::string &path) { return jsonOf(client->Get(path.c_str())); }
    json clips() { return get("/flights/" + flightId + "/clips.json"); }
    json moments() { return get("/flights/" + flightId + "/moments.json"); }

    TestServer server;
    std::unique_ptr<httplib::Client> client = server.client();
};
} // namespace

TEST_F(Analysis, AnOrbitAFastPassAndAClimbAreSuggestedWhereTheyWereFlown)
{
    const auto reel = PathFlights::showreel();
    const auto commit = PathFlights::upload(*client, flightId, reel.path);
    ASSERT_EQ(commit->status, 200);
    // The import window reads this as "Done — 3 clips suggested".
    EXPECT_EQ(jsonOf(commit)["analysis"], "3 clips suggested");

    const json suggested = clips()["clips"];
    ASSERT_EQ(suggested.size(), 3u) << suggested.dump();
    expectOneAt(suggested, "orbit", reel.orbit);
    expectOneAt(suggested, "fast-pass", reel.pass);
    expectOneAt(suggested, "climb", reel.climb);
    for (const auto &clip : suggested) {
        EXPECT_EQ(clip["auto"], true);
        EXPECT_TRUE(clip["id"].get<std::string>().starts_with("auto-"));
    }
    EXPECT_EQ(withShot(suggested, "orbit")[0]["label"], "Orbit");
    EXPECT_EQ(withShot(suggested, "orbit")[0]["why"], "Orbit · 270° around one point");
    EXPECT_EQ(withShot(suggested, "fast-pass")[0]["why"], "Fast pass · 16 m/s in a straight line");
    EXPECT_EQ(withShot(suggested, "climb")[0]["why"], "Climb · straight up 30 m in 10 s");

    const json found = moments()["moments"];
    EXPECT_EQ(found.size(), 3u) << found.dump();
    expectOneAt(found, "orbit", reel.orbit);

    // What the program's own client makes of it.
    LoopbackClient api(server);
    const auto decoded = run(api->fetchClips(QString::fromStdString(flightId)));
    ASSERT_TRUE(decoded.ok());
    ASSERT_EQ(decoded->size(), 3);
    EXPECT_TRUE(decoded->at(0).autoSuggested.value_or(false));
    EXPECT_TRUE(decoded->at(0).why.has_value());
    const auto decodedMoments = run(api->fetchMoments(QString::fromStdString(flightId)));
    ASSERT_TRUE(decodedMoments.ok());
    EXPECT_EQ(decodedMoments->size(), 3);
    const auto pool = run(api->fetchPoolClips());
    ASSERT_TRUE(pool.ok());
    EXPECT_EQ(pool->size(), 3);
    EXPECT_EQ(pool->at(0).why, decoded->at(0).why);
}

TEST_F(Analysis, EveryOtherShotKindIsFoundInItsPlace)
{
    FlightPath path;
    path.hover(3);
    const auto pan = path.pan(8, 120);
    path.hover(3);
    path.tilt(2, -90);
    const auto topDown = path.hover(6);
    const auto reveal = path.tilt(4, -10);
    path.hover(3);
    const auto descent = path.climb(8, -2.5);
    path.hover(3);
    const auto flyBy = path.straight(6, 10);
    path.hover(3);
    ASSERT_EQ(PathFlights::upload(*client, flightId, path)->status, 200);

    const json found = moments()["moments"];
    EXPECT_EQ(found.size(), 5u) << found.dump();
    expectOneAt(found, "hover-pan", pan);
    expectOneAt(found, "top-down", {topDown.start, topDown.end});
    expectOneAt(found, "reveal", reveal);
    expectOneAt(found, "descent", descent);
    expectOneAt(found, "fly-by", flyBy);
    EXPECT_EQ(withShot(found, "reveal")[0]["why"], "Reveal · camera tilts up from −90° to −10°");
    EXPECT_EQ(withShot(found, "hover-pan")[0]["why"], "Hover-pan · 120° turn in place");
    // A minute of flight gets three suggestions: the best of the five.
    EXPECT_EQ(clips()["clips"].size(), 3u);
}

TEST_F(Analysis, WhatThePilotKeptTossedAndMarkedSurvivesTheNextAnalysis)
{
    const auto reel = PathFlights::showreel();
    ASSERT_EQ(PathFlights::upload(*client, flightId, reel.path)->status, 200);
    LoopbackClient api(server);
    const QString id = QString::fromStdString(flightId);

    // The clips browser keeps the orbit and tosses the pass through its read-modify-write.
    const auto pool = run(api->fetchPoolClips());
    ASSERT_TRUE(pool.ok());
    const auto byShot = [&](const char *label) {
        return *std::find_if(pool->begin(), pool->end(),
                             [&](const PoolClip &c) { return c.label == QLatin1String(label); });
    };
    ASSERT_TRUE(run(api->keepClip(byShot("Orbit"))));
    ASSERT_TRUE(run(api->tossClip(byShot("Fast pass"))));
    // The player tosses the climb by saving its list without it, and marks a clip of its own.
    auto list = run(api->fetchClips(id));
    ASSERT_TRUE(list.ok());
    QList<Clip> saved;
    for (const Clip &c : *list) {
        if (c.label != QLatin1String("Climb"))
            saved.append(c);
    }
    saved.append(Clip{QStringLiteral("c2_1500"), 1.5, 2.5, QStringLiteral("Lift-off"), std::nullopt, std::nullopt});
    ASSERT_TRUE(run(api->saveClips(id, saved)).ok());
    const json before = clips();
    ASSERT_EQ(before["dismissed"].size(), 2u) << before.dump();

    // The flight is sent again: a new commit, a new analysis.
    const auto again = PathFlights::upload(*client, flightId, reel.path);
    ASSERT_EQ(again->status, 200);
    EXPECT_EQ(jsonOf(again)["analysis"], "ok");
    const json after = clips();
    EXPECT_EQ(after, before) << "nothing new to suggest, nothing of the pilot's touched";
    EXPECT_EQ(withShot(moments()["moments"], "fast-pass").size(), 0u) << "a tossed stretch is no moment either";
}

TEST_F(Analysis, AFlightWithoutTelemetryGetsNoSuggestions)
{
    // It came with moments of its own, which stay.
    const std::string camera = "20240512_094500_0002";
    const json cardMoments = {{{"id", "m1"}, {"in", 1.0}, {"out", 2.0}, {"why", "Marked on the card"}}};
    const auto commit = PathFlights::upload(*client, camera, PathFlights::withoutTelemetry(60),
                                            json{{"moments", cardMoments}}.dump());
    ASSERT_EQ(commit->status, 200);
    EXPECT_EQ(jsonOf(commit)["analysis"], "ok");
    EXPECT_EQ(client->Get(("/flights/" + camera + "/clips.json").c_str())->status, 404);
    EXPECT_EQ(get("/flights/" + camera + "/moments.json")["moments"], cardMoments);

    // A flight sent again without its telemetry loses its suggestions, not the pilot's clip.
    ASSERT_EQ(PathFlights::upload(*client, flightId, PathFlights::showreel().path)->status, 200);
    json list = clips();
    const json mine = {{"id", "c4_2000"}, {"in", 2.0}, {"out", 2.5}, {"label", "Mine"}, {"auto", false}};
    list["clips"].push_back(mine);
    ASSERT_EQ(client->Post(("/api/clips/" + flightId).c_str(), list.dump(), "application/json")->status, 200);
    ASSERT_EQ(PathFlights::upload(*client, flightId, PathFlights::withoutTelemetry(60))->status, 200);
    EXPECT_EQ(clips(), json({{"clips", {mine}}}));
    EXPECT_EQ(moments()["moments"], json::array());
}

TEST(AnalysisAtStart, FlightsFromBeforeAreAnalysedInTheBackground)
{
    TestServer first;
    auto client = first.client();
    ASSERT_EQ(PathFlights::upload(*client, flightId, PathFlights::showreel().path)->status, 200);
    first.server().stop();
    // Made a library from before the analysis: no moments, no suggestions.
    const auto folder = first.library() / "flights" / flightId;
    std::filesystem::remove(folder / "moments.json");
    writeFile(folder / "clips.json", R"({"clips":[]})");
    {
        auto db = Database::open(first.library() / "library.db");
        ASSERT_TRUE(db.ok());
        auto guard = db.value()->lock();
        ASSERT_TRUE(db.value()->prepare(R"(UPDATE flights SET clips='{"clips":[]}')").run());
    }

    LibraryServer again(first.server().config());
    ASSERT_TRUE(again.start());
    httplib::Client second(again.baseUrl());
    EXPECT_EQ(jsonOf(second.Get("/manifest.json"))["flights"].size(), 1u);
    const auto suggested = [&] {
        return jsonOf(second.Get(("/flights/" + flightId + "/clips.json").c_str()))["clips"];
    };
    EXPECT_TRUE(waitUntil([&] { return suggested().size() == 3; }, 10000)) << suggested().dump();
    EXPECT_EQ(jsonOf(second.Get(("/flights/" + flightId + "/moments.json").c_str()))["moments"].size(), 3u);
}
