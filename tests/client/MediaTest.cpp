#include "APIError.h"
#include "CoroTest.h"
#include "WireFixture.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

TEST_F(WireTest, MediaHeadersCarryTheClientsAuthorizationOrNothing)
{
    EXPECT_EQ(client.mediaHeaders(), QStringList{QStringLiteral("Authorization: Bearer t0k")});
    EXPECT_EQ(client.ffmpegHeaders(), QStringLiteral("Authorization: Bearer t0k\r\n"));
    EXPECT_TRUE(APIClient(server.base(), std::nullopt).mediaHeaders().isEmpty());
    EXPECT_TRUE(APIClient(server.base(), std::nullopt).ffmpegHeaders().isEmpty());
}

TEST_F(WireTest, ProxyURLTakesTheLightFileOnlyWhenItExistsAndQualityIsNotForced)
{
    const QString base = server.base();
    EXPECT_EQ(client.proxyURL("F1", true, false).toString(), base + "/flights/F1/proxy_480.mp4");
    EXPECT_EQ(client.proxyURL("F1", true, true).toString(), base + "/flights/F1/proxy.mp4");
    EXPECT_EQ(client.proxyURL("F1", false, false).toString(), base + "/flights/F1/proxy.mp4");
    EXPECT_EQ(APIClient::clipThumbPath("F1", "c2", 12.34), "flights/F1/clipthumb_c2_123.jpg");
    PoolClip pool;
    pool.flightId = "F1";
    EXPECT_EQ(client.poolClipThumbURL(pool).toString(), base + "/flights/F1/thumb.jpg");
    pool.thumb = "flights/F1/clipthumb_c2_123.jpg";
    EXPECT_EQ(client.poolClipThumbURL(pool).toString(), base + "/flights/F1/clipthumb_c2_123.jpg");
}

TEST_F(WireTest, ImageBytesComeWhateverTheStatus)
{
    server.replyWith(404, "<html>missing</html>", "text/html");
    EXPECT_EQ(run(client.imageBytes(client.flightThumbURL("F1"))), "<html>missing</html>");
    expectRequest("GET", "/flights/F1/thumb.jpg", timeout60);
    server.setHandler([](const RecordingServer::Request &) {
        RecordingServer::Reply reply;
        reply.drop = true;
        return reply;
    });
    EXPECT_TRUE(run(client.imageBytes(client.flightThumbURL("F1"))).isEmpty());
}

TEST_F(WireTest, WebSessionCookieFromABearerToken)
{
    server.replyWith(200, R"({"cookie":"ws","token":"abc","maxAge":3600})");
    const QDateTime before = QDateTime::currentDateTimeUtc();
    const auto cookie = run(client.webSessionCookie());
    ASSERT_TRUE(cookie.has_value());
    expectRequest("POST", "/api/auth/session", timeout60);
    EXPECT_TRUE(server.last().body.isEmpty());
    EXPECT_EQ(cookie->name(), "ws");
    EXPECT_EQ(cookie->value(), "abc");
    EXPECT_EQ(cookie->domain(), "127.0.0.1");
    EXPECT_EQ(cookie->path(), "/");
    EXPECT_FALSE(cookie->isSecure());  // an http base
    const qint64 lifetime = before.secsTo(cookie->expirationDate());
    EXPECT_GE(lifetime, 3599);
    EXPECT_LE(lifetime, 3601);
}

TEST_F(WireTest, WebSessionCookieIsAbsentOnAnythingButAGood200)
{
    // Basic credentials: no request at all.
    APIClient basic(server.base(), QStringLiteral("Basic dTpw"), nullptr, network);
    EXPECT_FALSE(run(basic.webSessionCookie()).has_value());
    EXPECT_FALSE(run(APIClient(server.base(), std::nullopt).webSessionCookie()).has_value());
    EXPECT_EQ(server.count(), 0);

    for (const int status : {201, 401, 500}) {
        server.replyWith(status, R"({"cookie":"ws","token":"abc","maxAge":3600})");
        EXPECT_FALSE(run(client.webSessionCookie()).has_value()) << status;
    }
    server.replyWith(200, R"({"cookie":"ws","token":"abc"})");
    EXPECT_FALSE(run(client.webSessionCookie()).has_value());
    server.replyWith(200, R"({"cookie":"","token":"abc","maxAge":10})");
    EXPECT_FALSE(run(client.webSessionCookie()).has_value());
}

