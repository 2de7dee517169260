#include "DeviceLogin.h"
#include "CoroTest.h"
#include "RecordingServer.h"

#include <QNetworkAccessManager>
#include <QTimer>

#include <gtest/gtest.h>

#include <atomic>

using namespace std::chrono_literals;

namespace {
RecordingServer::Reply json(int status, QByteArray body)
{
    RecordingServer::Reply r;
    r.status = status;
    r.body = std::move(body);
    return r;
}

const DeviceLogin::Timing fast{2s, 5ms};
} // namespace

TEST(DeviceLogin, RequestSendsEmailAndDeviceNameWithoutAuthorization)
{
    RecordingServer server;
    QNetworkAccessManager network;
    server.replyWith(200, R"({"secret":"s3cr3t"})");
    const auto secret = run(DeviceLogin::request(&network, "pilot@example.com", server.base()));
    ASSERT_TRUE(secret.ok()) << secret.errorText().toStdString();
    EXPECT_EQ(*secret, "s3cr3t");
    const auto req = server.last();
    EXPECT_EQ(req.method, "POST");
    EXPECT_EQ(req.target, "/api/auth/device/request");
    EXPECT_EQ(req.header("Content-Type"), "application/json");
    EXPECT_FALSE(req.has("Authorization"));
    EXPECT_TRUE(req.body.contains(R"("email":"pilot@example.com")"));
    EXPECT_TRUE(req.body.contains(R"("name":")"));
}

TEST(DeviceLogin, RequestFailuresCarryTheirWords)
{
    RecordingServer server;
    QNetworkAccessManager network;

    for (int status : {404, 405}) {
        server.replyWith(status, "nope", "text/plain");
        const auto r = run(DeviceLogin::request(&network, "a@b", server.base()));
        ASSERT_FALSE(r.ok());
        EXPECT_EQ(r.errorText(), QStringLiteral("This server doesn't support email sign-in — use Password (classic "
                                                "box) or paste an API token."));
    }
    // Only exactly 200 is good: 201 is a server failure with its number.
    server.replyWith(201, R"({"secret":"x"})");
    EXPECT_EQ(run(DeviceLogin::request(&network, "a@b", server.base())).errorText(), "Server returned 201.");

    // A reply without a secret is a decoding failure, not a success with an empty secret.
    server.replyWith(200, R"({"other":1})");
    EXPECT_EQ(run(DeviceLogin::request(&network, "a@b", server.base())).failure().domain, "decode");

    // A base that is no URL never reaches the network.
    EXPECT_EQ(run(DeviceLogin::request(&network, "a@b", "::not a url")).errorText(), "Server returned 0.");
}

TEST(DeviceLogin, PollReturnsTheTokenAfterPendingReplies)
{
    RecordingServer server;
    QNetworkAccessManager network;
    std::atomic<int> polls{0};
    server.setHandler([&](const RecordingServer::Request &) {
        return ++polls < 3 ? json(200, R"({"status":"pending"})") : json(200, R"({"status":"ok","token":"tok"})");
    });
    const auto r = run(DeviceLogin::poll(&network, "s", server.base(), nullptr, fast));
    ASSERT_TRUE(r.ok()) << r.errorText().toStdString();
    EXPECT_EQ(r.value(), std::optional<QString>("tok"));
    EXPECT_EQ(polls.load(), 3);
    EXPECT_EQ(server.last().target, "/api/auth/device/poll");
    EXPECT_EQ(server.last().body, R"({"secret":"s"})");
}

TEST(DeviceLogin, PollEndsOnServerRefusalsButForgivesTransportFailures)
{
    RecordingServer server;
    QNetworkAccessManager network;

    // A 500 at a poll step ends the flow at once.
    server.replyWith(500, "boom", "text/plain");
    auto r = run(DeviceLogin::poll(&network, "s", server.base(), nullptr, fast));
    EXPECT_EQ(r.errorText(), "Server returned 500.");
    EXPECT_EQ(server.count(), 1);

    // An unknown status, and "ok" without a token, both mean the link expired.
    for (const char *body : {R"({"status":"denied"})", R"({"status":"ok"})"}) {
        server.replyWith(200, body);
        r = run(DeviceLogin::poll(&network, "s", server.base(), nullptr, fast));
        EXPECT_EQ(r.errorText(), "The sign-in link expired before it was clicked — send a fresh one.") << body;
    }

    // Dropped connections and garbage bodies keep the poll going until the token arrives.
    server.clear();
    std::atomic<int> polls{0};
    server.setHandler([&](const RecordingServer::Request &) {
        const int n = ++polls;
        if (n == 1) {
            RecordingServer::Reply dropped;
            dropped.drop = true;
            return dropped;
        }
        if (n == 2)
            return json(200, "<html>proxy error</html>");
        return json(200, R"({"status":"ok","token":"late"})");
    });
    r = run(DeviceLogin::poll(&network, "s", server.base(), nullptr, fast));
    ASSERT_TRUE(r.ok()) << r.errorText().toStdString();
    EXPECT_EQ(r.value(), std::optional<QString>("late"));
    EXPECT_EQ(polls.load(), 3);
}

TEST(DeviceLogin, DeadlineGivesExpiredAndCancelGivesNothing)
{
    RecordingServer server;
    QNetworkAccessManager network;
    server.replyWith(200, R"({"status":"pending"})");

    auto r = run(DeviceLogin::poll(&network, "s", server.base(), nullptr, {60ms, 10ms}));
    EXPECT_EQ(r.errorText(), "The sign-in link expired before it was clicked — send a fresh one.");
    EXPECT_GE(server.count(), 2);

    // A connection that never comes up (nothing listens) is forgiven until the deadline too.
    r = run(DeviceLogin::poll(&network, "s", "http://127.0.0.1:1", nullptr, {80ms, 10ms}));
    EXPECT_EQ(r.errorText(), "The sign-in link expired before it was clicked — send a fresh one.");

    // Cancelling during the long sleep between two steps ends at once, with no failure.
    server.clear();
    CancelToken token;
    QTimer::singleShot(50ms, &token, &CancelToken::cancel);
    const auto started = std::chrono::steady_clock::now();
    r = run(DeviceLogin::poll(&network, "s", server.base(), &token, {10min, 10min}));
    ASSERT_TRUE(r.ok()) << r.errorText().toStdString();
    EXPECT_FALSE(r.value().has_value());
    EXPECT_EQ(server.count(), 1);
    EXPECT_LT(std::chrono::steady_clock::now() - started, 5s);
}
