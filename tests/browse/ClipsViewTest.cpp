// The clips section on screen, end to end: a real library with its sample flights (each with a
// suggestion), the section's QML drawn offscreen (or with OpenGL on the virtual display when
// AEROLOOM_VIDEO_GL=1), the lightbox playing a clip through the real player with its filmstrip
// made by ffmpeg, and the trim sheet a story opens. Saves pictures in both palettes into
// <build>/screenshots.
#include "APIClient.h"
#include "AuthedImageItem.h"
#include "BrowseTypes.h"
#include "ClipFilmstrip.h"
#include "ClipLightboxModel.h"
#include "ClipsBrowserModel.h"
#include "ClipsBrowserStore.h"
#include "CoroTest.h"
#include "ImageCache.h"
#include "LightboxTypes.h"
#include "MpvPlayer.h"
#include "Preferences.h"
#include "QuickShots.h"
#include "ReviewTypes.h"
#include "TestServer.h"
#include "Theme.h"
#include "ThemeManager.h"
#include "TrimSheetModel.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QTemporaryDir>

namespace {
bool withOpenGL()
{
    return qEnvironmentVariable("AEROLOOM_VIDEO_GL") == QLatin1String("1");
}

class ClipsView : public ::testing::Test
{
protected:
    TestServer server{[](ServerConfig &c) {
        c.samples = true;
        c.sampleSeconds = 12;
    }};
    QTemporaryDir dir;
    Preferences prefs{dir.filePath("prefs.ini")};
    ThemeManager themes{prefs};
    Theme theme{themes};
    ImageCache images;
    std::shared_ptr<APIClient> client;
    std::unique_ptr<ClipsBrowserStore> store;
    std::unique_ptr<ClipsBrowserModel> browser;
    std::unique_ptr<ClipLightboxModel> lightbox;
    std::unique_ptr<TrimSheetModel> trimSheet;
    std::unique_ptr<QQuickView> view;

    static std::unique_ptr<VideoPlayer> makePlayer() { return std::make_unique<MpvPlayer>(); }

    void SetUp() override
    {
        client = std::make_shared<APIClient>(QString::fromStdString(server.base()), std::nullopt);
        store = std::make_unique<ClipsBrowserStore>(client);
        browser = std::make_unique<ClipsBrowserModel>(store.get(), nullptr);
        lightbox = std::make_unique<ClipLightboxModel>(browser.get(), &ClipsView::makePlayer);
        lightbox->setMetric(true);
        trimSheet = std::make_unique<TrimSheetModel>(client, &ClipsView::makePlayer);

        static bool registered = false;
        if (!registered) {
            registered = true;
            QQuickWindow::setGraphicsApi(withOpenGL() ? QSGRendererInterface::OpenGL : QSGRendererInterface::Software);
            registerBrowseTypes();
            registerReviewTypes();
            registerLightboxTypes();
            qmlRegisterType<AuthedImageItem>("Aeroloom.Services", 1, 0, "AuthedImageItem");
        }
        qmlRegisterSingletonInstance("Aeroloom.Services", 1, 0, "Theme", &theme);
    }
    void TearDown() override
    {
        view.reset();
        lightbox.reset();
        trimSheet.reset();
        browser.reset();
        store.reset();
        client->network()->clearConnectionCache();
        client.reset();
        waitUntil([] { return false; }, 20);
    }

    void show(const QByteArray &qml)
    {
        view = std::make_unique<QQuickView>();
        view->rootContext()->setContextProperty("clipsModel", browser.get());
        view->rootContext()->setContextProperty("lightboxModel", lightbox.get());
        view->rootContext()->setContextProperty("trimModel", trimSheet.get());
        view->rootContext()->setContextProperty("apiClient", client.get());
        view->rootContext()->setContextProperty("imageCache", &images);
        ASSERT_EQ(QuickShots::load(*view, dir, qml), "");
        view->show();
    }

    QQuickItem *item(const QString &name) const
    {
        // From the window's content item: a popup's items hang in its overlay, beside the root.
        QQuickItem *found = QuickShots::findItem(view->contentItem(), name);
        return found && found->isVisible() ? found : nullptr;
    }
    void shoot(const QString &name) { QuickShots::save(*view, withOpenGL() ? name + "-gl" : name); }
    /// Waits until the video item shows something other than black.
    bool videoShows(const QString &name)
    {
        return waitUntil([&] {
            QQuickItem *video = item(name);
            if (!video)
                return false;
            const QImage picture = view->grabWindow();
            const QPointF centre = video->mapToScene(QPointF(video->width() / 2, video->height() / 2));
            const QColor pixel = picture.pixelColor(centre.toPoint());
            return pixel.lightness() > 30;
        }, 20000);
    }
};
} // namespace

