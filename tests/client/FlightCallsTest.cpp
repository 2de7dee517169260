#include "APIError.h"
#include "CoroTest.h"
#include "WireFixture.h"

#include <thread>

namespace {

PoolClip poolClip(const QString &flightId, std::optional<QString> clipId, double start, double end)
{
    PoolClip c;
    c.flightId = flightId;
    c.clipId = std::move(clipId);
    c.start = start;
    c.end = end;
    return c;
}
} // namespace

TEST_F(WireTest, ListsOfTheLibrary)
{
    server.replyWith(200, R"({"flights":[{"id":"DJI_0001","p480":true,"samples":120},{"id":"B"}],"v":2})");
    const auto flights = run(client.fetchManifest());
    ASSERT_TRUE(flights.ok()) << flights.errorText().toStdString();
    ASSERT_EQ(flights->size(), 2);
    EXPECT_EQ(flights->at(0).p480, true);
    expectRequest("GET", "/manifest.json", timeout60);

    server.replyWith(200, R"({"ids":["a","b","a"]})");
    const auto hidden = run(client.fetchHidden());
    ASSERT_TRUE(hidden.ok());
    EXPECT_EQ(*hidden, (QSet<QString>{"a", "b"}));
    expectRequest("GET", "/api/hidden", timeout60);

    server.replyWith(200, R"({"count":3,"bytes":123456789012,"restorable":1})");
    const auto samples = run(client.fetchSamples());
    ASSERT_TRUE(samples.ok());
    EXPECT_EQ(samples->bytes, 123456789012LL);
    expectRequest("GET", "/api/samples", timeout60);

    server.replyWith(200, R"({"flights":{}})");
    EXPECT_EQ(run(client.fetchManifest()).failure().domain, APIError::decodeDomain);
}

TEST_F(WireTest, ClipCountsSkipSuggestionsAndClipsWithoutAFlight)
{
    server.replyWith(200, R"({"clips":[
        {"flightId":"A","in":1,"out":2,"label":""},
        {"flightId":"A","auto":false},
        {"flightId":"A","auto":true},
        {"auto":false},
        {"flightId":"B","auto":null},
        {"flightId":"C","auto":true}]})");
    const auto counts = run(client.fetchClipCounts());
    ASSERT_TRUE(counts.ok());
    EXPECT_EQ(*counts, (QHash<QString, int>{{"A", 2}, {"B", 1}}));
    expectRequest("GET", "/api/clips", timeout60);

    // The full view of the same list needs every required key.
    EXPECT_EQ(run(client.fetchPoolClips()).failure().domain, APIError::decodeDomain);
}

TEST_F(WireTest, MissingOrUnreadableClipsAndMomentsAreEmptyButOtherFailuresAreNot)
{
    server.replyWith(404, "<html>Not found</html>", "text/html");
    auto moments = run(client.fetchMoments("F1"));
    ASSERT_TRUE(moments.ok());
    EXPECT_TRUE(moments->isEmpty());
    expectRequest("GET", "/flights/F1/moments.json", timeout60);
    auto clips = run(client.fetchClips("F1"));
    ASSERT_TRUE(clips.ok());
    expectRequest("GET", "/flights/F1/clips.json", timeout60);

    for (const QByteArray &body : {QByteArray("{}"), QByteArray("not json"), QByteArray(R"({"clips":[{"id":1}]})"),
                                  QByteArray(R"({"moments":null,"clips":null})")}) {
        server.replyWith(200, body);
        clips = run(client.fetchClips("F1"));
        moments = run(client.fetchMoments("F1"));
        ASSERT_TRUE(clips.ok() && moments.ok()) << body.constData();
        EXPECT_TRUE(clips->isEmpty() && moments->isEmpty());
    }

    server.replyWith(401, R"({"clips":[]})");
    clips = run(client.fetchClips("F1"));
    ASSERT_FALSE(clips.ok());
    EXPECT_TRUE(APIError::isUnauthorized(clips.failure()));
    server.replyWith(500, "");
    EXPECT_EQ(run(client.fetchMoments("F1")).errorText(), "Server returned 500.");

    server.replyWith(200, R"({"moments":[{"in":1,"out":2},{"id":"m","in":3,"out":4,"score":0.9}]})");
    moments = run(client.fetchMoments("F1"));
    ASSERT_EQ(moments->size(), 2);
    EXPECT_EQ(moments->at(1).identity(), "m");
}

