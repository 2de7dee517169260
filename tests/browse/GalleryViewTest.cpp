// The flights section end to end: a real library server with a few flights, the gallery's QML
// drawn offscreen, tiles from a loopback tile host. Saves pictures of the grid and the map in
// both palettes into <build>/screenshots.
#include "APIClient.h"
#include "AuthedImageItem.h"
#include "BrowseTypes.h"
#include "CoroTest.h"
#include "FlightFile.h"
#include "GalleryStore.h"
#include "ImageCache.h"
#include "LoopbackTiles.h"
#include "QuickShots.h"
#include "Preferences.h"
#include "SampleMaker.h"
#include "TestServer.h"
#include "Theme.h"
#include "ThemeManager.h"

#include <gtest/gtest.h>

#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QSettings>
#include <QTemporaryDir>

namespace fs = std::filesystem;

namespace {
struct Planned {
    const char *id;
    const char *place;
    const char *model;
    double lat, lon;
};
// Ids carry their dates. Two flights near each other cluster on a wide map.
const Planned planned[] = {
    {"20240512_093000_0001", "Saltmarsh Lagoon", "Mavic 3", 43.5185, 4.1912},
    {"20240601_184512_0002", "Cedar Ridge", "Mavic 3", 46.5593, 8.0031},
    {"20240602_071530_0003", "Cedar Ridge", "Mini 4 Pro", 46.5620, 8.0110},
    {"20240714_121000_0004", "Harbour Point", "Avata 2", 38.7076, -9.4866},
};

void putFlights(TestServer &server)
{
    const fs::path media = makeFlightFolder(server.sandbox() / "media", 1.0);
    auto http = server.client();
    for (const Planned &s : planned) {
        const fs::path folder = server.sandbox() / "up" / s.id;
        fs::create_directories(folder);
        fs::copy_file(media / "proxy.mp4", folder / "proxy.mp4");
        fs::copy_file(media / "thumb.jpg", folder / "thumb.jpg");
        FlightData flight = SampleMaker::flightFile(s.lat, s.lon, 1.0, std::string("DJI_") + s.id + ".MP4", s.place);
        flight.meta.model = QString::fromLatin1(s.model);
        ASSERT_TRUE(FlightFile::write(flight, QString::fromStdString(folder.string())));
        const auto commit = uploadFlight(*http, s.id, folder);
        ASSERT_TRUE(commit && commit->status == 200) << (commit ? commit->body : "no reply");
    }
}

class GalleryView : public ::testing::Test
{
protected:
    TestServer server;
    LoopbackTiles tiles;
    QTemporaryDir dir;
    Preferences prefs{dir.filePath("prefs.ini")};
    ThemeManager themes{prefs};
    Theme theme{themes};
    ImageCache images;
    std::shared_ptr<APIClient> client;
    std::unique_ptr<QSettings> settings;
    std::unique_ptr<GalleryStore> store;
    std::unique_ptr<QQuickView> view;

