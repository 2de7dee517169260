// The staged upload of a real flight, from the first PUT to the files being served.
#include "TestServer.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {
const std::string flightId = "20240102_030405_0007";

class Upload : public ::testing::Test
{
protected:
    static void SetUpTestSuite() { folder = new fs::path(makeFlightFolder(fs::temp_directory_path() / "aeroloom-upload-flight")); }
    static void TearDownTestSuite()
    {
        fs::remove_all(*folder);
        delete folder;
    }
    static fs::path *folder;
};
fs::path *Upload::folder = nullptr;
} // namespace

TEST_F(Upload, StagedFilesBecomeOneFlightAtCommit)
{
    TestServer server;
    auto client = server.client();

    // Staged files are not a flight yet: not listed, not served.
    ASSERT_EQ(client->Put(("/api/flights/" + flightId + "/files/flight.json").c_str(), readFile(*folder / "flight.json"),
                          "application/octet-stream")->status,
              200);
    EXPECT_EQ(jsonOf(client->Get("/api/flights"))["ids"].size(), 0u);
    EXPECT_EQ(client->Get(("/flights/" + flightId + "/flight.json").c_str())->status, 404);

    const auto commit = uploadFlight(*client, flightId, *folder);
    ASSERT_TRUE(commit);
    ASSERT_EQ(commit->status, 200) << commit->body;
    // Two seconds of flight hold no shot worth suggesting: the import window says "Done".
    EXPECT_EQ(jsonOf(commit), nlohmann::json({{"analysis", "ok"}}));
    EXPECT_FALSE(fs::exists(server.library() / "staging" / flightId));

    const auto library = jsonOf(client->Get("/api/flights"));
    EXPECT_EQ(library["ids"], nlohmann::json::array({flightId}));
    EXPECT_EQ(library["quota"], 0);
    EXPECT_GT(library["used"].get<std::int64_t>(), static_cast<std::int64_t>(fs::file_size(*folder / "proxy.mp4")));

    const auto manifest = jsonOf(client->Get("/manifest.json"));
    ASSERT_EQ(manifest["flights"].size(), 1u);
    const auto &entry = manifest["flights"][0];
    EXPECT_EQ(entry["id"], flightId);
    EXPECT_EQ(entry["date"], "2024-01-02T03:04:05");
    EXPECT_EQ(entry["place"], "Test Field");
    EXPECT_EQ(entry["samples"], 21);
    EXPECT_EQ(entry["p480"], false);
    EXPECT_TRUE(entry["centroid"].contains("lat"));

    for (const char *name : {"proxy.mp4", "thumb.jpg", "flight.json"}) {
        const auto got = client->Get(("/flights/" + flightId + "/" + name).c_str());
        ASSERT_EQ(got->status, 200) << name;
        EXPECT_EQ(got->body, readFile(*folder / name)) << name;
    }
    EXPECT_EQ(client->Get(("/flights/" + flightId + "/proxy.mp4").c_str())->get_header_value("Content-Type"),
              "video/mp4");
    // A new flight with nothing to suggest has no clips yet: 404, which the client reads as empty.
    EXPECT_EQ(client->Get(("/flights/" + flightId + "/clips.json").c_str())->status, 404);
}

TEST_F(Upload, RangesOfTheProxy)
{
    TestServer server;
    auto client = server.client();
    ASSERT_EQ(uploadFlight(*client, flightId, *folder)->status, 200);
    const std::string proxy = readFile(*folder / "proxy.mp4");
    const std::string path = "/flights/" + flightId + "/proxy.mp4";
    const auto size = proxy.size();

    const auto head = client->Get(path.c_str(), {{"Range", "bytes=0-99"}});
    EXPECT_EQ(head->status, 206);
    EXPECT_EQ(head->body, proxy.substr(0, 100));
    EXPECT_EQ(head->get_header_value("Content-Range"), "bytes 0-99/" + std::to_string(size));

    const auto tail = client->Get(path.c_str(), {{"Range", "bytes=" + std::to_string(size - 1) + "-"}});
    EXPECT_EQ(tail->status, 206);
    EXPECT_EQ(tail->body, proxy.substr(size - 1));

    const auto beyond = client->Get(path.c_str(), {{"Range", "bytes=" + std::to_string(size - 10) + "-99999999"}});
    EXPECT_EQ(beyond->status, 206);
    EXPECT_EQ(beyond->body, proxy.substr(size - 10));

    const auto suffix = client->Get(path.c_str(), {{"Range", "bytes=-500"}});
    EXPECT_EQ(suffix->body, proxy.substr(size - 500));

    const auto outside = client->Get(path.c_str(), {{"Range", "bytes=" + std::to_string(size) + "-"}});
    EXPECT_EQ(outside->status, 416);
    EXPECT_EQ(outside->get_header_value("Content-Range"), "bytes */" + std::to_string(size));

    const auto whole = client->Get(path.c_str());
    EXPECT_EQ(whole->status, 200);
    EXPECT_EQ(whole->get_header_value("Accept-Ranges"), "bytes");
}

