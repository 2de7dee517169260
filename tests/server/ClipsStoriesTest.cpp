// Clips, hidden flights, stories with their cut lists, and music, against one uploaded flight.
#include "TestServer.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;
using nlohmann::json;

namespace {
const std::string flightId = "20240102_030405_0007";

class Library : public ::testing::Test
{
protected:
    void SetUp() override
    {
        client = server.client();
        ASSERT_EQ(uploadFlight(*client, flightId, makeFlightFolder(server.sandbox() / "flight", 2.0))->status, 200);
    }
    json get(const std::string &path) { return jsonOf(client->Get(path.c_str())); }
    int post(const std::string &path, const json &body)
    {
        return client->Post(path.c_str(), body.dump(), "application/json")->status;
    }

    TestServer server;
    std::unique_ptr<httplib::Client> client;
};
} // namespace

TEST_F(Library, BothClipBodiesKeepWhatTheServerDoesNotKnow)
{
    // The read-modify-write of the clips browser sends the whole clips.json back.
    const json whole = {{"clips", {{{"id", "c1"}, {"in", 0.25}, {"out", 1.5}, {"label", "x"}, {"colour", "red"}}}},
                        {"dismissed", {{{"in", 1}, {"out", 2}}}},
                        {"version", 7}};
    EXPECT_EQ(post("/api/clips/" + flightId, whole), 200);
    EXPECT_EQ(get("/flights/" + flightId + "/clips.json"), whole);

    // The player sends flightId + clips: the list is replaced, everything else stays.
    const json clips = {{{"id", "c2"}, {"in", 0.5}, {"out", 1.25}, {"label", "y"}, {"extra", {{"k", 1}}}}};
    EXPECT_EQ(post("/api/clips/" + flightId, {{"flightId", flightId}, {"clips", clips}}), 200);
    const json stored = get("/flights/" + flightId + "/clips.json");
    EXPECT_EQ(stored["clips"], clips);
    EXPECT_EQ(stored["dismissed"], whole["dismissed"]);
    EXPECT_EQ(stored["version"], 7);
    EXPECT_FALSE(stored.contains("flightId"));

    // An empty object is a flight without clips.
    EXPECT_EQ(post("/api/clips/" + flightId, json::object()), 200);
    EXPECT_EQ(get("/flights/" + flightId + "/clips.json"), json({{"clips", json::array()}}));

    EXPECT_EQ(post("/api/clips/unknown", whole), 404);
}

TEST_F(Library, ClipsTheClientCouldNotReadAreRefusedWithTheReason)
{
    const json good = {{"clips", {{{"id", "c1"}, {"in", 0.5}, {"out", 1.0}, {"label", ""}}}}};
    ASSERT_EQ(post("/api/clips/" + flightId, good), 200);
    const auto clip = [](json changes) {
        json c = {{"id", "c2"}, {"in", 0.5}, {"out", 1.5}, {"label", "x"}};
        c.update(changes);
        return json{{"clips", {c}}};
    };
    const std::vector<std::pair<std::string, std::string>> refused = {
        {R"({"clips":[{"start":"x"}]})", "\"id\""},
        {clip({{"in", "0.5"}}).dump(), "\"in\""},
        {clip({{"out", nullptr}}).dump(), "\"out\""},
        {clip({{"in", 2.0}}).dump(), "before \"out\""},
        {clip({{"in", 1.5}}).dump(), "before \"out\""},
        {clip({{"in", -1}}).dump(), "before 0"},
        {R"({"clips":[{"id":"c","in":1e999,"out":2,"label":""}]})", "JSON"},
        {clip({{"label", 7}}).dump(), "\"label\""},
        {json{{"clips", {{{"id", "c"}, {"in", 0}, {"out", 1}}}}}.dump(), "\"label\""},
        {clip({{"id", 3}}).dump(), "\"id\""},
        {clip({{"auto", "yes"}}).dump(), "\"auto\""},
        {clip({{"why", json::array()}}).dump(), "\"why\""},
        {json{{"flightId", flightId}, {"clips", {{{"id", "c"}, {"in", "a"}}}}}.dump(), "\"in\""},
        {json{{"clips", "not a list"}}.dump(), "list"},
        {json{{"clips", {1, 2}}}.dump(), "object"},
        {json{{"clips", json::array()}, {"dismissed", {{{"in", "a"}}}}}.dump(), "dismissed"},
        {R"({"clips":[)", "JSON"},
    };
    for (const auto &[body, reason] : refused) {
        const auto reply = client->Post(("/api/clips/" + flightId).c_str(), body, "application/json");
        ASSERT_TRUE(reply);
        EXPECT_EQ(reply->status, 400) << body;
        EXPECT_NE(jsonOf(reply).value("detail", "").find(reason), std::string::npos) << body << " → " << reply->body;
    }
    EXPECT_EQ(post("/api/clips/" + flightId, {{"flightId", "another"}, {"clips", json::array()}}), 400);
    // Nothing of a refused body is kept: the list reads as it was.
    EXPECT_EQ(get("/flights/" + flightId + "/clips.json"), good);
    EXPECT_EQ(get("/api/clips")["clips"].size(), 1u);
}

