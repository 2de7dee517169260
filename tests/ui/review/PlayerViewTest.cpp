// The flight player on screen, end to end: a token-guarded library holding a flight made by the
// import pipeline, its proxy drawn by libmpv with OpenGL (AEROLOOM_VIDEO_GL=1, under the virtual
// display) or mpv's software renderer offscreen, the base map from a loopback tile host. Both
// marks set, a clip, a suggestion and a moment on the timeline; pictures in both palettes go to
// <build>/screenshots.
#include "APIClient.h"
#include "CoroTest.h"
#include "FlightMapView.h"
#include "IngestedFlights.h"
#include "QuickShots.h"
#include "JogShuttleEngine.h"
#include "LoopbackTiles.h"
#include "MpvPlayer.h"
#include "PictureSpread.h"
#include "PlayerModel.h"
#include "Preferences.h"
#include "ReviewTypes.h"
#include "TestServer.h"
#include "Theme.h"
#include "ThemeManager.h"
#include "TimelinePlot.h"

#include <gtest/gtest.h>

#include <QQmlContext>
#include <QQuickItem>
#include <QQuickView>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace {

bool withOpenGL()
{
    return qEnvironmentVariableIntValue("AEROLOOM_VIDEO_GL") == 1;
}

class PlayerView : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        QQuickWindow::setGraphicsApi(withOpenGL() ? QSGRendererInterface::OpenGL : QSGRendererInterface::Software);
        registerReviewTypes();
        flights = new IngestedFlights();
    }
    static void TearDownTestSuite()
    {
        delete flights;
        flights = nullptr;
    }

    void SetUp() override
    {
        const QString token = QString::fromStdString(server.server().createToken("pilot@example.org"));
        client = std::make_shared<APIClient>(QString::fromStdString(server.base()), QStringLiteral("Bearer ") + token);
        ASSERT_TRUE(flights->upload(server, IngestedFlights::withTelemetry, QStringLiteral("Bearer ") + token));
        IngestedFlights::setMoments(server, IngestedFlights::withTelemetry, IngestedFlights::twoMoments);
        ASSERT_TRUE(run(client->saveClips(IngestedFlights::withTelemetry,
                                          {clipOf("k1", 0.8, 2.0, "Take-off over the meadow"),
                                           clipOf("s1", 3.0, 4.0, "Pan left", true)})));
        ASSERT_TRUE(run(client->createProject(QStringLiteral("Alps 2024"))));
        const auto manifest = run(client->fetchManifest());
        ASSERT_TRUE(manifest && manifest->size() == 1);

        qmlRegisterSingletonInstance("Aeroloom.Services", 1, 0, "Theme", &theme);
        player = new MpvPlayer(MpvPlayer::Output::Render);
        model = std::make_unique<PlayerModel>(manifest->first(), client, player, PlayerModel::Setup{});

        view.rootContext()->setContextProperty("playerModel", model.get());
        view.rootContext()->setContextProperty("tiles", tiles.base());
        view.rootContext()->setContextProperty("tileCache", dir.filePath("tiles"));
        ASSERT_EQ(QuickShots::load(view, dir, R"(import QtQuick
import Aeroloom.Services
import "qrc:/aeroloom/review"
FlightPlayerView {
    width: 1280; height: 800
    model: playerModel
    tileHost: tiles
    mapAttribution: "© OpenStreetMap contributors © CARTO"
    tileCacheDir: tileCache
}
)"), "");
        view.show();
    }

    QQuickItem *item(const char *name) const { return QuickShots::findItem(view.rootObject(), QString::fromLatin1(name)); }

    /// The window's picture of one item.
    QImage pictureOf(QQuickItem *it)
    {
        const QImage window = view.grabWindow();
        const qreal ratio = window.width() / qreal(view.width());
        const QRectF area = it->mapRectToScene(QRectF(0, 0, it->width(), it->height()));
        return window.copy(QRectF(area.topLeft() * ratio, area.size() * ratio).toRect());
    }

    void seekAndWait(double t)
    {
        model->seek(t);
        ASSERT_TRUE(waitUntil([&] { return std::abs(model->current() - t) < 0.06; }, 20000));
    }

    void shoot(const QString &name)
    {
        QTest::qWait(150);  // the palette's change reaches the painted items
        QuickShots::save(view, name);
    }
    QString kind() const { return withOpenGL() ? QStringLiteral("gl") : QStringLiteral("software"); }

    static inline IngestedFlights *flights = nullptr;
    TestServer server{[](ServerConfig &c) { c.auth = AuthMode::Token; }};
    LoopbackTiles tiles;
    QTemporaryDir dir;
    Preferences prefs{dir.filePath("prefs.ini")};
    ThemeManager themes{prefs};
    Theme theme{themes};
    std::shared_ptr<APIClient> client;
    MpvPlayer *player = nullptr;  // owned by the model
    std::unique_ptr<PlayerModel> model;
    QQuickView view;
};

} // namespace

