// The video screens on screen over the real library: making a video (running, then done and
// playing), a story's videos, the player, the share sheet and its question, from the story
// and from the hub. Pictures in both palettes go to <build>/screenshots; with
// AEROLOOM_VIDEO_GL=1 on the virtual display the video is drawn with OpenGL ("-gl" pictures).
#include "AuthedImageItem.h"
#include "ImageCache.h"
#include "Preferences.h"
#include "QuickShots.h"
#include "ReelsHubModel.h"
#include "RenderPlayback.h"
#include "RenderPreviewModel.h"
#include "ReviewTypes.h"
#include "ShareSheetModel.h"
#include "StoriesTypes.h"
#include "StoryNavigator.h"
#include "Theme.h"
#include "ThemeManager.h"
#include "VideosFixture.h"

#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QSettings>
#include <QTemporaryDir>

#include <cmath>

using namespace std::chrono_literals;
using nlohmann::json;

namespace {

bool withOpenGL()
{
    return qEnvironmentVariable("AEROLOOM_VIDEO_GL") == QLatin1String("1");
}

class VideosView : public VideosFixture
{
protected:
    QTemporaryDir dir;
    Preferences prefs{dir.filePath("prefs.ini")};
    ThemeManager themes{prefs};
    Theme theme{themes};
    ImageCache images;
    HandedOver desktop;
    QSettings settings{dir.filePath("prefs.ini"), QSettings::IniFormat};
    StoryNavigator navigator{store.get()};
    std::unique_ptr<ReelsHubModel> hub;
    std::unique_ptr<QQuickView> view;

    void SetUp() override
    {
        VideosFixture::SetUp();
        deleteAllStories();
        // Players that draw into the screens' video items.
        store->setPlayerFactory([] { return new MpvPlayer(); });
        hub = std::make_unique<ReelsHubModel>(store.get(), &settings, &navigator);
        static bool registered = false;
        if (!registered) {
            registered = true;
            QQuickWindow::setGraphicsApi(withOpenGL() ? QSGRendererInterface::OpenGL : QSGRendererInterface::Software);
            registerReviewTypes();
            registerStoriesTypes();
            qmlRegisterType<AuthedImageItem>("Aeroloom.Services", 1, 0, "AuthedImageItem");
        }
        qmlRegisterSingletonInstance("Aeroloom.Services", 1, 0, "Theme", &theme);
    }
    void TearDown() override
    {
        view.reset();
        hub.reset();
        VideosFixture::TearDown();
    }