TEST_F(WireTest, TrackIsEmptyWhenUnreadableButA404Fails)
{
    server.replyWith(200, R"({"meta":{"v":1},"track":[{"t":0,"lat":47.1,"lon":8.2,"relAlt":12.5},{"t":0.1,"lat":47.1,"lon":8.2}]})");
    auto track = run(client.fetchTrack("F1"));
    ASSERT_TRUE(track.ok());
    ASSERT_EQ(track->size(), 2);
    EXPECT_EQ(track->at(0).relAlt, 12.5);
    expectRequest("GET", "/flights/F1/flight.json", timeout60);

    server.replyWith(200, "this is not json");
    track = run(client.fetchTrack("F1"));
    ASSERT_TRUE(track.ok());
    EXPECT_TRUE(track->isEmpty());

    server.replyWith(404, "");
    EXPECT_EQ(run(client.fetchTrack("F1")).errorText(), "Server returned 404.");
}

TEST_F(WireTest, FlightWritesAndTheirShapes)
{
    Clip clip;
    clip.id = "c1";
    clip.start = 2;
    clip.end = 5.25;
    clip.label = "Orbit";
    ASSERT_TRUE(run(client.saveClips("F1", {clip})).ok());
    expectRequest("POST", "/api/clips/F1", timeout60);
    expectJsonBody(R"({"flightId":"F1","clips":[{"id":"c1","in":2.0,"out":5.25,"label":"Orbit"}]})");

    ASSERT_TRUE(run(client.setHidden("F1", true)).ok());
    expectRequest("POST", "/api/hidden/F1", timeout60);
    expectJsonBody(R"({"hidden":true})");

    ASSERT_TRUE(run(client.deleteFlight("F1")).ok());
    expectRequest("DELETE", "/api/flights/F1", timeout60);
    EXPECT_TRUE(server.last().body.isEmpty());

    ASSERT_TRUE(run(client.removeSamples()).ok());
    expectRequest("POST", "/api/samples/remove", timeout60);
    EXPECT_TRUE(server.last().body.isEmpty());
    EXPECT_FALSE(server.last().has("Content-Type"));
    ASSERT_TRUE(run(client.restoreSamples()).ok());
    expectRequest("POST", "/api/samples/restore", timeout60);

    // Writes read no reply: a body that isn't JSON is fine, a bad status is not.
    server.replyWith(200, "ok");
    EXPECT_TRUE(run(client.setHidden("F1", false)).ok());
    server.replyWith(403, "");
    EXPECT_EQ(run(client.deleteFlight("F1")).errorText(), "Server returned 403.");
}

// ---- read-modify-write of clips.json ----

class ClipEditTest : public WireTest
{
protected:
    QByteArray stored;
    QList<RecordingServer::Request> writes;

    void serveClipsJson(QByteArray initial, int readStatus = 200, int writeStatus = 200)
    {
        stored = std::move(initial);
        server.setHandler([=, this](const RecordingServer::Request &r) {
            RecordingServer::Reply reply;
            if (r.method == "GET") {
                reply.status = readStatus;
                reply.body = stored;
            } else {
                reply.status = writeStatus;
                if (writeStatus == 200)
                    stored = r.body;
            }
            return reply;
        });
    }
    [[nodiscard]] Wire::Json storedJson() const { return Wire::Json::parse(stored.toStdString()); }
};

TEST_F(ClipEditTest, KeepDropsAutoOnTheMatchingEntryAndKeepsEverythingElse)
{
    serveClipsJson(R"({"flight":"F1","rev":7,"clips":[
        {"id":"a","in":1.25,"out":3,"label":"","auto":true,"why":"orbit","score":0.875,"big":12345678901234},
        {"id":"b","in":5,"out":6,"label":"x","auto":true},
        {"in":8,"out":9,"label":"no id","auto":true}]})");
    ASSERT_TRUE(run(client.keepClip(poolClip("F1", "a", 1.25, 3))));
    const auto requests = server.requests();
    ASSERT_EQ(requests.size(), 2);
    EXPECT_EQ(requests[0].method, "GET");
    EXPECT_EQ(requests[0].target, "/flights/F1/clips.json");
    EXPECT_EQ(network->seen[0].transferTimeout, timeout60);
    EXPECT_EQ(requests[1].method, "POST");
    EXPECT_EQ(requests[1].target, "/api/clips/F1");
    EXPECT_EQ(requests[1].header("Content-Type"), "application/json");
    EXPECT_EQ(network->seen[1].transferTimeout, timeout60);
    EXPECT_FALSE(requests[1].body.contains('\n'));  // not pretty-printed

    const auto doc = storedJson();
    EXPECT_EQ(doc["rev"], 7);
    EXPECT_EQ(doc["flight"], "F1");
    const auto &a = doc["clips"][0];
    EXPECT_FALSE(a.contains("auto"));
    EXPECT_EQ(a["why"], "orbit");
    EXPECT_EQ(a["score"].get<double>(), 0.875);
    EXPECT_TRUE(a["big"].is_number_integer());
    EXPECT_EQ(a["big"].get<std::int64_t>(), 12345678901234);
    EXPECT_EQ(doc["clips"][1]["auto"], true);
    EXPECT_EQ(doc["clips"][2]["auto"], true);  // an entry without id belongs to pool clips without clipId

    ASSERT_TRUE(run(client.keepClip(poolClip("F1", std::nullopt, 8, 9))));
    EXPECT_FALSE(storedJson()["clips"][2].contains("auto"));
    EXPECT_EQ(storedJson()["clips"][1]["auto"], true);
}

