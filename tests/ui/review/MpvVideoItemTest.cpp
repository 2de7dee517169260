// The video item in a real window, drawing a real proxy streamed from a token-guarded library:
// with OpenGL under a virtual display (AEROLOOM_VIDEO_GL=1) or with mpv's software renderer
// under the offscreen software scene graph. The picture must be the proxy's own frame, upright;
// pictures in both palettes go to <build>/screenshots.
#include "CoroTest.h"
#include "MpvPlayer.h"
#include "PlaybackLibrary.h"
#include "Preferences.h"
#include "QuickShots.h"
#include "ReviewTypes.h"
#include "TestPaths.h"
#include "Theme.h"
#include "ThemeManager.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QProcess>
#include <QQmlContext>
#include <QQuickItem>
#include <QQuickView>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>

namespace {

bool withOpenGL()
{
    return qEnvironmentVariableIntValue("AEROLOOM_VIDEO_GL") == 1;
}

/// The frame ffmpeg decodes at `seconds`, as an image.
QImage referenceFrame(const QString &file, double seconds, const QString &into)
{
    QProcess ffmpeg;
    ffmpeg.start(QStringLiteral("ffmpeg"), {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"),
                                            QStringLiteral("-ss"), QString::number(seconds), QStringLiteral("-i"), file,
                                            QStringLiteral("-frames:v"), QStringLiteral("1"), QStringLiteral("-y"), into});
    ffmpeg.waitForFinished(-1);
    return QImage(into).convertToFormat(QImage::Format_RGB32);
}

/// Mean difference per channel (0..255) between two pictures, compared as 32 × 18 averages.
double difference(const QImage &a, const QImage &b)
{
    const QSize grid(32, 18);
    const QImage x = a.scaled(grid, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).convertToFormat(QImage::Format_RGB32);
    const QImage y = b.scaled(grid, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).convertToFormat(QImage::Format_RGB32);
    double sum = 0;
    for (int row = 0; row < grid.height(); ++row)
        for (int col = 0; col < grid.width(); ++col) {
            const QColor p = x.pixelColor(col, row), q = y.pixelColor(col, row);
            sum += std::abs(p.red() - q.red()) + std::abs(p.green() - q.green()) + std::abs(p.blue() - q.blue());
        }
    return sum / (3.0 * grid.width() * grid.height());
}

class MpvVideoItemTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        QQuickWindow::setGraphicsApi(withOpenGL() ? QSGRendererInterface::OpenGL : QSGRendererInterface::Software);
        registerReviewTypes();
        library = new PlaybackLibrary();
    }
    static void TearDownTestSuite()
    {
        delete library;
        library = nullptr;
    }

    void SetUp() override
    {
        qmlRegisterSingletonInstance("Aeroloom.Services", 1, 0, "Theme", &theme);
        view.rootContext()->setContextProperty("videoPlayer", &player);
        // The item sits letterboxed in a window of the palette's colour; a Loader lets a test
        // take it away and bring a new one.
        ASSERT_EQ(QuickShots::load(view, dir, R"(import QtQuick
import Aeroloom.Review
import Aeroloom.Services
Rectangle {
    width: 560; height: 400
    color: Theme.background
    property bool showVideo: true
    Loader {
        objectName: "loader"
        x: 40; y: 40; width: 480; height: 320
        active: showVideo
        sourceComponent: MpvVideoItem { objectName: "video"; player: videoPlayer }
    }
}
)"), "");
        view.show();
    }

    /// The part of the window where the proxy's 16:9 picture stands inside the 480 × 320 item.
    QImage videoArea()
    {
        const QImage window = view.grabWindow();
        const qreal ratio = window.width() / qreal(view.width());
        const QRectF area(40, 40 + (320 - 270) / 2.0, 480, 270);
        return window.copy(QRectF(area.topLeft() * ratio, area.size() * ratio).toRect());
    }

    /// Waits until the window shows a picture close to `reference`, or gives the last difference.
    double settleOn(const QImage &reference)
    {
        double last = 255;
        waitUntil([&] {
            last = difference(videoArea(), reference);
            return last < 12;
        }, 15000);
        return last;
    }

    void shoot(const QString &name)
    {
        const QDir shots(TestPaths::buildDir() + "/screenshots");
        shots.mkpath(".");
        ASSERT_TRUE(view.grabWindow().save(shots.filePath(name + ".png")));
    }

    QString kind() const { return withOpenGL() ? QStringLiteral("gl") : QStringLiteral("software"); }

    static inline PlaybackLibrary *library = nullptr;
    QTemporaryDir dir;
    Preferences prefs{dir.filePath("prefs.ini")};
    ThemeManager themes{prefs};
    Theme theme{themes};
    MpvPlayer player{MpvPlayer::Output::Render};
    QQuickView view;
};