TEST_F(PlayerView, AFlightWithItsMarksBandsMapAndVideo)
{
    QSignalSpy firstFrame(player, &VideoPlayer::firstFrameReady);
    run(model->loadAsync());
    ASSERT_TRUE(firstFrame.count() > 0 || firstFrame.wait(20000)) << "the video item never gave the player its output";
    ASSERT_TRUE(waitUntil([&] { return model->current() > 0.3; }, 20000));

    // Both marks, then the playhead between them.
    seekAndWait(4.6);
    model->setMarkIn();
    seekAndWait(6.2);
    model->setMarkOut();
    ASSERT_TRUE(model->hasRange());
    seekAndWait(5.4);

    auto *map = qobject_cast<FlightMapView *>(item("flightMap"));
    ASSERT_TRUE(map);
    EXPECT_EQ(map->path().size(), IngestedFlights::samples);
    EXPECT_GT(map->highlight().size(), 1);
    ASSERT_TRUE(waitUntil([&] { return map->missingTiles() == 0; }, 20000)) << "tiles from the loopback host";
    auto *plot = qobject_cast<TimelinePlot *>(item("timelinePlot"));
    ASSERT_TRUE(plot);
    EXPECT_EQ(plot->clipBands().size(), 1);
    EXPECT_EQ(plot->suggestedBands().size(), 1);
    EXPECT_EQ(plot->momentBands().size(), 1);

    // The video shows the flight, not a black or flat area.
    QQuickItem *video = item("video");
    ASSERT_TRUE(video);
    ASSERT_TRUE(waitUntil([&] { return pictureSpread(pictureOf(video)) > 20; }, 15000))
        << "the video area stays flat: " << pictureSpread(pictureOf(video));

    themes.setPref(ThemeManager::ThemePref::cockpit);
    shoot(QStringLiteral("player-%1-dark").arg(kind()));
    themes.setPref(ThemeManager::ThemePref::field);
    ASSERT_TRUE(waitUntil([&] { return map->missingTiles() == 0; }, 20000)) << "light tiles";
    shoot(QStringLiteral("player-%1-light").arg(kind()));
    EXPECT_GT(pictureSpread(pictureOf(video)), 20);

    // The menu of the pilot's own clip, with the stories to add it to; then the keys' sheet.
    QQuickItem *more = item("clipMenuButton-k1");
    ASSERT_TRUE(more);
    QTest::mouseClick(&view, Qt::LeftButton, {}, more->mapToScene(QPointF(more->width() / 2, more->height() / 2)).toPoint());
    QObject *menu = view.rootObject()->findChild<QObject *>("clipMenu");
    ASSERT_TRUE(menu);
    ASSERT_TRUE(waitUntil([&] { return menu->property("opened").toBool(); }));
    EXPECT_EQ(menu->property("count").toInt(), 3) << "Play clip, Add to story, Delete clip";
    themes.setPref(ThemeManager::ThemePref::cockpit);
    shoot(QStringLiteral("player-%1-menu-dark").arg(kind()));
    QMetaObject::invokeMethod(menu, "close");
    QObject *sheet = view.rootObject()->findChild<QObject *>("shortcutsSheet");
    ASSERT_TRUE(sheet);
    QMetaObject::invokeMethod(sheet, "open");
    ASSERT_TRUE(waitUntil([&] { return sheet->property("opened").toBool(); }));
    themes.setPref(ThemeManager::ThemePref::field);
    shoot(QStringLiteral("player-%1-keys-light").arg(kind()));
}

