// A new library comes with sample flights, which the settings screen removes and restores.
#include "TestServer.h"

#include <gtest/gtest.h>

using nlohmann::json;

TEST(Samples, ANewLibraryHasSamplesThatCanBeRemovedAndRestored)
{
    TestServer server([](ServerConfig &c) {
        c.samples = true;
        c.sampleSeconds = 4;
    });
    auto client = server.client();
    const json manifest = jsonOf(client->Get("/manifest.json"));
    ASSERT_EQ(manifest["flights"].size(), 3u);
    const std::string first = manifest["flights"][0]["id"];
    EXPECT_EQ(manifest["flights"][0]["relAlt"]["max"].get<double>() > 50, true);

    // Each sample plays: a real video, its thumbnail, a path that the client's reader accepts.
    const auto proxy = client->Get(("/flights/" + first + "/proxy.mp4").c_str(), {{"Range", "bytes=4-7"}});
    EXPECT_EQ(proxy->body, "ftyp");
    EXPECT_EQ(client->Get(("/flights/" + first + "/thumb.jpg").c_str())->status, 200);
    EXPECT_EQ(jsonOf(client->Get(("/flights/" + first + "/flight.json").c_str()))["track"].size(), 41u);
    // One clip kept on each; four seconds of flight leave the analysis nothing else to suggest.
    EXPECT_EQ(jsonOf(client->Get("/api/clips"))["clips"].size(), 3u);
    // Analysed when made, so the server's first start has nothing left to analyse.
    EXPECT_EQ(jsonOf(client->Get(("/flights/" + first + "/moments.json").c_str()))["analysis"], 1);

    json samples = jsonOf(client->Get("/api/samples"));
    EXPECT_EQ(samples["count"], 3);
    EXPECT_GT(samples["bytes"].get<std::int64_t>(), 0);
    EXPECT_EQ(samples["restorable"], 0);

    ASSERT_EQ(client->Post("/api/samples/remove")->status, 200);
    samples = jsonOf(client->Get("/api/samples"));
    EXPECT_EQ(samples["count"], 0);
    EXPECT_EQ(samples["restorable"], 3);
    EXPECT_EQ(jsonOf(client->Get("/manifest.json"))["flights"].size(), 0u);
    EXPECT_EQ(jsonOf(client->Get("/api/clips"))["clips"].size(), 0u);
    EXPECT_EQ(client->Get(("/flights/" + first + "/proxy.mp4").c_str())->status, 404);
    EXPECT_EQ(jsonOf(client->Get("/api/flights"))["used"], 0);

    ASSERT_EQ(client->Post("/api/samples/restore")->status, 200);
    samples = jsonOf(client->Get("/api/samples"));
    EXPECT_EQ(samples["count"], 3);
    EXPECT_EQ(samples["restorable"], 0);
    EXPECT_EQ(jsonOf(client->Get("/manifest.json")), manifest);
    EXPECT_EQ(client->Get(("/flights/" + first + "/proxy.mp4").c_str())->status, 200);

    // Samples are made once: a restart doesn't bring deleted ones back.
    ASSERT_EQ(client->Delete(("/api/flights/" + first).c_str())->status, 200);
    server.server().stop();
    LibraryServer again(server.server().config());
    ASSERT_TRUE(again.start());
    httplib::Client second(again.baseUrl());
    EXPECT_EQ(jsonOf(second.Get("/manifest.json"))["flights"].size(), 2u);
}