    void show()
    {
        view = std::make_unique<QQuickView>();
        view->rootContext()->setContextProperty("storiesHub", hub.get());
        view->rootContext()->setContextProperty("storyNavigator", &navigator);
        view->rootContext()->setContextProperty("apiClient", client.get());
        view->rootContext()->setContextProperty("imageCache", &images);
        view->rootContext()->setContextProperty("desktopStandIn", &desktop);
        ASSERT_EQ(QuickShots::load(*view, dir, R"(import QtQuick
import Aeroloom.Services
import "qrc:/aeroloom/stories"
StoriesSection {
    width: 1180; height: 760
    hub: storiesHub
    navigator: storyNavigator
    thumbnail: Component { AuthedImageItem { client: apiClient; cache: imageCache } }
    renderSheet: Component { RenderPreviewView { store: storiesHub.store; desktop: desktopStandIn } }
    historySection: Component {
        RenderHistorySection {
            store: storiesHub.store
            desktop: desktopStandIn
            thumbnail: Component { AuthedImageItem { client: apiClient; cache: imageCache } }
        }
    }
    videoSheet: Component { RenderPlayerView { store: storiesHub.store } }
    shareSheet: Component { ShareReelSheet { store: storiesHub.store; desktop: desktopStandIn } }
}
)"), "");
        view->show();
        ASSERT_TRUE(waitUntil([&] { return hub->state() == "list" && !store->loading(); }, 10000));
    }

    QQuickItem *find(const QString &name) const
    {
        QQuickItem *found = QuickShots::findItem(view->contentItem(), name);
        return found && found->isVisible() ? found : nullptr;
    }
    template <typename T>
    T *object(const char *name) const
    {
        return view->rootObject()->findChild<T *>(name);
    }
    bool showing(const char *name) const
    {
        auto *popup = view->rootObject()->findChild<QObject *>(name);
        return popup && popup->property("visible").toBool();
    }
    static void press(QQuickItem *button) { QMetaObject::invokeMethod(button, "clicked"); }
    void openStory(const std::string &story)
    {
        navigator.openStory(QString::fromStdString(story));
        ASSERT_TRUE(waitUntil([&] { return find("item-1") != nullptr; }, 10000));
    }
    /// Whether the video item named `name` shows a picture (not the black before the first frame).
    bool videoShows(const QString &name)
    {
        return waitUntil([&] {
            QQuickItem *video = find(name);
            if (!video || video->width() < 10)
                return false;
            const QImage picture = view->grabWindow();
            const QPointF centre = video->mapToScene(QPointF(video->width() / 2, video->height() / 2));
            return picture.pixelColor(centre.toPoint()).lightness() > 30;
        }, 20000);
    }
    void shootBoth(const QString &name)
    {
        const QString suffix = withOpenGL() ? "-gl" : "";
        for (const auto pref : {ThemeManager::ThemePref::cockpit, ThemeManager::ThemePref::field}) {
            themes.setPref(pref);
            QuickShots::save(*view, name + (pref == ThemeManager::ThemePref::cockpit ? "-dark" : "-light") + suffix);
        }
    }
};

TEST_F(VideosView, MakingAVideoShowsItsProgressThenPlaysIt)
{
    const std::string story = storyOfTwo("Ridge and lagoon");
    show();
    openStory(story);
    // A job already under way when the screen opens.
    proxy->answer("GET", "/api/projects/" + story + "/render", 200, json{{"status", "running"}, {"progress", 0.42}}.dump());
    press(find("createVideoButton"));
    RenderPreviewModel *model = nullptr;
    ASSERT_TRUE(waitUntil([&] { return (model = object<RenderPreviewModel>("renderPreviewModel")) != nullptr; }));
    model->setPollInterval(50ms);
    ASSERT_TRUE(waitUntil([&] { return find("progressText") && model->barText() == "Creating… 42%"; }, 10000));
    ASSERT_TRUE(waitUntil([&] { return model->trackChoices().size() > 2; }, 20000));  // the library's music
    EXPECT_FALSE(find("createButton")->isEnabled());
    EXPECT_EQ(find("createButton")->property("text").toString(), "⌛ Creating");
    // The bar's fill springs to the job's share of the bar.
    ASSERT_TRUE(waitUntil([&] { return std::abs(find("progressFill")->property("share").toDouble() - 0.42) < 0.01; }, 5000));
    shootBoth("stories-render-running");

    // The job finishes: "Created." and the video, playing silently.
    proxy->forget("GET", "/api/projects/" + story + "/render");
    renderOnServer(story, {{"track", "none"}, {"hud", true}, {"xfade", 0.2}, {"beatSync", "bar"}});
    ASSERT_TRUE(waitUntil([&] { return model->progressDone() && model->playback(); }, 10000));
    VideoPlayer *player = model->playback()->player();
    ASSERT_TRUE(waitUntil([&] { return player->isPlaying() && player->currentTime() > 0.6; }, 20000));
    EXPECT_TRUE(player->isMuted());
    EXPECT_EQ(find("progressText")->property("text").toString(), "Created.");
    ASSERT_TRUE(videoShows("renderVideo"));
    player->pause();
    shootBoth("stories-render-done");

    // The settings of a vertical video say what it costs and where the overlay goes.
    model->setAspect("vertical");
    model->setHud(true);
    // The note wraps to several lines; the overlay switch moves down below it, not under it.
    ASSERT_TRUE(waitUntil([&] {
        QQuickItem *note = find("verticalNote");
        return note && note->height() > 40 &&
               find("hudSwitch")->mapToScene({0, 0}).y() >= note->mapToScene({0, note->height()}).y();
    }));
    EXPECT_EQ(find("hudCaption")->property("text").toString(), "widescreen-only — pick Both to keep it");
    shootBoth("stories-render-vertical");

    // Closing the sheet stops the player and reloads the story's videos.
    QPointer<VideoPlayer> gone(player);
    press(find("renderDone"));
    ASSERT_TRUE(waitUntil([&] {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return gone.isNull() && find("video-0") != nullptr;
    }));
    EXPECT_EQ(find("videosCount")->property("text").toString(), "1 on server");
}

TEST_F(VideosView, AStorysVideosPlayAndShare)
{
    const std::string story = storyOfTwo("Ridge and lagoon");
    const json wide = renderOnServer(story, {{"track", "none"}, {"hud", true}, {"xfade", 0.2}, {"beatSync", "beat"}});
    const json tall = renderOnServer(story, {{"track", "none"}, {"hud", false}, {"xfade", 0.2}, {"aspect", "vertical"}});
    shareOnServer(story, wide["id"]);
    show();
    openStory(story);
    ASSERT_TRUE(waitUntil([&] { return find("video-1") != nullptr; }, 10000));
    ASSERT_TRUE(waitUntil([&] { return images.size() >= 4; }, 10000));  // two clips, two posters
    EXPECT_EQ(find("videosCount")->property("text").toString(), "2 on server");
    shootBoth("stories-videos");

    // The newest, vertical video plays in its own shape.
    QMetaObject::invokeMethod(find("video-0"), "play");
    ASSERT_TRUE(waitUntil([&] { return showing("videoPlayerSheet"); }));
    ASSERT_TRUE(videoShows("playerVideo"));
    QQuickItem *video = find("playerVideo");
    EXPECT_NEAR(video->width() / video->height(), 9.0 / 16, 0.01);
    shootBoth("stories-video-player");
    QMetaObject::invokeMethod(object<QObject>("videoPlayerSheet"), "close");
    ASSERT_TRUE(waitUntil([&] { return !showing("videoPlayerSheet"); }));

    // The older one has a link: the sheet shows it, and the library's words come when asked.
    press(QuickShots::findItem(find("video-1"), "linkVideo"));
    ShareSheetModel *share = nullptr;
    ASSERT_TRUE(waitUntil([&] { return (share = object<ShareSheetModel>("shareSheetModel")) && share->state() == "shown"; }));
    EXPECT_EQ(proxy->count("POST", "/api/projects/" + story + "/shares"), 0);
    ASSERT_TRUE(waitUntil([&] { return share->aiAvailable(); }));
    run(share->askForSuggestion());
    press(find("copyLink"));
    EXPECT_EQ(desktop.copied, QStringList{share->url()});
    shootBoth("stories-share");

    share->askRevoke();
    ASSERT_TRUE(waitUntil([&] { return showing("revokeQuestion"); }));
    shootBoth("stories-share-revoke");
    press(find("confirmRevoke"));
    ASSERT_TRUE(waitUntil([&] { return !showing("videoShareSheet"); }));
    EXPECT_FALSE(QuickShots::findItem(find("video-1"), "linkVideo")->property("checked").toBool());

    // Delete asks, then the video goes from the server and the list.
    press(QuickShots::findItem(find("video-0"), "deleteVideo"));
    ASSERT_TRUE(waitUntil([&] { return showing("deleteVideoSheet"); }));
    shootBoth("stories-video-delete");
    press(find("confirmDeleteVideo"));
    ASSERT_TRUE(waitUntil([&] { return find("video-1") == nullptr && find("video-0") != nullptr; }));
    EXPECT_EQ(server->client()->Get(("/" + tall["url"].get<std::string>()).c_str())->status, 404);
}

TEST_F(VideosView, TheHubPlaysAndSharesAStorysLatestVideo)
{
    const std::string story = storyOfTwo("From the hub");
    renderOnServer(story);
    show();
    ASSERT_TRUE(waitUntil([&] { return find(QString::fromStdString("story-" + story)) != nullptr && !store->renders().isEmpty(); }));
    QQuickItem *row = find(QString::fromStdString("story-" + story));
    QMetaObject::invokeMethod(row, "playRequested");
    ASSERT_TRUE(waitUntil([&] { return object<QObject>("renderPlayerModel") != nullptr; }));
    ASSERT_TRUE(videoShows("playerVideo"));
    QMetaObject::invokeMethod(find("playerDone"), "clicked");
    ASSERT_TRUE(waitUntil([&] {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return object<QObject>("renderPlayerModel") == nullptr;
    }));

    // A video without a link: opening the sheet makes one, and the hub learns of it on closing.
    QMetaObject::invokeMethod(row, "shareRequested");
    ShareSheetModel *share = nullptr;
    ASSERT_TRUE(waitUntil([&] { return (share = object<ShareSheetModel>("shareSheetModel")) && share->state() == "shown"; }));
    EXPECT_EQ(share->storyTitle(), "From the hub");
    QMetaObject::invokeMethod(find("shareDone"), "clicked");
    ASSERT_TRUE(waitUntil([&] { return store->isShared(QString::fromStdString(story)); }));
}

} // namespace
