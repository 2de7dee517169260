#include "APIClient.h"
#include "APIError.h"
#include "CoroTest.h"
#include "RecordingServer.h"
#include "StallingServer.h"

#include <QElapsedTimer>
#include <QTimer>

#include <gtest/gtest.h>

TEST(APIClientCore, TrailingSlashRuleAndAuthorizationOnEveryRequest)
{
    RecordingServer server;
    APIClient once(server.base() + "/", QStringLiteral("Bearer abc"));
    APIClient twice(server.base() + "//", std::nullopt);
    EXPECT_EQ(once.baseString(), server.base());
    EXPECT_EQ(twice.url("api/me").toString(), server.base() + "//api/me");

    server.replyWith(200, R"({"id":7,"email":"p@x.org","admin":false,"plan":"pro"})");
    const auto me = run(once.fetchMe());
    ASSERT_TRUE(me.ok()) << me.errorText().toStdString();
    EXPECT_EQ(me->plan, QStringLiteral("pro"));
    EXPECT_EQ(server.last().header("Authorization"), "Bearer abc");
    EXPECT_EQ(server.last().target, "/api/me");

    (void)run(twice.fetchMe());
    EXPECT_FALSE(server.last().has("Authorization"));
    once.network()->clearConnectionCache();
    twice.network()->clearConnectionCache();
}

TEST(APIClientCore, JudgesStatusBeforeBody)
{
    RecordingServer server;
    APIClient client(server.base(), std::nullopt);

    server.replyWith(401, R"({"id":1,"email":"a","admin":true})");
    auto r = run(client.fetchMe());
    ASSERT_FALSE(r.ok());
    EXPECT_TRUE(APIError::isUnauthorized(r.failure()));
    EXPECT_EQ(r.errorText(), QStringLiteral("You’re not signed in — your session may have expired. Please sign in again."));

    server.replyWith(503, "down");
    r = run(client.fetchMe());
    EXPECT_EQ(r.errorText(), QStringLiteral("Server returned 503."));

    // 204 passes the status check and then fails to decode.
    server.replyWith(204, "");
    r = run(client.fetchMe());
    ASSERT_FALSE(r.ok());
    EXPECT_EQ(r.failure().domain, APIError::decodeDomain);

    server.replyWith(200, "<html>not json</html>", "text/html");
    EXPECT_EQ(run(client.fetchMe()).failure().domain, APIError::decodeDomain);
    client.network()->clearConnectionCache();  // the server needn't wait out a kept-alive connection
}

TEST(APIClientCore, DroppedConnectionIsATransportFailure)
{
    RecordingServer server;
    APIClient client(server.base(), std::nullopt);
    server.setHandler([](const RecordingServer::Request &) {
        RecordingServer::Reply reply;
        reply.drop = true;
        return reply;
    });
    const auto r = run(client.fetchMe());
    ASSERT_FALSE(r.ok());
    EXPECT_EQ(r.failure().domain, APIError::networkDomain);
    EXPECT_FALSE(r.errorText().isEmpty());
}

TEST(APIClientCore, AStalledServerTimesOutOnEveryShapeAndAStopStaysAStop)
{
    using namespace std::chrono_literals;
    StallingServer server;
    APIClient client(server.base(), QStringLiteral("Bearer abc"), nullptr, {}, 150ms);
    const QString timedOut = QStringLiteral("The request timed out.");
    QElapsedTimer clock;
    clock.start();

    EXPECT_EQ(run(client.fetchMe()).errorText(), timedOut);
    EXPECT_EQ(run(client.fetchManifest()).errorText(), timedOut);
    EXPECT_EQ(run(client.setHidden(QStringLiteral("F1"), true)).errorText(), timedOut);
    EXPECT_EQ(run(client.deleteFlight(QStringLiteral("F1"))).errorText(), timedOut);
    EXPECT_EQ(run(client.downloadToTemporary(QStringLiteral("x.mp4"), QStringLiteral("aeroloom-stall.mp4"))).errorText(),
              timedOut);
    EXPECT_TRUE(run(client.imageBytes(client.flightThumbURL(QStringLiteral("F1")))).isEmpty());
    EXPECT_EQ(server.stalledRequests(), 6);
    EXPECT_LT(clock.elapsed(), 5000);

    // The pilot's own stop is not a timeout, and says so.
    APIClient patient(server.base(), std::nullopt, nullptr, {}, 10s);
    CancelToken stop;
    QTimer::singleShot(100ms, &stop, &CancelToken::cancel);
    const auto stopped = run(patient.fetchManifest(&stop));
    ASSERT_FALSE(stopped.ok());
    EXPECT_NE(stopped.errorText(), timedOut);
    EXPECT_LT(clock.elapsed(), 8000);
}