TEST_F(ClipEditTest, TossingTwiceRemembersBothSpans)
{
    serveClipsJson(R"({"clips":[{"id":"a","in":1,"out":3,"label":"","auto":true},{"id":"b","in":4,"out":5,"label":""}],
                      "dismissed":"not a list"})");
    const PoolClip a = poolClip("F1", "a", 1, 3);
    ASSERT_TRUE(run(client.tossClip(a)));
    ASSERT_TRUE(run(client.tossClip(a)));
    const auto doc = storedJson();
    ASSERT_EQ(doc["clips"].size(), 1u);
    EXPECT_EQ(doc["clips"][0]["id"], "b");
    EXPECT_EQ(doc["dismissed"], Wire::Json::parse(R"([{"in":1.0,"out":3.0},{"in":1.0,"out":3.0}])"));
}

TEST_F(ClipEditTest, RetrimMovesTheSpanAndKeepsASuggestion)
{
    serveClipsJson(R"({"clips":[{"id":"a","in":1,"out":3,"label":"","auto":true,"custom":[1,2]}]})");
    ASSERT_TRUE(run(client.retrimClip(poolClip("F1", "a", 1, 3), 1.5, 2.75)));
    const auto entry = storedJson()["clips"][0];
    EXPECT_EQ(entry["in"].get<double>(), 1.5);
    EXPECT_EQ(entry["out"].get<double>(), 2.75);
    EXPECT_FALSE(entry.contains("auto"));
    EXPECT_EQ(entry["custom"], Wire::Json::parse("[1,2]"));
}

TEST_F(ClipEditTest, AnEmptyDocumentGetsAnEmptyClipList)
{
    serveClipsJson("{}");
    ASSERT_TRUE(run(client.keepClip(poolClip("F1", "a", 1, 3))));
    EXPECT_EQ(stored, R"({"clips":[]})");
}

TEST_F(ClipEditTest, EveryFailureIsAPlainFalse)
{
    serveClipsJson(R"({"clips":[]})", 401);
    EXPECT_FALSE(run(client.keepClip(poolClip("F1", "a", 1, 3))));
    EXPECT_EQ(server.count(), 1);  // nothing written after a failed read

    for (const QByteArray &body : {QByteArray("[]"), QByteArray("nope"), QByteArray("")}) {
        server.clear();
        serveClipsJson(body);
        EXPECT_FALSE(run(client.tossClip(poolClip("F1", "a", 1, 3)))) << body.constData();
        EXPECT_EQ(server.count(), 1);
    }

    serveClipsJson(R"({"clips":[]})", 200, 401);
    EXPECT_FALSE(run(client.retrimClip(poolClip("F1", "a", 1, 3), 1, 2)));
    serveClipsJson(R"({"clips":[]})", 200, 500);
    EXPECT_FALSE(run(client.keepClip(poolClip("F1", "a", 1, 3))));

    server.setHandler([](const RecordingServer::Request &) {
        RecordingServer::Reply reply;
        reply.drop = true;
        return reply;
    });
    EXPECT_FALSE(run(client.keepClip(poolClip("F1", "a", 1, 3))));
}

TEST_F(WireTest, ACallOutlivesItsClientAndCancelsOnRequest)
{
    server.setHandler([](const RecordingServer::Request &) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        RecordingServer::Reply reply;
        reply.body = R"({"flights":[{"id":"A"}]})";
        return reply;
    });
    // Sign-in replaces the client while a gallery load is in flight: the load still finishes.
    auto dropped = std::make_unique<APIClient>(server.base(), std::nullopt);
    auto pending = dropped->fetchManifest();
    dropped.reset();
    const auto flights = run(std::move(pending));
    ASSERT_TRUE(flights.ok()) << flights.errorText().toStdString();
    EXPECT_EQ(flights->size(), 1);

    CancelToken token;
    auto cancelled = client.fetchManifest(&token);
    token.cancel();
    const auto r = run(std::move(cancelled));
    ASSERT_FALSE(r.ok());
    EXPECT_EQ(r.failure().domain, APIError::networkDomain);
}
