// Public links to story videos: made, changed and revoked by the program's own client, and the
// page a visitor without an account opens, in plain HTTP and in headless Chromium.
#include "APIClient.h"
#include "APIError.h"
#include "ColourFlights.h"
#include "CoroTest.h"
#include "PageScript.h"
#include "PathFlights.h"
#include "RecordFormats.h"
#include "TestServer.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QThread>

namespace fs = std::filesystem;
using nlohmann::json;

namespace {
const std::string red = "20240601_100000_0001";
const std::string blue = "20240601_110000_0002";
} // namespace

class ShareLinks : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        server = new TestServer([](ServerConfig &c) { c.auth = AuthMode::Token; });
        token = server->server().createToken("pilot@example.org");
        api = new APIClient(QString::fromStdString(server->base()), QStringLiteral("Bearer ") + QString::fromStdString(token));
        auto http = signedIn();
        ASSERT_EQ(ColourFlights::upload(*http, red, QStringLiteral("red"), 3, server->sandbox())->status, 200);
        ASSERT_EQ(ColourFlights::upload(*http, blue, QStringLiteral("blue"), 3, server->sandbox())->status, 200);
        project = ColourFlights::story(*http, "Red & blue", json::array({
            {{"flightId", red}, {"in", 0.0}, {"out", 2.0}},
            {{"flightId", blue}, {"in", 0.5}, {"out", 2.5}},
        }));
        ASSERT_EQ(http->Post(("/api/projects/" + project + "/render").c_str(), R"({"track":"none","hud":true,"xfade":0.2})",
                             "application/json")->status, 200);
        for (int i = 0; i < 600 && jsonOf(http->Get(("/api/projects/" + project + "/render").c_str()))["status"] == "running"; ++i)
            QThread::msleep(100);
        const json status = jsonOf(http->Get(("/api/projects/" + project + "/render").c_str()));
        ASSERT_EQ(status["status"], "done") << status.dump();
        render = status["id"];
    }
    static void TearDownTestSuite()
    {
        // The client's kept-alive connections would hold up the server's stop.
        delete api;
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
        delete server;
    }

    static std::unique_ptr<httplib::Client> signedIn()
    {
        auto http = server->client();
        http->set_bearer_token_auth(token.c_str());
        return http;
    }
    static ReelShare share()
    {
        const auto made = run(api->createShare(QString::fromStdString(project), QString::fromStdString(render)));
        EXPECT_TRUE(made.ok()) << made.errorText().toStdString();
        return made.ok() ? made.value() : ReelShare{};
    }

    static inline TestServer *server = nullptr;
    static inline APIClient *api = nullptr;
    static inline std::string token, project, render;
    std::unique_ptr<httplib::Client> visitor = server->client();
};

TEST_F(ShareLinks, ALinkIsMadeChangedAndRevokedThroughTheClient)
{
    const ReelShare link = share();
    EXPECT_EQ(link.url, QString::fromStdString(server->base()) + QStringLiteral("/s/") + link.token);
    EXPECT_EQ(link.title, QStringLiteral("Red & blue"));
    EXPECT_EQ(link.views, 0);
    EXPECT_NEAR(link.duration.value_or(0), 3.8, 1.0 / 30);
    EXPECT_TRUE(RecordFormats::parseLocal(link.created.value_or(QString())).has_value()) << link.created->toStdString();
    EXPECT_EQ(share().token, link.token) << "a video has one live link";

    const auto changed = run(api->updateShare(link.token, QStringLiteral("Over the ridge"), QStringLiteral("Two passes.")));
    ASSERT_TRUE(changed.ok()) << changed.errorText().toStdString();
    EXPECT_EQ(changed->title, QStringLiteral("Over the ridge"));
    EXPECT_EQ(changed->description, QStringLiteral("Two passes."));
    const auto list = run(api->fetchShares());
    ASSERT_TRUE(list.ok());
    ASSERT_EQ(list->size(), 1);
    EXPECT_EQ(list->first().description, QStringLiteral("Two passes."));

    const auto tooLong = signedIn()->Patch(("/api/shares/" + link.token.toStdString()).c_str(),
                                           json{{"title", std::string(201, 'x')}}.dump(), "application/json");
    EXPECT_EQ(tooLong->status, 400);
    EXPECT_EQ(signedIn()->Patch(("/api/shares/" + link.token.toStdString()).c_str(), R"({"title":7})",
                                "application/json")->status, 400);

    ASSERT_TRUE(run(api->deleteShare(link.token)).ok());
    const auto gone = visitor->Get(("/s/" + link.token.toStdString()).c_str());
    EXPECT_EQ(gone->status, 404);
    EXPECT_EQ(gone->body, visitor->Get("/s/0123456789abcdef01234567")->body) << "a revoked link reads like one never made";
    EXPECT_TRUE(APIError::isStatus(run(api->deleteShare(link.token)).failure(), 404));
    EXPECT_NE(share().token, link.token) << "sharing again makes a new link";
    ASSERT_TRUE(run(api->deleteShare(share().token)).ok());
}