TEST_F(Upload, QuotaRefusesWhatWouldNotFit)
{
    TestServer server([](ServerConfig &c) { c.quota = 100 * 1000; });
    auto client = server.client();
    ASSERT_EQ(client->Put(("/api/flights/" + flightId + "/files/flight.json").c_str(), readFile(*folder / "flight.json"),
                          "application/octet-stream")->status,
              200);
    const auto proxy = client->Put(("/api/flights/" + flightId + "/files/proxy.mp4").c_str(),
                                   std::string(200 * 1000, 'x'), "application/octet-stream");
    ASSERT_TRUE(proxy);
    EXPECT_EQ(proxy->status, 413);
    EXPECT_NE(jsonOf(proxy)["detail"].get<std::string>().find("of the library's 100 kB"), std::string::npos)
        << "the detail names the quota in MB, as " << proxy->body;
    EXPECT_EQ(jsonOf(client->Get("/api/flights"))["quota"], 100 * 1000);
}

TEST_F(Upload, CommitOverTheQuotaIsRefusedWithADetail)
{
    TestServer server;
    auto client = server.client();
    for (const char *name : {"flight.json", "proxy.mp4"}) {
        ASSERT_EQ(client->Put(("/api/flights/" + flightId + "/files/" + name).c_str(), readFile(*folder / name),
                              "application/octet-stream")->status,
                  200);
    }
    server.server().stop();

    // The same library, started again with a quota the staged flight doesn't fit in.
    ServerConfig config = server.server().config();
    config.quota = 1000;
    LibraryServer smaller(config);
    ASSERT_TRUE(smaller.start());
    httplib::Client again(smaller.baseUrl());
    const auto commit = again.Post(("/api/flights/" + flightId + "/commit").c_str());
    EXPECT_EQ(commit->status, 413);
    // The client puts "Storage quota exceeded — " before the detail itself.
    EXPECT_EQ(jsonOf(commit)["detail"].get<std::string>().rfind("the flight needs ", 0), 0u) << commit->body;
    EXPECT_EQ(jsonOf(again.Get("/manifest.json"))["flights"].size(), 0u);
}

TEST_F(Upload, DiscardDropsEverythingStaged)
{
    TestServer server;
    auto client = server.client();
    ASSERT_EQ(client->Put(("/api/flights/" + flightId + "/files/proxy.mp4").c_str(), readFile(*folder / "proxy.mp4"),
                          "application/octet-stream")->status,
              200);
    EXPECT_EQ(client->Delete(("/api/flights/" + flightId + "/staging").c_str())->status, 200);
    EXPECT_FALSE(fs::exists(server.library() / "staging" / flightId));
    EXPECT_EQ(client->Post(("/api/flights/" + flightId + "/commit").c_str())->status, 409);
    // Discarding twice, or what was never staged, is harmless.
    EXPECT_EQ(client->Delete(("/api/flights/" + flightId + "/staging").c_str())->status, 200);
}

TEST_F(Upload, SendingAFlightAgainReplacesItAndKeepsItsClips)
{
    TestServer server;
    auto client = server.client();
    ASSERT_EQ(uploadFlight(*client, flightId, *folder)->status, 200);
    const std::string clips = R"({"clips":[{"id":"c1","in":0.5,"out":1.5,"label":"kept"}]})";
    ASSERT_EQ(client->Post(("/api/clips/" + flightId).c_str(), clips, "application/json")->status, 200);

    ASSERT_EQ(uploadFlight(*client, flightId, *folder)->status, 200);
    EXPECT_EQ(jsonOf(client->Get("/manifest.json"))["flights"].size(), 1u);
    EXPECT_EQ(client->Get(("/flights/" + flightId + "/clips.json").c_str())->body, clips);
    EXPECT_EQ(jsonOf(client->Get("/api/clips"))["clips"].size(), 1u);
}