TEST(WebSessionCookie, SecureOnlyForHttpsBases)
{
    const QDateTime now = QDateTime::fromString("2026-01-01T00:00:00Z", Qt::ISODate);
    const QByteArray body = R"({"cookie":"ws","token":"v","maxAge":60})";
    const auto secure = APIClient::webSessionCookieFor("https://lib.example.org/base", body, now);
    ASSERT_TRUE(secure);
    EXPECT_TRUE(secure->isSecure());
    EXPECT_EQ(secure->domain(), "lib.example.org");
    EXPECT_EQ(secure->expirationDate(), now.addSecs(60));
    EXPECT_FALSE(APIClient::webSessionCookieFor("http://lib.example.org", body, now)->isSecure());
    EXPECT_FALSE(APIClient::webSessionCookieFor("file:///x", body, now).has_value());  // no host
}

class DownloadTest : public WireTest
{
protected:
    // A temporary folder of this test's own, so nothing else running can leave files in it.
    QTemporaryDir temp;
    const QByteArray savedTemp = qgetenv("TMPDIR");
    const bool tempSet = qputenv("TMPDIR", temp.path().toLocal8Bit());
    const QString name = QStringLiteral("aeroloom-test.mp4");
    const QString destination = QDir(QDir::tempPath()).filePath(name);
    ~DownloadTest() override
    {
        if (savedTemp.isNull())
            qunsetenv("TMPDIR");
        else
            qputenv("TMPDIR", savedTemp);
    }

    static QByteArray readAll(const QString &path)
    {
        QFile f(path);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }
    [[nodiscard]] QStringList leftovers() const
    {
        return QDir(temp.path()).entryList(QDir::Files | QDir::Hidden);
    }
};

TEST_F(DownloadTest, StreamsToTheTemporaryFolderAndReplacesAnOlderFile)
{
    QByteArray video(3 * 1024 * 1024, '\0');
    for (int i = 0; i < video.size(); ++i)
        video[i] = char(i * 7);
    {
        QFile old(destination);
        ASSERT_TRUE(old.open(QIODevice::WriteOnly));
        old.write("old");
    }
    server.replyWith(200, video, "video/mp4");
    const auto path = run(client.downloadToTemporary("api/projects/p1/renders/r1/file.mp4", name));
    ASSERT_TRUE(path.ok()) << path.errorText().toStdString();
    EXPECT_EQ(*path, destination);
    expectRequest("GET", "/api/projects/p1/renders/r1/file.mp4", timeout60);
    EXPECT_EQ(destination, QDir(temp.path()).filePath(name));
    EXPECT_EQ(readAll(destination), video);
    EXPECT_EQ(leftovers(), QStringList{name});
}

TEST_F(DownloadTest, AFailedDownloadLeavesNothingUnderTheFinalName)
{
    {
        QFile old(destination);
        ASSERT_TRUE(old.open(QIODevice::WriteOnly));
        old.write("old");
    }
    server.replyWith(404, "<html>gone</html>", "text/html");
    auto r = run(client.downloadToTemporary("x.mp4", name));
    ASSERT_FALSE(r.ok());
    EXPECT_EQ(r.errorText(), "Server returned 404.");
    EXPECT_EQ(readAll(destination), "old");  // only a complete download replaces it

    server.setHandler([](const RecordingServer::Request &) {
        RecordingServer::Reply reply;
        reply.drop = true;
        return reply;
    });
    r = run(client.downloadToTemporary("x.mp4", name));
    ASSERT_FALSE(r.ok());
    EXPECT_EQ(r.failure().domain, APIError::networkDomain);
    EXPECT_EQ(readAll(destination), "old");
    EXPECT_EQ(leftovers(), QStringList{name});

    server.clear();
    for (const QString &bad : QStringList{"", "..", "../escape.mp4", "a/b.mp4"}) {
        r = run(client.downloadToTemporary("x.mp4", bad));
        ASSERT_FALSE(r.ok()) << bad.toStdString();
        EXPECT_EQ(r.failure().code, APIError::badFileName);
    }
    EXPECT_EQ(server.count(), 0);
}

TEST_F(DownloadTest, CancellingStopsTheTransfer)
{
    CancelToken token;
    token.cancel();
    server.replyWith(200, QByteArray(1024, 'x'), "video/mp4");
    const auto r = run(client.downloadToTemporary("x.mp4", name, &token));
    ASSERT_FALSE(r.ok());
    EXPECT_TRUE(leftovers().isEmpty());
}