TEST_F(Library, StoryItemsTheClientCouldNotReadAreRefusedWithTheReason)
{
    const json item = {{"flightId", flightId}, {"in", 0.5}, {"out", 1.5}, {"label", "Orbit"}};
    const auto created = client->Post("/api/projects", json{{"title", "Dawn"}, {"items", {item}}}.dump(), "application/json");
    ASSERT_EQ(created->status, 200);
    const std::string id = jsonOf(created)["id"];
    const auto with = [&](json changes) {
        json i = item;
        i.update(changes);
        return json{{"items", {i}}};
    };
    const std::vector<std::pair<json, std::string>> refused = {
        {with({{"in", "zero"}}), "\"in\""},
        {with({{"out", 0.5}}), "before \"out\""},
        {with({{"flightId", "20990101_000000_0001"}}), "no flight 20990101_000000_0001"},
        {with({{"flightId", 12}}), "\"flightId\""},
        {with({{"clipId", false}}), "\"clipId\""},
        {with({{"label", json::object()}}), "\"label\""},
        {json{{"items", {item, "loose"}}}, "item 2"},
        {json{{"items", item}}, "list"},
        {json{{"title", 5}}, "\"title\""},
        {json{{"notes", json::array()}}, "\"notes\""},
    };
    for (const auto &[body, reason] : refused) {
        for (const std::string &path : {std::string("/api/projects"), "/api/projects/" + id}) {
            const auto reply = client->Post(path.c_str(), body.dump(), "application/json");
            ASSERT_TRUE(reply);
            EXPECT_EQ(reply->status, 400) << path << " " << body.dump();
            EXPECT_NE(jsonOf(reply).value("detail", "").find(reason), std::string::npos) << body.dump() << " → " << reply->body;
        }
    }
    EXPECT_EQ(get("/api/projects")["projects"].size(), 1u);
    EXPECT_EQ(get("/api/projects/" + id)["items"], json::array({item}));
    EXPECT_EQ(get("/api/projects/" + id)["title"], "Dawn");
    // A missing label is an empty one, as the client reads it.
    EXPECT_EQ(post("/api/projects/" + id, {{"items", {{{"flightId", flightId}, {"in", 0}, {"out", 1}}}}}), 200);
    EXPECT_EQ(get("/api/projects/" + id)["items"][0]["label"], "");
}

TEST_F(Library, ThePoolListsEveryClipWithItsFlight)
{
    ASSERT_EQ(post("/api/clips/" + flightId,
                   {{"clips",
                     {{{"id", "c1"}, {"in", 0.46}, {"out", 1.5}, {"label", "kept"}},
                      {{"id", "s1"}, {"in", 1.0}, {"out", 1.8}, {"label", ""}, {"auto", true}, {"why", "climb"}},
                      {{"id", "not/a/file/name"}, {"in", 0.1}, {"out", 0.2}, {"label", "odd id"}}}}}),
              200);
    const json pool = get("/api/clips")["clips"];
    ASSERT_EQ(pool.size(), 3u);
    EXPECT_EQ(pool[0], json({{"flightId", flightId},
                             {"clipId", "c1"},
                             {"in", 0.46},
                             {"out", 1.5},
                             {"label", "kept"},
                             {"thumb", "flights/" + flightId + "/clipthumb_c1_5.jpg"},
                             {"place", "Test Field"},
                             {"date", "2024-01-02T03:04:05"},
                             {"p480", false},
                             {"vertical", false}}));
    EXPECT_EQ(pool[1]["auto"], true);
    EXPECT_EQ(pool[1]["why"], "climb");
    // An id that can't be part of a file name shows the flight's thumbnail.
    EXPECT_EQ(pool[2]["thumb"], "flights/" + flightId + "/thumb.jpg");

    // The clip's thumbnail is made from the proxy when first asked for.
    const auto thumb = client->Get(("/" + pool[0]["thumb"].get<std::string>()).c_str());
    ASSERT_EQ(thumb->status, 200);
    EXPECT_EQ(thumb->get_header_value("Content-Type"), "image/jpeg");
    EXPECT_EQ(thumb->body.substr(0, 2), "\xff\xd8");
    EXPECT_EQ(client->Get(("/flights/" + flightId + "/clipthumb_c1_999999.jpg").c_str())->status, 404);
}

