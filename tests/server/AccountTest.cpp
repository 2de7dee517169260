// The account page's side of the API: a browser signs in with a token or the e-mailed link and
// gets a session cookie, and an account lists, makes and ends its own API tokens.
#include "TestServer.h"

#include <gtest/gtest.h>

#include <regex>

namespace fs = std::filesystem;
using nlohmann::json;

namespace {
httplib::Result postJson(httplib::Client &client, const std::string &path, const json &body,
                         const httplib::Headers &headers = {})
{
    return client.Post(path.c_str(), headers, body.dump(), "application/json");
}

/// The "name=value" of a Set-Cookie header, for sending it back.
std::string cookieOf(const httplib::Result &reply)
{
    const std::string header = reply->get_header_value("Set-Cookie");
    return header.substr(0, header.find(';'));
}

httplib::Headers bearer(const std::string &token)
{
    return {{"Authorization", "Bearer " + token}};
}
} // namespace

TEST(Account, ThePageAndItsFilesAnswerEveryoneAndNothingElseOfTheLibrary)
{
    TestServer server([](ServerConfig &c) { c.auth = AuthMode::Token; });
    auto client = server.client();
    const auto page = client->Get("/settings.html");
    ASSERT_EQ(page->status, 200);
    EXPECT_EQ(page->get_header_value("Content-Type"), "text/html; charset=utf-8");
    EXPECT_NE(page->get_header_value("Content-Security-Policy").find("default-src 'self'"), std::string::npos);
    EXPECT_NE(page->body.find("/pages/account.js"), std::string::npos);
    // Everything the page loads comes from this server.
    EXPECT_EQ(page->body.find("http"), std::string::npos);
    EXPECT_EQ(client->Get("/pages/account.js")->status, 200);
    EXPECT_EQ(client->Get("/pages/page.css")->get_header_value("Content-Type"), "text/css; charset=utf-8");
    for (const std::string path : {"/pages/nothing.js", "/pages/..%2Flibrary.db", "/pages/.hidden", "/pages/"})
        EXPECT_EQ(client->Get(path.c_str())->status, 404) << path;
    EXPECT_EQ(client->Get("/pages/x/../../library.db")->status, 404);
}

TEST(Account, ABrowserSignsInWithATokenAndOutAgain)
{
    TestServer server([](ServerConfig &c) { c.auth = AuthMode::Token; });
    const std::string token = server.server().createToken("pilot@example.org");
    auto client = server.client();

    EXPECT_EQ(postJson(*client, "/api/auth/web/token", {{"token", token + "x"}})->status, 401);
    EXPECT_EQ(postJson(*client, "/api/auth/web/token", {{"token", 5}})->status, 401);
    const auto signedIn = postJson(*client, "/api/auth/web/token", {{"token", token}});
    ASSERT_EQ(signedIn->status, 200);
    EXPECT_EQ(jsonOf(signedIn)["email"], "pilot@example.org");
    // The page's script can't read the session, and no other site can send it.
    const std::string setCookie = signedIn->get_header_value("Set-Cookie");
    EXPECT_NE(setCookie.find("HttpOnly"), std::string::npos) << setCookie;
    EXPECT_NE(setCookie.find("SameSite=Strict"), std::string::npos) << setCookie;
    const httplib::Headers session{{"Cookie", cookieOf(signedIn)}};
    EXPECT_EQ(jsonOf(client->Get("/api/me", session))["email"], "pilot@example.org");

    // The page's session and the app's viewer session (the 3D page's) never stand in for each other.
    const std::string accountValue = cookieOf(signedIn).substr(cookieOf(signedIn).find('=') + 1);
    const json viewer = jsonOf(client->Post("/api/auth/session", bearer(token)));
    const std::string viewerValue = viewer["token"];
    EXPECT_EQ(client->Get("/api/me", {{"Cookie", "aeroloom_account=" + viewerValue}})->status, 401);
    EXPECT_EQ(client->Get("/theater.html?id=x", {{"Cookie", "aeroloom_session=" + accountValue}})->status, 401);
    EXPECT_EQ(client->Get("/api/me", {{"Cookie", "aeroloom_session=" + viewerValue}})->status, 401);

    ASSERT_EQ(client->Post("/api/auth/web/signout", session)->status, 200);
    EXPECT_EQ(client->Get("/api/me", session)->status, 401);
}

