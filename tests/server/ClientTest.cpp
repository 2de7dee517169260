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

TEST(WithTheClient, EveryClipAndStoryEditOfTheAppIsStoredAndReadsBack)
{
    TestServer server;
    auto raw = server.client();
    ASSERT_EQ(uploadFlight(*raw, flightId.toStdString(), makeFlightFolder(server.sandbox() / "flight", 2.0))->status, 200);
    APIClient client(QString::fromStdString(server.base()), QString());

    // The player's own list: a clip of the pilot's and a suggestion with its reason.
    const QList<Clip> clips = {{QStringLiteral("c1_250"), 0.25, 1.5, QStringLiteral("Lift-off"), std::nullopt, std::nullopt},
                               {QStringLiteral("s1"), 1.0, 1.75, QString(), true, QStringLiteral("Climb")}};
    const auto saved = run(client.saveClips(flightId, clips));
    ASSERT_TRUE(saved.ok()) << saved.errorText().toStdString();
    EXPECT_EQ(run(client.fetchClips(flightId)).value(), clips);

    // The clips browser's edits of the raw clips.json, each written back whole.
    const auto pool = run(client.fetchPoolClips());
    ASSERT_TRUE(pool.ok());
    ASSERT_EQ(pool->size(), 2);
    EXPECT_TRUE(run(client.retrimClip(pool->at(0), 0.5, 1.25)));
    EXPECT_TRUE(run(client.keepClip(pool->at(1))));
    EXPECT_TRUE(run(client.tossClip(pool->at(1))));
    const auto after = run(client.fetchClips(flightId));
    ASSERT_TRUE(after.ok());
    ASSERT_EQ(after->size(), 1);
    EXPECT_EQ(after->at(0).start, 0.5);

    // Stories: made empty, made from picks, saved without notes, and saved again after one of
    // their flights is gone.
    ASSERT_TRUE(run(client.createProject(QStringLiteral("Empty"))).ok());
    ReelItem item;
    item.flightId = flightId;
    item.clipId = QStringLiteral("c1_250");
    item.start = 0.5;
    item.end = 1.25;
    item.label = QStringLiteral("Lift-off");
    auto project = run(client.createProject(QStringLiteral("Coast"), {item}));
    ASSERT_TRUE(project.ok()) << project.errorText().toStdString();
    Project edited = *project;
    edited.items.append(edited.items.first());
    EXPECT_TRUE(run(client.saveProject(edited)).ok());
    ASSERT_TRUE(run(client.deleteFlight(flightId)).ok());
    edited.title = QStringLiteral("Coast, again");
    EXPECT_TRUE(run(client.saveProject(edited)).ok());
    EXPECT_EQ(run(client.fetchProject(edited.id))->items.size(), 2);
}