TEST_F(ShareLinks, ThePageUnfurlsAndShowsOnlyTheLinkedVideo)
{
    const ReelShare link = share();
    const std::string path = "/s/" + link.token.toStdString();
    ASSERT_TRUE(run(api->updateShare(link.token, QStringLiteral("Dusk \"run\" <script>alert(1)</script> & more"),
                                     QString()))
                    .ok());

    const auto page = visitor->Get(path.c_str());
    ASSERT_EQ(page->status, 200);
    EXPECT_NE(page->body.find(R"(<meta property="og:title" content="Dusk &quot;run&quot; &lt;script&gt;alert(1)&lt;/script&gt; &amp; more">)"),
              std::string::npos);
    EXPECT_EQ(page->body.find("<script>alert"), std::string::npos);
    for (const char *tag : {"og:image", "og:video", "og:description", "twitter:card", "twitter:image"})
        EXPECT_NE(page->body.find(tag), std::string::npos) << tag;

    const auto poster = visitor->Get((path + "/poster.jpg").c_str());
    EXPECT_EQ(poster->status, 200);
    EXPECT_EQ(poster->get_header_value("Content-Type"), "image/jpeg");
    EXPECT_EQ(visitor->Get((path + "/video.mp4").c_str(), {{"Range", "bytes=4-7"}})->body, "ftyp");
    EXPECT_EQ(jsonOf(visitor->Post((path + "/heart").c_str()))["hearts"], 1);

    // Nothing else of the library answers a visitor, whatever the path is made to look like.
    for (const std::string &other : {path + "/../../api/shares", path + "/clips.json", path + "/%2e%2e/%2e%2e/manifest.json",
                                    std::string("/renders/") + render + ".mp4", std::string("/api/projects/") + project + "/render"}) {
        const auto reply = visitor->Get(other.c_str());
        EXPECT_TRUE(reply->status == 401 || reply->status == 404) << other << " answered " << reply->status;
        EXPECT_EQ(reply->body.find(render), std::string::npos) << other;
    }
    ASSERT_TRUE(run(api->deleteShare(link.token)).ok());
}

TEST_F(ShareLinks, SuggestionsComeFromThePlacesShotsAndLabelsOfTheStory)
{
    auto http = signedIn();
    const std::string ridge = "20240601_100000_0011";
    ASSERT_EQ(PathFlights::upload(*http, ridge, PathFlights::showreel().path, QStringLiteral("Cedar Ridge"))->status, 200);
    json clips = jsonOf(http->Get(("/flights/" + ridge + "/clips.json").c_str()))["clips"];
    ASSERT_GE(clips.size(), 2u) << "the analysis suggests the showreel's shots";
    json items = json::array();
    for (const auto &clip : clips)
        items.push_back({{"flightId", ridge}, {"clipId", clip["id"]}, {"in", clip["in"]}, {"out", clip["out"]}, {"label", ""}});
    const std::string story = ColourFlights::story(*http, "Untitled story", items);

    const auto me = run(api->fetchMe());
    ASSERT_TRUE(me.ok());
    EXPECT_EQ(me->ai, true);
    const auto proposals = run(api->suggestShareCopy(QString::fromStdString(story)));
    ASSERT_TRUE(proposals.ok()) << proposals.errorText().toStdString();
    ASSERT_GE(proposals->size(), 3);
    EXPECT_EQ(proposals->first().title, QStringLiteral("Cedar Ridge from above"));
    const QString all = [&] {
        QString text;
        for (const auto &p : *proposals)
            text += p.title + QLatin1Char(' ') + p.description.value_or(QString()) + QLatin1Char(' ');
        return text;
    }();
    EXPECT_TRUE(all.contains(QStringLiteral("orbit"), Qt::CaseInsensitive)) << all.toStdString();
    EXPECT_TRUE(all.contains(QStringLiteral("June 2024"))) << all.toStdString();
    EXPECT_TRUE(all.contains(QStringLiteral("Orbit"))) << "the clips' labels, from the flight" << all.toStdString();
}

TEST(ShareSuggestions, AreOffWhenTheLibrarySaysNoAI)
{
    TestServer server([](ServerConfig &c) { c.suggestions = false; });
    auto http = server.client();
    EXPECT_EQ(jsonOf(http->Get("/api/me"))["ai"], false);
    const std::string story = ColourFlights::story(*http, "Quiet", json::array());
    EXPECT_EQ(http->Post(("/api/projects/" + story + "/suggest").c_str())->status, 404);
}

TEST_F(ShareLinks, APageInTheBrowserPlaysCountsAndGoesWhenRevoked)
{
    const ReelShare link = share();
    // An empty title shows the story's own.
    ASSERT_TRUE(run(api->updateShare(link.token, QString(), QStringLiteral("Two passes over the test field, red then blue."))).ok());
    const QString base = QString::fromStdString(server->base());
    const auto result = runPageScript(
        QStringLiteral("tests/server/share_page.mjs"),
        {QStringLiteral("--url=") + link.url, QStringLiteral("--api=") + base,
         QStringLiteral("--token=") + QString::fromStdString(token), QStringLiteral("--share=") + link.token,
         QStringLiteral("--others=/api/shares,/api/renders,/api/me,/manifest.json,/renders/%1.mp4,/flights/%2/proxy.mp4,"
                        "/api/projects/%3/render")
             .arg(QString::fromStdString(render), QString::fromStdString(red), QString::fromStdString(project))});
    ASSERT_FALSE(result.contains("error")) << result.dump(2);

    EXPECT_EQ(result["status"], 200);
    EXPECT_GT(result["played"].get<double>(), 0.3) << "the video's time advances: " << result.dump();
    EXPECT_EQ(result["viewsShown"], "1 view");
    EXPECT_EQ(result["viewsStored"], 1) << "one page load, one view";
    EXPECT_EQ(result["heartsShown"], "1");
    EXPECT_EQ(result["tags"]["og:title"], "Red & blue");
    EXPECT_EQ(result["tags"]["og:description"], "Two passes over the test field, red then blue.");
    EXPECT_EQ(result["tags"]["og:image"], (link.url + QStringLiteral("/poster.jpg")).toStdString());
    for (const auto &[path, status] : result["others"].items())
        EXPECT_EQ(status.get<int>(), 401) << path;
    EXPECT_EQ(result["revokedStatus"], 404);
    EXPECT_EQ(result["revokedHeading"], "Link not found");
}