TEST_F(MpvVideoItemTest, ShowsTheProxysOwnFrameUpright)
{
    ASSERT_TRUE(waitUntil([&] { return view.rendererInterface()->graphicsApi() != QSGRendererInterface::Unknown; }));
    ASSERT_EQ(view.rendererInterface()->graphicsApi(),
              withOpenGL() ? QSGRendererInterface::OpenGL : QSGRendererInterface::Software);
    QSignalSpy ready(&player, &VideoPlayer::firstFrameReady);
    player.replaceItem(library->good(), library->headers());
    ASSERT_TRUE(ready.wait(20000)) << "the file never opened: the item did not give the player its render context";

    std::optional<bool> landed;
    player.seekExactly(2.0, [&](bool finished) { landed = finished; });
    ASSERT_TRUE(waitUntil([&] { return landed.has_value(); }, 20000));
    ASSERT_TRUE(*landed);

    const QImage reference = referenceFrame(library->goodFile(), 2.0, dir.filePath("frame.png"));
    ASSERT_FALSE(reference.isNull());
    const double shown = settleOn(reference);
    EXPECT_LT(shown, 12) << "the window does not show the frame at 2 s";
    EXPECT_GT(difference(videoArea(), reference.mirrored(false, true)), 2 * shown) << "the picture is upside down";

    themes.setPref(ThemeManager::ThemePref::cockpit);
    QTest::qWait(200);
    shoot(QStringLiteral("video-item-%1-dark").arg(kind()));
    themes.setPref(ThemeManager::ThemePref::field);
    QTest::qWait(200);
    shoot(QStringLiteral("video-item-%1-light").arg(kind()));

    // Playing moves the picture on.
    player.play();
    ASSERT_TRUE(waitUntil([&] { return player.currentTime() > 3.0; }, 15000));
    EXPECT_GT(difference(videoArea(), reference), 12) << "the picture stood still while playing";
}

TEST_F(MpvVideoItemTest, ANewItemTakesOverTheVideoOfTheSamePlayer)
{
    QSignalSpy ready(&player, &VideoPlayer::firstFrameReady);
    player.replaceItem(library->good(), library->headers());
    ASSERT_TRUE(ready.wait(20000));
    std::optional<bool> landed;
    player.seekExactly(3.0, [&](bool finished) { landed = finished; });
    ASSERT_TRUE(waitUntil([&] { return landed == true; }, 20000));

    // The item goes while the player stays (mpv drops the file with its video output); a new
    // item shows the same frame again, and the player goes on seeking.
    view.rootObject()->setProperty("showVideo", false);
    QTest::qWait(300);
    view.rootObject()->setProperty("showVideo", true);
    EXPECT_LT(settleOn(referenceFrame(library->goodFile(), 3.0, dir.filePath("frame3.png"))), 12)
        << "the new item does not show where the player stood";
    EXPECT_NEAR(player.currentTime(), 3.0, PlaybackLibrary::frame);
    EXPECT_EQ(ready.count(), 1);

    landed.reset();
    player.seekExactly(4.0, [&](bool finished) { landed = finished; });
    ASSERT_TRUE(waitUntil([&] { return landed.has_value(); }, 20000));
    EXPECT_TRUE(*landed);
    EXPECT_LT(settleOn(referenceFrame(library->goodFile(), 4.0, dir.filePath("frame4.png"))), 12);
}

TEST_F(MpvVideoItemTest, APlayerThatGoesTakesItsPictureAlong)
{
    auto lightbox = std::make_unique<MpvPlayer>(MpvPlayer::Output::Render);
    view.rootContext()->setContextProperty("videoPlayer", lightbox.get());
    QSignalSpy ready(lightbox.get(), &VideoPlayer::firstFrameReady);
    lightbox->replaceItem(library->good(), library->headers());
    ASSERT_TRUE(ready.wait(20000));
    lightbox.reset();
    const QColor plain(11, 18, 36);
    EXPECT_TRUE(waitUntil([&] {
        const QImage area = videoArea();
        return area.pixelColor(area.width() / 2, area.height() / 2) == plain;
    }));
}

TEST_F(MpvVideoItemTest, APlayerWithoutVideoOutputLeavesAPlainArea)
{
    MpvPlayer headless(MpvPlayer::Output::Headless);
    view.rootContext()->setContextProperty("videoPlayer", &headless);
    QSignalSpy ready(&headless, &VideoPlayer::firstFrameReady);
    headless.replaceItem(library->good(), library->headers());
    ASSERT_TRUE(ready.wait(20000));
    QTest::qWait(200);
    const QImage area = videoArea();
    const QColor middle = area.pixelColor(area.width() / 2, area.height() / 2);
    EXPECT_EQ(middle, QColor(11, 18, 36));
}

} // namespace
