// Who gets in, in each mode the server can be started with, and device sign-in through the
// link that lands in the outbox.
#include "TestServer.h"

#include <gtest/gtest.h>

#include <QByteArray>

#include <regex>

namespace fs = std::filesystem;

namespace {
/// Every route the library answers, each tried without credentials.
const std::vector<std::pair<std::string, std::string>> guarded = {
    {"GET", "/api/me"},          {"GET", "/api/flights"},        {"GET", "/manifest.json"},
    {"GET", "/flights/x/proxy.mp4"}, {"PUT", "/api/flights/x/files/proxy.mp4"}, {"POST", "/api/flights/x/commit"},
    {"DELETE", "/api/flights/x/staging"}, {"DELETE", "/api/flights/x"}, {"GET", "/api/clips"},
    {"POST", "/api/clips/x"},    {"GET", "/api/hidden"},         {"POST", "/api/hidden/x"},
    {"GET", "/api/samples"},     {"POST", "/api/samples/remove"}, {"POST", "/api/samples/restore"},
    {"GET", "/api/projects"},    {"POST", "/api/projects"},      {"GET", "/api/projects/x/edl"},
    {"GET", "/api/music"},       {"GET", "/music/01.x.m4a"},     {"POST", "/api/auth/session"},
};

httplib::Result send(httplib::Client &client, const std::string &method, const std::string &path,
                     const httplib::Headers &headers = {})
{
    if (method == "GET")
        return client.Get(path.c_str(), headers);
    if (method == "PUT")
        return client.Put(path.c_str(), headers, std::string("x"), "application/octet-stream");
    if (method == "DELETE")
        return client.Delete(path.c_str(), headers);
    return client.Post(path.c_str(), headers, std::string("{}"), "application/json");
}

void expectAllRefused(httplib::Client &client, const httplib::Headers &headers = {})
{
    for (const auto &[method, path] : guarded) {
        const auto reply = send(client, method, path, headers);
        ASSERT_TRUE(reply) << method << " " << path;
        EXPECT_EQ(reply->status, 401) << method << " " << path;
    }
}

std::string basic(const std::string &user, const std::string &password)
{
    return "Basic " + QByteArray::fromStdString(user + ":" + password).toBase64().toStdString();
}

std::string signInLink(const fs::path &outbox)
{
    std::vector<fs::path> mails{fs::directory_iterator(outbox), fs::directory_iterator()};
    EXPECT_EQ(mails.size(), 1u);
    if (mails.empty())
        return {};
    const std::string mail = readFile(mails.front());
    std::smatch m;
    EXPECT_TRUE(std::regex_search(mail, m, std::regex(R"(http://[^\s]+/auth/device/[0-9a-f]+)"))) << mail;
    return m.empty() ? std::string() : m[0].str();
}
} // namespace

TEST(Auth, NoneLetsEveryoneIn)
{
    TestServer server;
    const auto me = jsonOf(server.client()->Get("/api/me"));
    EXPECT_EQ(me["id"], 1);
    EXPECT_EQ(me["admin"], true);
    EXPECT_TRUE(me["email"].is_string());
    EXPECT_TRUE(me["plan"].is_string());
    EXPECT_EQ(me["ai"], true) << "the library proposes words for share pages unless told not to";
    // Device sign-in belongs to token servers; here the client is told it isn't supported.
    EXPECT_EQ(server.client()->Post("/api/auth/device/request", R"({"email":"a@b"})", "application/json")->status, 404);
}

TEST(Auth, BasicTakesTheOneUserAndPassword)
{
    TestServer server([](ServerConfig &c) {
        c.auth = AuthMode::Basic;
        c.user = "pilot";
        c.password = "s3cret";
    });
    auto client = server.client();
    expectAllRefused(*client);
    expectAllRefused(*client, {{"Authorization", basic("pilot", "wrong")}});
    expectAllRefused(*client, {{"Authorization", basic("pilot", "s3cret2")}});
    expectAllRefused(*client, {{"Authorization", "Bearer s3cret"}});
    EXPECT_EQ(client->Get("/api/me")->get_header_value("WWW-Authenticate"), "Basic realm=\"Aeroloom library\"");

    const httplib::Headers good{{"Authorization", basic("pilot", "s3cret")}};
    const auto me = client->Get("/api/me", good);
    EXPECT_EQ(me->status, 200);
    EXPECT_EQ(jsonOf(me)["email"], "pilot@localhost");
    EXPECT_EQ(client->Get("/manifest.json", good)->status, 200);
    // Web sessions are for token holders only.
    EXPECT_EQ(client->Post("/api/auth/session", good)->status, 404);
}

