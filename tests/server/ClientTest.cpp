// The program's own client against the real server: the requests the app makes, made the way
// the app makes them (one network manager, keep-alive, files streamed from disk).
#include "APIClient.h"
#include "APIError.h"
#include "CoroTest.h"
#include "TestServer.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QNetworkReply>

namespace fs = std::filesystem;

namespace {
const QString flightId = QStringLiteral("20240102_030405_0007");

Result<QByteArray> putFile(const APIClient &client, const QString &relative, const fs::path &file)
{
    QFile body(QString::fromStdString(file.string()));
    if (!body.open(QIODevice::ReadOnly))
        return APIError::status(0);
    QNetworkRequest request = client.request(client.url(relative));
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/octet-stream"));
    return run(APIClient::finish(client.network()->put(request, &body), nullptr));
}
} // namespace

TEST(WithTheClient, UploadAndBrowseWithAToken)
{
    TestServer server([](ServerConfig &c) { c.auth = AuthMode::Token; });
    const fs::path folder = makeFlightFolder(server.sandbox() / "flight", 2.0);
    const QString base = QString::fromStdString(server.base());
    APIClient client(base, QStringLiteral("Bearer ") + QString::fromStdString(server.server().createToken("p@x.org")));

    const auto me = run(client.fetchMe());
    ASSERT_TRUE(me.ok()) << me.errorText().toStdString();
    EXPECT_EQ(me->email, QStringLiteral("p@x.org"));

    for (const char *name : {"flight.json", "thumb.jpg", "proxy.mp4"}) {
        const auto put = putFile(client, QStringLiteral("api/flights/%1/files/%2").arg(flightId, QLatin1String(name)),
                                 folder / name);
        ASSERT_TRUE(put.ok()) << name << ": " << put.errorText().toStdString();
    }
    const auto commit = run(client.sendEmpty("POST", QStringLiteral("api/flights/%1/commit").arg(flightId)));
    ASSERT_TRUE(commit.ok()) << commit.errorText().toStdString();
    // The analysis found no shot in two seconds of flight; the import window says "Done".
    EXPECT_EQ(nlohmann::json::parse(commit->toStdString())["analysis"], "ok");

    const auto manifest = run(client.getJSON(QStringLiteral("manifest.json")));
    ASSERT_TRUE(manifest.ok());
    EXPECT_EQ(nlohmann::json::parse(manifest->toStdString())["flights"][0]["id"], flightId.toStdString());

    QNetworkRequest range = client.request(client.url(QStringLiteral("flights/%1/proxy.mp4").arg(flightId)));
    range.setRawHeader("Range", "bytes=0-15");
    QNetworkReply *reply = client.network()->get(range);
    const auto head = run(APIClient::finish(reply, nullptr));
    ASSERT_TRUE(head.ok());
    EXPECT_EQ(head->size(), 16);
    EXPECT_EQ(head->mid(4, 4), QByteArray("ftyp"));

    const auto clips = run(client.getJSON(QStringLiteral("flights/%1/clips.json").arg(flightId)));
    EXPECT_TRUE(APIError::isStatus(clips.failure(), 404));

    // Bodiless POSTs and DELETEs come without any Content-Length: they must not wait for a body.
    EXPECT_TRUE(run(client.sendEmpty("DELETE", QStringLiteral("api/flights/%1/staging").arg(flightId))).ok());
    EXPECT_TRUE(run(client.sendEmpty("POST", QStringLiteral("api/samples/remove"))).ok());
    EXPECT_TRUE(run(client.sendEmpty("DELETE", QStringLiteral("api/flights/%1").arg(flightId))).ok());
    EXPECT_EQ(nlohmann::json::parse(run(client.getJSON(QStringLiteral("manifest.json")))->toStdString())["flights"].size(),
              0u);
}

TEST(WithTheClient, AStrangerIsToldToSignInCallAfterCall)
{
    TestServer server([](ServerConfig &c) { c.auth = AuthMode::Token; });
    const fs::path folder = makeFlightFolder(server.sandbox() / "flight", 1.0);
    APIClient stranger(QString::fromStdString(server.base()), QStringLiteral("Bearer nope"));
    // The refused upload's body is never read; the calls after it on the same connection pool
    // must still get their own answers.
    for (int i = 0; i < 3; ++i) {
        const auto put = putFile(stranger, QStringLiteral("api/flights/%1/files/proxy.mp4").arg(flightId),
                                 folder / "proxy.mp4");
        EXPECT_TRUE(!put.ok() && APIError::isUnauthorized(put.failure())) << put.errorText().toStdString();
        const auto me = run(stranger.fetchMe());
        ASSERT_FALSE(me.ok());
        EXPECT_TRUE(APIError::isUnauthorized(me.failure())) << me.errorText().toStdString();
    }
}