TEST_F(PlayerView, PressesOnTheMapTimelineAndKeysReachTheModel)
{
    run(model->loadAsync());
    ASSERT_TRUE(waitUntil([&] { return model->current() > 0.3; }, 20000));
    auto *map = qobject_cast<FlightMapView *>(item("flightMap"));
    ASSERT_TRUE(map);
    ASSERT_TRUE(waitUntil([&] { return map->path().size() == IngestedFlights::samples && map->width() > 0; }));

    // A press near the 40th sample of the path seeks to its time.
    const QPointF origin = map->mapToScene(QPointF(0, 0));
    int index = -1;
    for (int y = 0; y < map->height() && index != 40; y += 1)
        for (int x = 0; x < map->width(); x += 1)
            if (map->sampleNear(x, y) == 40) {
                index = 40;
                QTest::mouseClick(&view, Qt::LeftButton, {}, (origin + QPointF(x, y)).toPoint());
                break;
            }
    ASSERT_EQ(index, 40);
    const double sampleTime = model->track()[40].t;
    EXPECT_TRUE(waitUntil([&] { return std::abs(model->current() - sampleTime) < 0.06; }, 10000))
        << model->current() << " instead of " << sampleTime;
    EXPECT_FALSE(player->isPlaying());

    // A press on the timeline at a quarter of its plot seeks there.
    auto *plot = qobject_cast<TimelinePlot *>(item("timelinePlot"));
    const double x = plot->xOfTime(2.0);
    QTest::mouseClick(&view, Qt::LeftButton, {}, plot->mapToScene(QPointF(x, plot->height() / 2)).toPoint());
    EXPECT_TRUE(waitUntil([&] { return std::abs(model->current() - 2.0) < 0.06; }, 10000));

    // The shuttle bar: a press without movement changes nothing; a pull down runs the playhead
    // forwards at the bar's speed, and letting go plays on.
    QQuickItem *jog = item("jogBar");
    ASSERT_TRUE(jog);
    const QPoint knob = jog->mapToScene(QPointF(jog->width() / 2, jog->height() / 2)).toPoint();
    QTest::mouseClick(&view, Qt::LeftButton, {}, knob);
    EXPECT_FALSE(model->isJogging());
    EXPECT_FALSE(player->isPlaying()) << "a touch without movement leaves the player as it was";
    const double before = model->current();
    QTest::mousePress(&view, Qt::LeftButton, {}, knob);
    QTest::mouseMove(&view, knob + QPoint(0, int(jog->height() / 2 - 20)));
    EXPECT_TRUE(model->isJogging());
    EXPECT_EQ(model->jog().speed(), 4);
    ASSERT_TRUE(waitUntil([&] { return model->current() > before + 1; }, 5000));
    QTest::mouseRelease(&view, Qt::LeftButton, {}, knob + QPoint(0, int(jog->height() / 2 - 20)));
    EXPECT_FALSE(model->isJogging());
    EXPECT_TRUE(waitUntil([&] { return player->isPlaying(); }, 5000));
    model->seek(2.0);

    // The keys: I and O mark, Space plays; after O the name field takes the typing (an I there is
    // a letter, not a mark), Enter saves the named clip and gives the keys back; Esc leaves.
    view.rootObject()->forceActiveFocus();
    QTest::keyClick(&view, Qt::Key_I);
    ASSERT_TRUE(model->markIn());
    const double in = *model->markIn();
    QTest::keyClick(&view, Qt::Key_Space);
    ASSERT_TRUE(waitUntil([&] { return player->currentTime() > in + 0.6; }, 10000));
    QTest::keyClick(&view, Qt::Key_O);
    ASSERT_TRUE(model->hasRange());
    for (const char c : std::string("Ridge I"))
        QTest::keyClick(&view, c);
    EXPECT_EQ(*model->markIn(), in);
    QTest::keyClick(&view, Qt::Key_Return);
    ASSERT_TRUE(waitUntil([&] { return model->toast() == "Clip saved"; }, 10000));
    EXPECT_EQ(model->myClips().last().label, "Ridge I");
    // The 3D button asks for this flight's theater.
    QSignalSpy theater(model.get(), &PlayerModel::theaterRequested);
    QQuickItem *threeD = item("theaterButton");
    ASSERT_TRUE(threeD);
    QTest::mouseClick(&view, Qt::LeftButton, {}, threeD->mapToScene(QPointF(threeD->width() / 2, threeD->height() / 2)).toPoint());
    ASSERT_EQ(theater.count(), 1);
    EXPECT_EQ(theater.value(0).value(0).toString(), model->flight().id);
    view.rootObject()->forceActiveFocus();
    QSignalSpy leave(view.rootObject(), SIGNAL(closeRequested()));
    QTest::keyClick(&view, Qt::Key_Escape);
    EXPECT_EQ(leave.count(), 1);
}
