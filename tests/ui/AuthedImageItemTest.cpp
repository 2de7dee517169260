#include "APIClient.h"
#include "AuthedImageItem.h"
#include "ImageCache.h"
#include "RecordingServer.h"

#include <QBuffer>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>

#include "TestImages.h"

#include <gtest/gtest.h>

namespace {
QByteArray squarePng()
{
    return pngOf(QSize(40, 40), QColor(220, 30, 30));
}

bool near(QColor a, QColor b)
{
    return std::abs(a.red() - b.red()) < 8 && std::abs(a.green() - b.green()) < 8 && std::abs(a.blue() - b.blue()) < 8;
}
} // namespace

TEST(AuthedImageItem, LetterboxesOnDarkBlueOrFillsCropped)
{
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    RecordingServer server;
    const QByteArray png = squarePng();
    server.setHandler([&](const RecordingServer::Request &r) {
        RecordingServer::Reply reply;
        if (r.target.endsWith("square.png")) {
            reply.body = png;
            reply.contentType = "image/png";
        } else {
            reply.status = 404;
            reply.body = "<html>missing</html>";
        }
        return reply;
    });
    APIClient client(server.base(), std::nullopt);
    ImageCache cache;

    QQuickWindow window;
    window.resize(160, 90);
    AuthedImageItem item(window.contentItem());
    item.setSize(QSizeF(160, 90));
    item.setCache(&cache);
    item.setClient(&client);
    item.setLetterbox(true);
    window.show();

    QSignalSpy loaded(&item, &AuthedImageItem::loadedChanged);
    item.setSource(client.url("square.png"));
    ASSERT_TRUE(loaded.wait(5000));
    ASSERT_TRUE(item.loaded());

    const QColor red(220, 30, 30);
    QImage shot = window.grabWindow();
    EXPECT_TRUE(near(shot.pixelColor(5, 45), QColor(11, 18, 36)));
    EXPECT_TRUE(near(shot.pixelColor(80, 45), red));

    item.setLetterbox(false);
    shot = window.grabWindow();
    EXPECT_TRUE(near(shot.pixelColor(5, 45), red));
    EXPECT_TRUE(near(shot.pixelColor(80, 2), red));

    // A missing image leaves the item empty on its black backing; the cached one comes back
    // at once, without asking the server again.
    item.setSource(client.url("missing.jpg"));
    EXPECT_FALSE(item.loaded());
    QTest::qWait(200);
    EXPECT_FALSE(item.loaded());
    const int before = server.count();
    EXPECT_EQ(before, 2);
    EXPECT_TRUE(near(window.grabWindow().pixelColor(80, 45), Qt::black));
    item.setSource(client.url("square.png"));
    EXPECT_TRUE(item.loaded());
    QTest::qWait(50);
    EXPECT_EQ(server.count(), before);
}