TEST_F(Library, HiddenFlights)
{
    EXPECT_EQ(get("/api/hidden"), json({{"ids", json::array()}}));
    EXPECT_EQ(post("/api/hidden/" + flightId, {{"hidden", true}}), 200);
    EXPECT_EQ(get("/api/hidden")["ids"], json::array({flightId}));
    // Hidden flights stay in the manifest: the gallery filters them.
    EXPECT_EQ(get("/manifest.json")["flights"].size(), 1u);
    EXPECT_EQ(post("/api/hidden/" + flightId, {{"hidden", false}}), 200);
    EXPECT_EQ(get("/api/hidden")["ids"].size(), 0u);
    EXPECT_EQ(post("/api/hidden/" + flightId, {{"hidden", "yes"}}), 400);
    EXPECT_EQ(post("/api/hidden/unknown", {{"hidden", true}}), 404);
}

TEST_F(Library, AStoryAndItsCutList)
{
    const json items = {{{"flightId", flightId}, {"clipId", "c1"}, {"in", 0.5}, {"out", 1.5}, {"label", "Lift-off"}},
                        {{"flightId", flightId}, {"in", 1.0}, {"out", 2.0}, {"label", "Orbit"}, {"mine", 1}}};
    const auto created = client->Post("/api/projects", json{{"title", "Cliffs at Dawn!"}, {"items", items}}.dump(),
                                      "application/json");
    ASSERT_EQ(created->status, 200);
    const json project = jsonOf(created);
    const std::string id = project["id"];
    EXPECT_EQ(project["items"], items);
    EXPECT_EQ(project["title"], "Cliffs at Dawn!");

    const json list = get("/api/projects")["projects"];
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(list[0]["count"], 2);
    EXPECT_EQ(list[0]["cover"], json({{"flightId", flightId}, {"clipId", "c1"}}));
    EXPECT_TRUE(list[0]["updated"].is_string());

    const json edl = get("/api/projects/" + id + "/edl");
    EXPECT_EQ(edl["id"], id);
    EXPECT_EQ(edl["slug"], "cliffs-at-dawn");
    EXPECT_EQ(edl["count"], 2);
    EXPECT_EQ(edl["items"][0], json({{"seq", 1},
                                     {"flightId", flightId},
                                     {"source", "DJI_20240102030405_0007_D"},
                                     {"in", 0.5},
                                     {"out", 1.5},
                                     {"label", "Lift-off"},
                                     {"output", "cliffs-at-dawn_01.mp4"}}));
    EXPECT_EQ(edl["items"][1]["output"], "cliffs-at-dawn_02.mp4");

    EXPECT_EQ(post("/api/projects/" + id, {{"title", "Cliffs"}, {"notes", ""}, {"items", {items[1]}}}), 200);
    const json saved = get("/api/projects/" + id);
    EXPECT_EQ(saved["title"], "Cliffs");
    EXPECT_EQ(saved["items"], json::array({items[1]}));
    EXPECT_EQ(get("/api/projects/" + id + "/edl")["slug"], "cliffs");

    EXPECT_EQ(client->Delete(("/api/projects/" + id).c_str())->status, 200);
    EXPECT_EQ(client->Get(("/api/projects/" + id).c_str())->status, 404);
    EXPECT_EQ(client->Get(("/api/projects/" + id + "/edl").c_str())->status, 404);
}

TEST_F(Library, MusicBedsAreMadeAndServed)
{
    const json tracks = get("/api/music")["tracks"];
    ASSERT_GE(tracks.size(), 3u);
    EXPECT_EQ(tracks[2], "ambient/03.Slow Orbit.m4a");
    const auto track = client->Get("/music/ambient/03.Slow%20Orbit.m4a");
    ASSERT_EQ(track->status, 200);
    EXPECT_EQ(track->get_header_value("Content-Type"), "audio/mp4");
    EXPECT_GT(track->body.size(), 100000u);
    EXPECT_EQ(client->Get("/music/..%2Flibrary.db")->status, 404);
}