TEST_F(Upload, AnIdMadeFromAPlainFileNameWorks)
{
    // Files without a camera name are known by their stem, spaces and all.
    TestServer server;
    auto client = server.client();
    ASSERT_EQ(uploadFlight(*client, "my%20clip%20(1)", *folder)->status, 200);
    EXPECT_EQ(jsonOf(client->Get("/api/flights"))["ids"], nlohmann::json::array({"my clip (1)"}));
    EXPECT_EQ(client->Get("/flights/my%20clip%20(1)/thumb.jpg")->status, 200);
    const auto entry = jsonOf(client->Get("/manifest.json"))["flights"][0];
    EXPECT_EQ(entry["id"], "my clip (1)");
    EXPECT_FALSE(entry.contains("date"));
}

TEST_F(Upload, DeletingAFlightRemovesItsFiles)
{
    TestServer server;
    auto client = server.client();
    ASSERT_EQ(uploadFlight(*client, flightId, *folder)->status, 200);
    EXPECT_EQ(client->Delete(("/api/flights/" + flightId).c_str())->status, 200);
    EXPECT_EQ(jsonOf(client->Get("/manifest.json"))["flights"].size(), 0u);
    EXPECT_EQ(client->Get(("/flights/" + flightId + "/proxy.mp4").c_str())->status, 404);
    EXPECT_FALSE(fs::exists(server.library() / "flights" / flightId));
    EXPECT_EQ(jsonOf(client->Get("/api/flights"))["used"], 0);
    EXPECT_EQ(client->Delete(("/api/flights/" + flightId).c_str())->status, 404);
}

TEST_F(Upload, StagingForgottenForADayIsClearedAtStart)
{
    TestServer server;
    auto client = server.client();
    for (const char *id : {"old", "recent"}) {
        ASSERT_EQ(client->Put((std::string("/api/flights/") + id + "/files/thumb.jpg").c_str(), std::string(10, 'x'),
                              "application/octet-stream")->status,
                  200);
    }
    server.server().stop();
    fs::last_write_time(server.library() / "staging" / "old",
                        fs::file_time_type::clock::now() - std::chrono::hours(25));
    LibraryServer again(server.server().config());
    ASSERT_TRUE(again.start());
    EXPECT_FALSE(fs::exists(server.library() / "staging" / "old"));
    EXPECT_TRUE(fs::exists(server.library() / "staging" / "recent" / "thumb.jpg"));
}

TEST_F(Upload, AStartAfterAnInterruptedCommitOrDeleteSetsTheListRight)
{
    TestServer server;
    auto client = server.client();
    ASSERT_EQ(uploadFlight(*client, flightId, *folder)->status, 200);
    ASSERT_EQ(client->Post(("/api/clips/" + flightId).c_str(), R"({"clips":[{"id":"c","in":0,"out":1,"label":""}]})",
                           "application/json")->status,
              200);
    server.server().stop();
    // As if the server stopped between the steps: a whole flight that was never recorded, a
    // half one, and a record whose folder is gone.
    const fs::path flights = server.library() / "flights";
    fs::rename(flights / flightId, flights / "unrecorded");
    fs::create_directories(flights / "half");
    writeFile(flights / "half" / "flight.json", "{\"meta\":");

    LibraryServer again(server.server().config());
    ASSERT_TRUE(again.start());
    httplib::Client second(again.baseUrl());
    EXPECT_EQ(jsonOf(second.Get("/api/flights"))["ids"], nlohmann::json::array({"unrecorded"}));
    EXPECT_FALSE(fs::exists(flights / "half"));
    EXPECT_EQ(jsonOf(second.Get("/api/clips"))["clips"].size(), 1u);
    EXPECT_EQ(jsonOf(second.Get("/manifest.json"))["flights"][0]["place"], "Test Field");
}