    void SetUp() override
    {
        putFlights(server);
        client = std::make_shared<APIClient>(QString::fromStdString(server.base()), std::nullopt);
        settings = std::make_unique<QSettings>(dir.filePath("prefs.ini"), QSettings::IniFormat);
        settings->setValue("map.tileHost", tiles.base());
        store = std::make_unique<GalleryStore>(client, settings.get(), nullptr);

        static bool registered = false;
        if (!registered) {
            registered = true;
            QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
            registerBrowseTypes();
            qmlRegisterType<AuthedImageItem>("Aeroloom.Services", 1, 0, "AuthedImageItem");
        }
        qmlRegisterSingletonInstance("Aeroloom.Services", 1, 0, "Theme", &theme);

        view = std::make_unique<QQuickView>();
        view->rootContext()->setContextProperty("galleryStore", store.get());
        view->rootContext()->setContextProperty("apiClient", client.get());
        view->rootContext()->setContextProperty("imageCache", &images);
        view->rootContext()->setContextProperty("tileCache", dir.filePath("tiles"));
        ASSERT_EQ(QuickShots::load(*view, dir, R"(import QtQuick
import Aeroloom.Services
import "qrc:/aeroloom/browse"
GalleryView {
    width: 1180; height: 760
    store: galleryStore
    tileCacheDir: tileCache
    thumbnail: Component { AuthedImageItem { client: apiClient; cache: imageCache } }
}
)"), "");
        view->show();
        ASSERT_TRUE(waitUntil([&] { return store->flightCount() == 4 && !store->loading(); }, 10000));
    }

    QQuickItem *card(const char *id) const
    {
        auto *item = QuickShots::findItem(view->rootObject(), QStringLiteral("card-") + QLatin1String(id));
        return item && item->isVisible() ? item : nullptr;
    }
    int cardCount() const
    {
        int n = 0;
        for (const Planned &s : planned)
            n += card(s.id) != nullptr;
        return n;
    }
    void shoot(const QString &name) { QuickShots::save(*view, name); }
    nlohmann::json serverGet(const char *path) const { return jsonOf(server.client()->Get(path)); }

    /// Pixels in the strip under the marker of pin `id` that have the colour of the theme's text:
    /// where a pin's title is written.
    int titleInkUnder(QQuickItem *map, const QString &id) const
    {
        QPointF sum;
        int hits = 0;
        for (int x = 0; x < map->width(); x += 2)
            for (int y = 0; y < map->height(); y += 2) {
                QString hit;
                QMetaObject::invokeMethod(map, "hitAt", Q_RETURN_ARG(QString, hit), Q_ARG(double, x), Q_ARG(double, y));
                if (hit == id) {
                    sum += QPointF(x, y);
                    ++hits;
                }
            }
        if (hits == 0)
            return -1;
        const QPointF centre = map->mapToScene(sum / hits);
        const QImage picture = view->grabWindow();
        const QColor ink = theme.text();
        int count = 0;
        for (int x = int(centre.x()) - 40; x <= int(centre.x()) + 40; ++x)
            for (int y = int(centre.y()) + 16; y <= int(centre.y()) + 34; ++y) {
                const QColor c = picture.pixelColor(x, y);
                count += std::abs(c.red() - ink.red()) + std::abs(c.green() - ink.green()) + std::abs(c.blue() - ink.blue()) < 60;
            }
        return count;
    }
};
} // namespace

TEST_F(GalleryView, GridFiltersHidesAndDeletesAgainstTheServer)
{
    ASSERT_TRUE(waitUntil([&] { return cardCount() == 4; }));
    EXPECT_EQ(store->stats().value("count").toString(), "4");

    // A filter hides some cards; taking its chip away brings them back.
    store->setModelFilter("Mavic 3");
    ASSERT_TRUE(waitUntil([&] { return cardCount() == 2; }));
    EXPECT_EQ(store->stats().value("count").toString(), "2 of 4");
    store->removeChip("model");
    ASSERT_TRUE(waitUntil([&] { return cardCount() == 4; }));

    themes.setPref(ThemeManager::ThemePref::cockpit);
    ASSERT_TRUE(waitUntil([&] { return images.size() > 0; }));
    shoot("gallery-grid-dark");
    themes.setPref(ThemeManager::ThemePref::field);
    shoot("gallery-grid-light");

    // Grouped by month, picking flights for a story, the filter popover open.
    store->setGroup("month");
    store->setSelecting(true);
    store->press("20240601_184512_0002");
    auto *popover = view->rootObject()->findChild<QObject *>("filterPopover");
    ASSERT_TRUE(popover);
    QMetaObject::invokeMethod(popover, "open");
    ASSERT_TRUE(waitUntil([&] { return popover->property("opened").toBool(); }));
    shoot("gallery-filters-light");
    themes.setPref(ThemeManager::ThemePref::cockpit);
    shoot("gallery-filters-dark");
    themes.setPref(ThemeManager::ThemePref::field);
    QMetaObject::invokeMethod(popover, "close");
    store->finishSelecting();
    store->removeChip("group");

    // Hide reaches the server.
    QMetaObject::invokeMethod(card("20240601_184512_0002"), "hide");
    ASSERT_TRUE(waitUntil([&] { return card("20240601_184512_0002") == nullptr; }));
    ASSERT_TRUE(waitUntil([&] { return serverGet("/api/hidden")["ids"] == nlohmann::json{"20240601_184512_0002"}; }));

    // Delete asks first, then reaches the server.
    QMetaObject::invokeMethod(card("20240714_121000_0004"), "requestDelete");
    auto *dialog = view->rootObject()->findChild<QObject *>("deleteDialog");
    ASSERT_TRUE(dialog);
    ASSERT_TRUE(waitUntil([&] { return dialog->property("visible").toBool(); }));
    store->confirmDelete();
    ASSERT_TRUE(waitUntil([&] { return store->flightCount() == 3 && card("20240714_121000_0004") == nullptr; }));
    EXPECT_FALSE(dialog->property("visible").toBool());
    EXPECT_EQ(serverGet("/manifest.json")["flights"].size(), 3u);

    // The server no longer knows a flight the gallery still shows: hiding it fails, and the card
    // comes back without a word.
    ASSERT_EQ(server.client()->Delete("/api/flights/20240512_093000_0001")->status, 200);
    QMetaObject::invokeMethod(card("20240512_093000_0001"), "hide");
    EXPECT_EQ(card("20240512_093000_0001"), nullptr);
    ASSERT_TRUE(waitUntil([&] { return card("20240512_093000_0001") != nullptr; }));
    EXPECT_FALSE(store->library().hiddenIDs.contains("20240512_093000_0001"));
    EXPECT_TRUE(store->deleteError().isEmpty());
}

TEST_F(GalleryView, MapShowsClusteredPinsOnLoopbackTiles)
{
    store->setLayout("map");
    auto *map = view->rootObject()->findChild<QQuickItem *>("tileMap");
    ASSERT_TRUE(map);
    ASSERT_TRUE(waitUntil([&] { return map->isVisible() && map->width() > 0; }));
    // Fitted to all four pins: the two at Cedar Ridge are one cluster at this zoom.
    EXPECT_EQ(map->property("markerCount").toInt(), 3);

    auto complete = [map] {
        int missing = -1;
        QMetaObject::invokeMethod(map, "missingTiles", Q_RETURN_ARG(int, missing));
        return missing == 0;
    };
    themes.setPref(ThemeManager::ThemePref::cockpit);
    ASSERT_TRUE(waitUntil(complete, 10000));
    shoot("gallery-map-dark");
    // A pin of its own carries its place under the marker; pins in a cluster say nothing.
    EXPECT_GT(titleInkUnder(map, "20240512_093000_0001"), 15) << "Saltmarsh Lagoon";
    EXPECT_GT(titleInkUnder(map, "20240714_121000_0004"), 15) << "Harbour Point";
    const int darkTiles = tiles.served();
    themes.setPref(ThemeManager::ThemePref::field);
    ASSERT_TRUE(waitUntil(complete, 10000));
    EXPECT_GT(tiles.served(), darkTiles);  // the light base map is other tiles
    shoot("gallery-map-light");
    EXPECT_GT(titleInkUnder(map, "20240512_093000_0001"), 15) << "Saltmarsh Lagoon";

    // A filter that keeps the same flights leaves the camera where it is; a press on the
    // cluster zooms to its members.
    const double zoom = map->property("zoom").toDouble();
    store->setTod("all");
    store->setSearch(" ");
    EXPECT_EQ(map->property("zoom").toDouble(), zoom);

    const auto pins = store->pins();
    QString clusterAt;
    for (int x = 0; x < map->width() && clusterAt.isEmpty(); x += 3)
        for (int y = 0; y < map->height() && clusterAt.isEmpty(); y += 3)
            if (map->property("markerCount").toInt() == 3) {
                QString hit;
                QMetaObject::invokeMethod(map, "hitAt", Q_RETURN_ARG(QString, hit), Q_ARG(double, x), Q_ARG(double, y));
                if (hit.startsWith("cluster:")) {
                    clusterAt = hit;
                    QMetaObject::invokeMethod(map, "pressAt", Q_ARG(double, x), Q_ARG(double, y));
                }
            }
    EXPECT_EQ(clusterAt, "cluster:2");
    ASSERT_TRUE(waitUntil([&] { return map->property("zoom").toDouble() > zoom + 3; }));
    EXPECT_TRUE(store->openedId().isEmpty());  // a cluster opens nothing
}


#include "TileLoader.h"

TEST(TileLoader, TilesComeBackFromDiskInTheNextRun)
{
    LoopbackTiles host;
    QTemporaryDir cache;
    const QString url = host.base() + "/dark_all/3/4/2@2x.png";
    {
        TileLoader first(cache.path());
        EXPECT_TRUE(first.tile(url).isNull());  // never waits: asks, and draws later
        ASSERT_TRUE(waitUntil([&] { return !first.cached(url).isNull(); }));
        EXPECT_EQ(first.cached(url).width(), 512);
        EXPECT_EQ(first.pending(), 0);
    }
    ASSERT_EQ(host.served(), 1);
    TileLoader second(cache.path());
    (void)second.tile(url);
    ASSERT_TRUE(waitUntil([&] { return !second.cached(url).isNull(); }));
    EXPECT_EQ(host.served(), 1);

    // A tile the host can't give stays missing without a fuss.
    const QString missing = host.base() + "/nowhere/1/1/1@2x.png";
    (void)second.tile(missing);
    ASSERT_TRUE(waitUntil([&] { return second.pending() == 0; }));
    EXPECT_TRUE(second.cached(missing).isNull());
}
