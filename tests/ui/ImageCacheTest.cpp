#include "APIClient.h"
#include "CoroTest.h"
#include "ImageCache.h"
#include "RecordingServer.h"

#include <QBuffer>
#include <QImage>

#include "TestImages.h"

#include <gtest/gtest.h>

namespace {
QByteArray pngBytes()
{
    return pngOf(QSize(32, 18), QColor(200, 120, 40));
}
} // namespace

TEST(ImageCache, LoadsWithTheSessionAndRemembersOnlyImages)
{
    RecordingServer server;
    const QByteArray png = pngBytes();
    server.setHandler([&](const RecordingServer::Request &r) {
        RecordingServer::Reply reply;
        if (r.target == "/flights/a/thumb.jpg") {
            reply.body = png;
            reply.contentType = "image/png";
        } else if (r.target == "/flights/teapot/thumb.jpg") {
            // The status is not looked at: bytes that decode are an image.
            reply.status = 418;
            reply.body = png;
            reply.contentType = "image/png";
        } else {
            reply.status = 404;
            reply.body = "<html><body>Not Found</body></html>";
            reply.contentType = "text/html";
        }
        return reply;
    });
    APIClient client(server.base(), QStringLiteral("Bearer t"));
    ImageCache cache;

    auto image = run(cache.load(&client, client.url("flights/a/thumb.jpg")));
    ASSERT_TRUE(image);
    EXPECT_EQ(image->size(), QSize(32, 18));
    EXPECT_EQ(server.last().header("Authorization"), "Bearer t");
    EXPECT_EQ(server.count(), 1);

    // A hit is served from memory without asking again.
    image = run(cache.load(&client, client.url("flights/a/thumb.jpg")));
    ASSERT_TRUE(image);
    EXPECT_EQ(server.count(), 1);
    EXPECT_TRUE(cache.cached(client.url("flights/a/thumb.jpg")));

    // An HTML 404 is no image: nothing is cached and the next view asks again.
    EXPECT_FALSE(run(cache.load(&client, client.url("flights/gone/thumb.jpg"))));
    EXPECT_FALSE(run(cache.load(&client, client.url("flights/gone/thumb.jpg"))));
    EXPECT_EQ(server.count(), 3);

    EXPECT_TRUE(run(cache.load(&client, client.url("flights/teapot/thumb.jpg"))));
    EXPECT_EQ(cache.size(), 2);

    // Nothing listens there: no image, no crash.
    APIClient dead(QStringLiteral("http://127.0.0.1:1"), std::nullopt);
    EXPECT_FALSE(run(cache.load(&dead, dead.url("flights/x/thumb.jpg"))));
}
