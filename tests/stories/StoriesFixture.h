#pragma once

#include "APIClient.h"
#include "CoroTest.h"
#include "ReelsStore.h"
#include "StoryLibrary.h"
#include "StoryProxy.h"
#include "TestServer.h"

#include <gtest/gtest.h>

#include <memory>

/// @brief A real library with two flights and four clips, shared by the tests of one suite,
/// reached through a `StoryProxy`; each test gets a fresh store on a fresh client.
class StoriesFixture : public ::testing::Test
{
protected:
    static inline TestServer *server = nullptr;

    static void SetUpTestSuite()
    {
        server = new TestServer;
        StoryLibrary::put(*server, StoryLibrary::twoFlights());
    }
    static void TearDownTestSuite()
    {
        delete server;
        server = nullptr;
    }

    std::unique_ptr<StoryProxy> proxy = std::make_unique<StoryProxy>(server->base());
    std::shared_ptr<APIClient> client = std::make_shared<APIClient>(proxy->base(), std::nullopt);
    std::unique_ptr<ReelsStore> store = std::make_unique<ReelsStore>(client);

    void SetUp() override { store->toastSlot().setStand(std::chrono::milliseconds(10000)); }

    // The client's connections close before the proxy stops, so its stop doesn't wait them out.
    void TearDown() override
    {
        store.reset();
        client.reset();
        waitUntil([] { return false; }, 30);
        proxy.reset();
    }

    /// A story made straight on the server, with these clips of the library as its items.
    std::string makeStory(const std::string &title, const nlohmann::json &items = nlohmann::json::array())
    {
        const auto made = server->client()->Post("/api/projects", nlohmann::json{{"title", title}, {"items", items}}.dump(),
                                                 "application/json");
        EXPECT_TRUE(made && made->status == 200);
        return jsonOf(made)["id"];
    }
    static nlohmann::json item(const char *flightId, const char *clipId, double in, double out, const char *label)
    {
        return {{"flightId", flightId}, {"clipId", clipId}, {"in", in}, {"out", out}, {"label", label}};
    }
    nlohmann::json serverStory(const std::string &id) const
    {
        return jsonOf(server->client()->Get(("/api/projects/" + id).c_str()));
    }
    void deleteAllStories() const
    {
        auto http = server->client();
        const nlohmann::json listed = jsonOf(http->Get("/api/projects"));
        for (const auto &s : listed["projects"])
            http->Delete(("/api/projects/" + s["id"].get<std::string>()).c_str());
    }
};