TEST(Account, ABrowserSignsInWithTheEmailedLinkWithoutMakingAToken)
{
    TestServer server([](ServerConfig &c) { c.auth = AuthMode::Token; });
    auto client = server.client();
    const auto requested = postJson(*client, "/api/auth/device/request", {{"email", "pilot@example.org"}, {"name", "x"}});
    const json poll = {{"secret", jsonOf(requested)["secret"]}};
    EXPECT_EQ(jsonOf(postJson(*client, "/api/auth/web/poll", poll))["status"], "pending");

    std::vector<fs::path> mails{fs::directory_iterator(server.library() / "outbox"), fs::directory_iterator()};
    ASSERT_EQ(mails.size(), 1u);
    std::smatch link;
    const std::string mail = readFile(mails.front());
    ASSERT_TRUE(std::regex_search(mail, link, std::regex(R"(/auth/device/[0-9a-f]+)")));
    ASSERT_EQ(client->Get(link[0].str().c_str())->status, 200);

    const auto done = postJson(*client, "/api/auth/web/poll", poll);
    EXPECT_EQ(jsonOf(done), json({{"status", "ok"}}));
    const httplib::Headers session{{"Cookie", cookieOf(done)}};
    EXPECT_EQ(jsonOf(client->Get("/api/me", session))["email"], "pilot@example.org");
    EXPECT_EQ(jsonOf(client->Get("/api/tokens", session))["tokens"].size(), 0u);
    // Used up, for the page and for a device alike.
    EXPECT_EQ(jsonOf(postJson(*client, "/api/auth/web/poll", poll))["status"], "expired");
    EXPECT_EQ(jsonOf(postJson(*client, "/api/auth/device/poll", poll))["status"], "expired");
}

TEST(Account, EachAccountListsMakesAndRevokesItsOwnTokens)
{
    TestServer server([](ServerConfig &c) { c.auth = AuthMode::Token; });
    const std::string mine = server.server().createToken("pilot@example.org");
    const std::string theirs = server.server().createToken("other@example.org");
    auto client = server.client();

    const auto made = postJson(*client, "/api/tokens", {{"name", "  Laptop  "}}, bearer(mine));
    ASSERT_EQ(made->status, 200);
    const std::string laptop = jsonOf(made)["token"];
    EXPECT_EQ(jsonOf(made)["name"], "Laptop");
    EXPECT_EQ(jsonOf(client->Get("/api/me", bearer(laptop)))["email"], "pilot@example.org");

    const json listed = jsonOf(client->Get("/api/tokens", bearer(mine)));
    EXPECT_EQ(listed["accepted"], true);
    ASSERT_EQ(listed["tokens"].size(), 2u);
    EXPECT_EQ(listed["tokens"][0]["name"], "command line");
    EXPECT_EQ(listed["tokens"][1]["name"], "Laptop");
    EXPECT_EQ(listed.dump().find(laptop), std::string::npos);
    EXPECT_EQ(jsonOf(client->Get("/api/tokens", bearer(theirs)))["tokens"].size(), 1u);

    const std::string id = listed["tokens"][1]["id"];
    EXPECT_EQ(client->Delete(("/api/tokens/" + id).c_str(), bearer(theirs))->status, 404);
    EXPECT_EQ(client->Get("/api/me", bearer(laptop))->status, 200);
    EXPECT_EQ(client->Delete(("/api/tokens/" + id).c_str(), bearer(mine))->status, 200);
    EXPECT_EQ(client->Get("/api/me", bearer(laptop))->status, 401);
    EXPECT_EQ(client->Delete(("/api/tokens/" + id).c_str(), bearer(mine))->status, 404);
    EXPECT_EQ(client->Delete("/api/tokens/abc", bearer(mine))->status, 404);

    EXPECT_EQ(postJson(*client, "/api/tokens", {{"name", "two\nlines"}}, bearer(mine))->status, 400);
    EXPECT_EQ(postJson(*client, "/api/tokens", {{"name", std::string(81, 'n')}}, bearer(mine))->status, 400);
    EXPECT_EQ(jsonOf(postJson(*client, "/api/tokens", json::object(), bearer(mine)))["name"], "API token");
    EXPECT_EQ(postJson(*client, "/api/tokens", {{"name", "x"}})->status, 401);
}

TEST(Account, ALibraryWithoutTokenSignInSaysItsTokensAreNotTaken)
{
    TestServer server;
    auto client = server.client();
    EXPECT_EQ(client->Get("/settings.html")->status, 200);
    EXPECT_EQ(jsonOf(client->Get("/api/tokens"))["accepted"], false);
    EXPECT_EQ(postJson(*client, "/api/auth/web/token", {{"token", "x"}})->status, 404);
    EXPECT_EQ(postJson(*client, "/api/auth/web/poll", {{"secret", "x"}})->status, 404);
}