TEST_F(ClipsView, TheLibrarysClipsWithSuggestionsAndTheLightboxWithItsFilmstrip)
{
    show(R"(import QtQuick
import Aeroloom.Services
import "qrc:/aeroloom/browse"
ClipsBrowserView {
    width: 1180; height: 760
    browser: clipsModel
    lightbox: lightboxModel
    thumbnail: Component { AuthedImageItem { client: apiClient; cache: imageCache } }
}
)");
    ASSERT_TRUE(waitUntil([&] { return browser->screen() == "content"; }, 10000));
    // An own clip and a suggestion from each sample, and what the library's analysis adds.
    ASSERT_GE(browser->visibleCount(), 6);
    QString suggestion;
    for (const PoolClip &clip : browser->visible())
        if (suggestion.isEmpty() && clip.autoSuggested.value_or(false))
            suggestion = clip.identity();
    ASSERT_FALSE(suggestion.isEmpty());
    if (!waitUntil([&] { return item("clip-" + suggestion) != nullptr && images.size() >= 6; }, 20000))
        shoot("clips-browser-failed");
    ASSERT_TRUE(item("clip-" + suggestion));
    ASSERT_GE(images.size(), 6);

    themes.setPref(ThemeManager::ThemePref::cockpit);
    shoot("clips-browser-dark");
    themes.setPref(ThemeManager::ThemePref::field);
    shoot("clips-browser-light");

    // Picking clips for a story, by month.
    browser->setGroup("month");
    browser->toggleSelecting();
    browser->press(browser->visible()[0].identity());
    browser->press(browser->visible()[3].identity());
    ASSERT_TRUE(waitUntil([&] {
        QQuickItem *bar = item("selectionBar");
        return bar && bar->height() >= bar->implicitHeight() - 0.5;
    }));
    shoot("clips-select-light");
    browser->cancelSelecting();
    browser->setGroup("place");

    // A press on a suggestion opens it in the lightbox; the strip fills with the flight's frames.
    ASSERT_TRUE(waitUntil([&] { return item("clip-" + suggestion) != nullptr; }));
    QMetaObject::invokeMethod(item("clip-" + suggestion), "press");
    ASSERT_TRUE(lightbox->open());
    EXPECT_EQ(lightbox->clip()->identity(), suggestion);
    ASSERT_TRUE(waitUntil([&] { return item("lightboxStrip") != nullptr; }));
    ASSERT_TRUE(videoShows("lightboxVideo"));
    QQuickItem *strip = item("lightboxStrip");
    ASSERT_TRUE(waitUntil([&] { return !strip->property("makingFrames").toBool(); }, 30000));
    // Every frame of the strip shows, even for a clip that ends with the video.
    EXPECT_EQ(strip->property("framesShown").toInt(),
              ClipFilmstrip::frameCount(strip->width(), strip->height()));
    ASSERT_TRUE(waitUntil([&] { return !lightbox->altitudeText().isEmpty(); }));
    shoot("clips-lightbox-light");
    themes.setPref(ThemeManager::ThemePref::cockpit);
    shoot("clips-lightbox-dark");

    // A handle moved (the clip ends with the video, so it's the in handle): the trim is offered.
    ClipFilmstrip *model = lightbox->strip();
    model->dragChanged(model->xOf(model->savedStart()), model->xOf(model->savedStart() - 1.5));
    model->dragEnded();
    ASSERT_TRUE(lightbox->dirty());
    shoot("clips-lightbox-trim-dark");

    // Leaving the section closes the lightbox, so nothing plays unseen.
    view.reset();
    EXPECT_FALSE(browser->lightboxOpen());
    EXPECT_FALSE(lightbox->engine()->player()->isPlaying());
}

TEST_F(ClipsView, TheTrimSheetOfAStoryItem)
{
    show(R"(import QtQuick
import Aeroloom.Services
import "qrc:/aeroloom/review"
Rectangle {
    width: 960; height: 760
    color: Theme.background
    TrimSheetView { model: trimModel }
}
)");
    QList<std::tuple<QString, double, double>> changes;
    QObject::connect(trimSheet.get(), &TrimSheetModel::changed,
                     [&](const QString &key, double start, double end) { changes.append({key, start, end}); });
    trimSheet->open("item-7", "20240601_184512_0002", false, "Orbit over the water", "Cedar Ridge", 1.8, 4.8);
    ASSERT_TRUE(waitUntil([&] { return item("trimStrip") != nullptr; }));
    EXPECT_EQ(trimSheet->lengthText(), "clip 0:03.0");
    ASSERT_TRUE(videoShows("trimVideo"));
    ASSERT_TRUE(waitUntil([&] { return !item("trimStrip")->property("makingFrames").toBool(); }, 30000));
    EXPECT_GE(item("trimStrip")->property("framesShown").toInt(), 6);
    themes.setPref(ThemeManager::ThemePref::field);
    shoot("trim-sheet-light");
    themes.setPref(ThemeManager::ThemePref::cockpit);
    shoot("trim-sheet-dark");

    // Every handle let go is saved at once; the sheet keeps half a second at least.
    ClipFilmstrip *strip = trimSheet->strip();
    strip->dragChanged(strip->xOf(1.8), strip->xOf(4.6));
    strip->dragEnded();
    ASSERT_EQ(changes.size(), 1);
    EXPECT_EQ(std::get<0>(changes[0]), "item-7");
    EXPECT_DOUBLE_EQ(std::get<1>(changes[0]), 4.3);
    EXPECT_EQ(trimSheet->lengthText(), "clip 0:00.5");

    QMetaObject::invokeMethod(item("trimClose"), "clicked");
    EXPECT_FALSE(trimSheet->isOpen());
    EXPECT_FALSE(trimSheet->engine()->player()->isPlaying());
}
