#include "APIError.h"
#include "CoroTest.h"
#include "WireFixture.h"

namespace {
const QByteArray projectReply = R"({"id":"p1","title":"Alps","items":[{"flightId":"F","clipId":"c","in":1,"out":2,"label":"a"}]})";
} // namespace

TEST_F(WireTest, StoriesAreReadAndWrittenWithTheirBodies)
{
    server.replyWith(200, R"({"projects":[{"id":"p1","title":"Alps","count":2,"cover":{"flightId":"F"}}]})");
    const auto list = run(client.fetchProjects());
    ASSERT_TRUE(list.ok());
    EXPECT_EQ(list->at(0).cover->flightId, "F");
    expectRequest("GET", "/api/projects", timeout60);

    server.replyWith(200, projectReply);
    const auto project = run(client.fetchProject("p1"));
    ASSERT_TRUE(project.ok());
    EXPECT_EQ(project->items.size(), 1);
    expectRequest("GET", "/api/projects/p1", timeout60);

    ASSERT_TRUE(run(client.createProject("New")).ok());
    expectRequest("POST", "/api/projects", timeout60);
    expectJsonBody(R"({"title":"New"})");

    ReelItem item;
    item.start = 1;
    item.end = 2.5;
    item.label = "x";
    ASSERT_TRUE(run(client.createProject("New", {item})).ok());
    expectJsonBody(R"({"title":"New","items":[{"in":1.0,"out":2.5,"label":"x"}]})");

    // Absent notes go out as the empty string.
    Project save = *project;
    save.title = "Alps \"2026\"";
    ASSERT_TRUE(run(client.saveProject(save)).ok());
    expectRequest("POST", "/api/projects/p1", timeout60);
    expectJsonBody(R"({"title":"Alps \"2026\"","notes":"","items":[{"flightId":"F","clipId":"c","in":1.0,"out":2.0,"label":"a"}]})");
    save.notes = "n";
    ASSERT_TRUE(run(client.saveProject(save)).ok());
    EXPECT_TRUE(server.last().body.contains(R"("notes":"n")"));

    ASSERT_TRUE(run(client.deleteProject("p1")).ok());
    expectRequest("DELETE", "/api/projects/p1", timeout60);

    server.replyWith(200, R"({"tracks":["Alpine Dawn.mp3","b.m4a"]})");
    EXPECT_EQ(*run(client.fetchMusic()), (QStringList{"Alpine Dawn.mp3", "b.m4a"}));
    expectRequest("GET", "/api/music", timeout60);
}

TEST_F(WireTest, AutoreelBodyKeepsItsOrderAndLeavesOutWhatIsNotGiven)
{
    server.replyWith(200, projectReply);
    ASSERT_TRUE(run(client.makeAutoreel(60, QStringList{"F1", "F2"}, QStringLiteral("Zermatt"), false)).ok());
    expectRequest("POST", "/api/autoreel", timeout60);
    expectJsonBody(R"({"target":60.0,"flightIds":["F1","F2"],"place":"Zermatt","clipsOnly":false})");

    ASSERT_TRUE(run(client.makeAutoreel(90.5, std::nullopt, std::nullopt, true)).ok());
    expectJsonBody(R"({"target":90.5,"clipsOnly":true})");

    server.replyWith(200, R"({"id":"p1","title":"Alps"})");  // a draft without items
    EXPECT_EQ(run(client.makeAutoreel(60, std::nullopt, std::nullopt, true)).failure().domain, APIError::decodeDomain);
}

TEST_F(WireTest, CutListComesWithItsSortedPrettyText)
{
    const QByteArray body =
        R"({"title":"Alps","id":"p1","count":1,"extra":{"z":1,"a":[1.5,2]},"items":[{"seq":1,"label":"a","output":"01-a.mp4","in":1.25}]})";
    server.replyWith(200, body);
    const auto doc = run(client.fetchEDL("p1"));
    ASSERT_TRUE(doc.ok());
    expectRequest("GET", "/api/projects/p1/edl", timeout60);
    EXPECT_EQ(doc->edl.items.at(0).output, "01-a.mp4");
    EXPECT_EQ(doc->edl.items.at(0).start, 1.25);
    EXPECT_FALSE(doc->edl.items.at(0).end);
    EXPECT_EQ(doc->text, QStringLiteral(R"({
  "count": 1,
  "extra": {
    "a": [
      1.5,
      2
    ],
    "z": 1
  },
  "id": "p1",
  "items": [
    {
      "in": 1.25,
      "label": "a",
      "output": "01-a.mp4",
      "seq": 1
    }
  ],
  "title": "Alps"
})"));
    EXPECT_EQ(run(client.fetchEDL("p1"))->text, doc->text);

    server.replyWith(200, R"({"id":"p1","title":"Alps","items":[]})");  // no count
    EXPECT_EQ(run(client.fetchEDL("p1")).failure().domain, APIError::decodeDomain);
}

