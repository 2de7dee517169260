// The library in a real browser: what a visitor without a session can and cannot reach.
#include "PageScript.h"
#include "TestServer.h"

#include <gtest/gtest.h>

TEST(LibraryInBrowser, RefusesEveryDataRouteWithoutASession)
{
    TestServer server([](ServerConfig &c) { c.auth = AuthMode::Token; });
    const auto result = runPageScript(QStringLiteral("tests/server/signed_out.mjs"),
                                      {QStringLiteral("--url=%1").arg(QString::fromStdString(server.base())),
                                       QStringLiteral("--paths=/manifest.json,/api/me,/api/flights,/api/projects")});
    ASSERT_FALSE(result.contains("error")) << result.dump(2);
    for (const auto &[path, status] : result.at("statuses").items())
        EXPECT_EQ(status.get<int>(), 401) << path;
}

TEST(LibraryInBrowser, TheAccountPageSignsInWithATokenAndMakesAndRevokesTokens)
{
    TestServer server([](ServerConfig &c) {
        c.auth = AuthMode::Token;
        c.quota = 20LL * 1000 * 1000 * 1000;
    });
    auto client = server.client();
    const std::string token = server.server().createToken("pilot@example.org");
    auto uploader = server.client();
    uploader->set_bearer_token_auth(token);
    ASSERT_EQ(uploadFlight(*uploader, "20240102_030405_0007", makeFlightFolder(server.sandbox() / "flight", 1.0))->status,
              200);

    const auto r = runPageScript(QStringLiteral("tests/server/account_page.mjs"),
                                 {QStringLiteral("--url=%1").arg(QString::fromStdString(server.base())),
                                  QStringLiteral("--token=%1").arg(QString::fromStdString(token))});
    ASSERT_FALSE(r.contains("error")) << r.dump(2);
    EXPECT_EQ(r["errors"], nlohmann::json::array()) << r.dump(2);
    EXPECT_EQ(r["emailButtonEnabled"], false);
    EXPECT_EQ(r["emailButtonEnabledWithAddress"], true);
    EXPECT_EQ(r["wrongToken"], "That token isn't one of this library's");
    EXPECT_EQ(r["signedInAs"], "pilot@example.org");
    EXPECT_EQ(r["library"], "1 flight");
    EXPECT_EQ(r["storage"], "0.0 of 20 GB");
    EXPECT_EQ(r["server"], server.base());
    EXPECT_EQ(r["tokensBefore"], nlohmann::json::array({"command line"}));
    EXPECT_EQ(r["tokensAfterCreate"], nlohmann::json::array({"command line", "Laptop"}));
    EXPECT_EQ(r["tokensAfterRevoke"], nlohmann::json::array({"command line"}));
    EXPECT_EQ(r["meAfterSignOut"], 401);
    // The token the page showed was a real one, and revoking it ended it.
    const std::string made = r.value("newToken", "");
    EXPECT_EQ(made.rfind("alt_", 0), 0u) << made;
    EXPECT_EQ(client->Get("/api/me", {{"Authorization", "Bearer " + made}})->status, 401);
    EXPECT_EQ(client->Get("/api/me", {{"Authorization", "Bearer " + token}})->status, 200);
}

TEST(LibraryInBrowser, TheAccountPageSignsInWithTheEmailedLink)
{
    TestServer server([](ServerConfig &c) { c.auth = AuthMode::Token; });
    const auto r = runPageScript(QStringLiteral("tests/server/account_email.mjs"),
                                 {QStringLiteral("--url=%1").arg(QString::fromStdString(server.base())),
                                  QStringLiteral("--outbox=%1").arg(QString::fromStdString((server.library() / "outbox").string()))});
    ASSERT_FALSE(r.contains("error")) << r.dump(2);
    EXPECT_EQ(r["errors"], nlohmann::json::array()) << r.dump(2);
    EXPECT_EQ(r["waiting"], "Open the sign-in link we sent to pilot@example.org — this page finishes by itself.");
    EXPECT_EQ(r["link"], true);
    EXPECT_EQ(r["linkPage"], "You're signed in");
    EXPECT_EQ(r["signedInAs"], "pilot@example.org");
}