TEST(Auth, TokenTakesIssuedTokensOnly)
{
    TestServer server([](ServerConfig &c) { c.auth = AuthMode::Token; });
    const std::string token = server.server().createToken("pilot@example.org");
    auto client = server.client();
    expectAllRefused(*client);
    expectAllRefused(*client, {{"Authorization", "Bearer " + token + "x"}});
    expectAllRefused(*client, {{"Authorization", "Bearer "}});
    expectAllRefused(*client, {{"Authorization", basic("pilot", token)}});

    const httplib::Headers good{{"Authorization", "Bearer " + token}};
    EXPECT_EQ(jsonOf(client->Get("/api/me", good))["email"], "pilot@example.org");
    EXPECT_EQ(client->Get("/api/flights", good)->status, 200);

    // A web session trades the token for a cookie that opens the 3D page and its media, and
    // nothing else (TheaterTest has the whole of it).
    const auto session = jsonOf(client->Post("/api/auth/session", good));
    ASSERT_TRUE(session.is_object());
    EXPECT_EQ(session["cookie"], "aeroloom_session");
    EXPECT_EQ(session["maxAge"], 12 * 3600);
    const std::string cookie = session["cookie"].get<std::string>() + "=" + session["token"].get<std::string>();
    EXPECT_EQ(client->Get("/theater.html?id=x", {{"Cookie", "theme=dark; " + cookie}})->status, 200);
    EXPECT_EQ(client->Get("/theater.html?id=x", {{"Cookie", cookie + "x"}})->status, 401);
    EXPECT_EQ(client->Get("/manifest.json", {{"Cookie", cookie}})->status, 401);
    // The token itself is not stored in the library (database and its write-ahead log), only
    // its digest.
    for (const auto &entry : fs::directory_iterator(server.library())) {
        if (entry.is_regular_file()) {
            EXPECT_EQ(readFile(entry.path()).find(token), std::string::npos) << entry.path();
        }
    }
}

TEST(Auth, DeviceSignInThroughTheOutboxLink)
{
    TestServer server([](ServerConfig &c) { c.auth = AuthMode::Token; });
    auto client = server.client();
    const auto requested = client->Post("/api/auth/device/request", R"({"email":"pilot@example.org","name":"Desk"})",
                                        "application/json");
    ASSERT_EQ(requested->status, 200);
    const std::string secret = jsonOf(requested)["secret"];
    const std::string poll = nlohmann::json{{"secret", secret}}.dump();
    EXPECT_EQ(jsonOf(client->Post("/api/auth/device/poll", poll, "application/json")),
              nlohmann::json({{"status", "pending"}}));

    const std::string link = signInLink(server.library() / "outbox");
    ASSERT_EQ(link.rfind(server.base() + "/auth/device/", 0), 0u) << link;
    const auto opened = client->Get(link.substr(server.base().size()).c_str());
    EXPECT_EQ(opened->status, 200);
    EXPECT_EQ(opened->get_header_value("Content-Type").rfind("text/html", 0), 0u);

    const auto done = jsonOf(client->Post("/api/auth/device/poll", poll, "application/json"));
    EXPECT_EQ(done["status"], "ok");
    ASSERT_TRUE(done["token"].is_string());
    const auto me = client->Get("/api/me", {{"Authorization", "Bearer " + done["token"].get<std::string>()}});
    EXPECT_EQ(me->status, 200);
    EXPECT_EQ(jsonOf(me)["email"], "pilot@example.org");

    // The attempt is used up: neither the secret nor the link works again.
    EXPECT_EQ(jsonOf(client->Post("/api/auth/device/poll", poll, "application/json"))["status"], "expired");
    EXPECT_EQ(client->Get(link.substr(server.base().size()).c_str())->status, 404);
    EXPECT_EQ(jsonOf(client->Post("/api/auth/device/poll", R"({"secret":"nonsense"})", "application/json"))["status"],
              "expired");
    EXPECT_EQ(client->Post("/api/auth/device/request", R"({"email":"no-at-sign"})", "application/json")->status, 400);
}

TEST(Auth, DeviceSignInExpires)
{
    auto now = std::make_shared<std::chrono::system_clock::time_point>(std::chrono::system_clock::now());
    TestServer server([now](ServerConfig &c) {
        c.auth = AuthMode::Token;
        c.clock = [now] { return *now; };
    });
    auto client = server.client();
    const std::string secret =
        jsonOf(client->Post("/api/auth/device/request", R"({"email":"a@b.c","name":"x"})", "application/json"))["secret"];
    const std::string link = signInLink(server.library() / "outbox");
    *now += std::chrono::minutes(14);
    const std::string poll = nlohmann::json{{"secret", secret}}.dump();
    EXPECT_EQ(jsonOf(client->Post("/api/auth/device/poll", poll, "application/json"))["status"], "pending");
    *now += std::chrono::minutes(1);
    EXPECT_EQ(client->Get(link.substr(server.base().size()).c_str())->status, 410);
    EXPECT_EQ(jsonOf(client->Post("/api/auth/device/poll", poll, "application/json"))["status"], "expired");
}