TEST_F(WireTest, RenderBodyKeepsItsOrderAndLeavesOutUnsetChoices)
{
    RenderRequest settings;
    settings.track = "Alpine Dawn.mp3";
    settings.hud = true;
    ASSERT_TRUE(run(client.startRender("p1", settings)).ok());
    expectRequest("POST", "/api/projects/p1/render", timeout60);
    expectJsonBody(R"({"track":"Alpine Dawn.mp3","hud":true,"xfade":0.2})");

    settings.beatSync = "bars";
    settings.aspect = "vertical";
    ASSERT_TRUE(run(client.startRender("p1", settings)).ok());
    expectJsonBody(R"({"track":"Alpine Dawn.mp3","beatSync":"bars","hud":true,"xfade":0.2,"aspect":"vertical"})");

    // A video already being made: the caller tells 409 apart.
    server.replyWith(409, R"({"error":"busy"})");
    const auto busy = run(client.startRender("p1", settings));
    ASSERT_FALSE(busy.ok());
    EXPECT_TRUE(APIError::isStatus(busy.failure(), 409));
    EXPECT_EQ(busy.errorText(), "Server returned 409.");
}

TEST_F(WireTest, VideosOfAStoryAndOfTheLibrary)
{
    server.replyWith(200, R"({"status":"running","progress":0.4,"settings":{"track":"t","xfade":0.2,"hud":false},"eta":12})");
    const auto status = run(client.fetchRenderStatus("p1"));
    ASSERT_TRUE(status.ok());
    EXPECT_EQ(status->progress, 0.4);
    EXPECT_EQ(status->settings->hud, false);
    expectRequest("GET", "/api/projects/p1/render", timeout60);

    server.replyWith(200, R"({"renders":[{"id":"r1","size":5000000000,"projectId":"p1","projectTitle":"Alps"}]})");
    auto renders = run(client.fetchRenders("p1"));
    ASSERT_TRUE(renders.ok());
    EXPECT_EQ(renders->at(0).size, 5000000000LL);
    expectRequest("GET", "/api/projects/p1/renders", timeout60);
    renders = run(client.fetchAllRenders());
    EXPECT_EQ(renders->at(0).projectTitle, "Alps");
    expectRequest("GET", "/api/renders", timeout60);

    ASSERT_TRUE(run(client.deleteRender("p1", "r1")).ok());
    expectRequest("DELETE", "/api/projects/p1/renders/r1", timeout60);
}

TEST_F(WireTest, SharesAndTheOnlyPatch)
{
    const QByteArray share =
        R"({"token":"tk","url":"https://x/s/tk","projectId":"p1","renderId":"r1","views":0,"hearts":2})";
    server.replyWith(200, QByteArray(R"({"shares":[)") + share + "]}");
    ASSERT_EQ(run(client.fetchShares())->size(), 1);
    expectRequest("GET", "/api/shares", timeout60);

    server.replyWith(200, share);
    ASSERT_TRUE(run(client.createShare("p1", "r1")).ok());
    expectRequest("POST", "/api/projects/p1/shares", timeout60);
    expectJsonBody(R"({"renderId":"r1"})");

    ASSERT_TRUE(run(client.updateShare("tk", "", "")).ok());
    expectRequest("PATCH", "/api/shares/tk", timeout60);
    expectJsonBody(R"({"title":"","description":""})");

    ASSERT_TRUE(run(client.deleteShare("tk")).ok());
    expectRequest("DELETE", "/api/shares/tk", timeout60);

    server.replyWith(200, R"({"suggestions":[{"title":"Over the ridge"},{"title":"B","description":"d"}]})");
    const auto copy = run(client.suggestShareCopy("p1"));
    ASSERT_TRUE(copy.ok());
    EXPECT_EQ(copy->at(1).description, "d");
    expectRequest("POST", "/api/projects/p1/suggest", timeout60);
    EXPECT_TRUE(server.last().body.isEmpty());

    // Only shares are patched.
    int patches = 0;
    for (const auto &r : server.requests())
        patches += r.method == "PATCH";
    EXPECT_EQ(patches, 1);
}
