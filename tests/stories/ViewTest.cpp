// The stories section on screen over a real library: the hub, a story with items, the picker,
// each in both palettes, saved into <build>/screenshots.
#include "AuthedImageItem.h"
#include "ImageCache.h"
#include "MpvPlayer.h"
#include "Preferences.h"
#include "QuickShots.h"
#include "ReelsHubModel.h"
#include "ReviewTypes.h"
#include "StoriesFixture.h"
#include "StoriesTypes.h"
#include "StoryNavigator.h"
#include "Theme.h"
#include "ThemeManager.h"

#include <QDir>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QSettings>
#include <QTemporaryDir>
#include <QThread>

namespace {

class StoriesView : public StoriesFixture
{
protected:
    QTemporaryDir dir;
    Preferences prefs{dir.filePath("prefs.ini")};
    ThemeManager themes{prefs};
    Theme theme{themes};
    ImageCache images;
    QSettings settings{dir.filePath("prefs.ini"), QSettings::IniFormat};
    StoryNavigator navigator{store.get()};
    std::unique_ptr<ReelsHubModel> hub;
    std::unique_ptr<QQuickView> view;
    std::string full, draft, single;

    void SetUp() override
    {
        StoriesFixture::SetUp();
        deleteAllStories();
        full = makeStory("Ridge and lagoon", nlohmann::json::array({
            item("20240512_093000_0001", "c1", 0.5, 2.0, "Lagoon reveal"),
            item("20240601_184512_0002", "c3", 1.0, 2.5, "Ridge climb"),
            item("20240601_184512_0002", "c4", 4.0, 5.5, "Sunset orbit")}));
        draft = makeStory("Cedar Ridge at dusk, with a title long enough to need cutting short on a narrow window");
        single = makeStory("Lagoon morning", nlohmann::json::array({item("20240512_093000_0001", "c2", 3.0, 4.5, "Low pass")}));
        // Videos and links aren't served by the library yet: the proxy answers for it.
        proxy->answer("GET", "/api/renders", 200, nlohmann::json{{"renders", {{{"id", "r1"}, {"projectId", full}}}}}.dump());
        proxy->answer("GET", "/api/shares", 200, nlohmann::json{{"shares", {
            {{"token", "t"}, {"url", "u"}, {"projectId", full}, {"renderId", "r1"}, {"views", 0}, {"hearts", 0}}}}}.dump());

        store->setPlayerFactory([] { return new MpvPlayer(); });
        hub = std::make_unique<ReelsHubModel>(store.get(), &settings, &navigator);
        static bool registered = false;
        if (!registered) {
            registered = true;
            QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
            registerReviewTypes();
            registerStoriesTypes();
            qmlRegisterType<AuthedImageItem>("Aeroloom.Services", 1, 0, "AuthedImageItem");
        }
        qmlRegisterSingletonInstance("Aeroloom.Services", 1, 0, "Theme", &theme);

        view = std::make_unique<QQuickView>();
        view->rootContext()->setContextProperty("storiesHub", hub.get());
        view->rootContext()->setContextProperty("storyNavigator", &navigator);
        view->rootContext()->setContextProperty("apiClient", client.get());
        view->rootContext()->setContextProperty("imageCache", &images);
        ASSERT_EQ(QuickShots::load(*view, dir, R"(import QtQuick
import Aeroloom.Services
import "qrc:/aeroloom/stories"
StoriesSection {
    width: 1100; height: 720
    hub: storiesHub
    navigator: storyNavigator
    thumbnail: Component { AuthedImageItem { client: apiClient; cache: imageCache } }
    // Stands in for the clip screens' trim model (not in this build): what it was opened with.
    trimModel: QtObject {
        objectName: "trimStandIn"
        property bool isOpen: false
        property var opened: []
        signal changed(string key, real start, real end)
        function open(key, flightId, p480, label, subtitle, originalIn, originalOut) {
            opened = [key, flightId, p480, label, subtitle, originalIn, originalOut]
            isOpen = true
        }
        function close() { isOpen = false }
    }
    trimSheet: Component { Item { objectName: "trimSheetShown" } }
}
)"), "");
        view->show();
        ASSERT_TRUE(waitUntil([&] { return hub->state() == "list" && !store->loading(); }, 10000));
    }
    void TearDown() override
    {
        view.reset();
        hub.reset();
        StoriesFixture::TearDown();
    }

    static QQuickItem *findItem(QQuickItem *from, const QString &name)
    {
        if (from->objectName() == name && from->isVisible())
            return from;
        for (QQuickItem *child : from->childItems())
            if (QQuickItem *found = findItem(child, name))
                return found;
        return nullptr;
    }
    QQuickItem *find(const QString &name) const
    {
        // Sheets live in the window's overlay, not under the root item.
        return findItem(view->contentItem(), name);
    }
    /// Whether the popup of that name is on screen (popups aren't items).
    bool showing(const char *name) const
    {
        auto *popup = view->rootObject()->findChild<QObject *>(name);
        return popup && popup->property("visible").toBool();
    }
    QQuickItem *find(const std::string &prefix, const std::string &id) const { return find(QString::fromStdString(prefix + id)); }
    static void press(QQuickItem *button) { QMetaObject::invokeMethod(button, "clicked"); }
    void shootBoth(const QString &name)
    {
        for (const auto pref : {ThemeManager::ThemePref::cockpit, ThemeManager::ThemePref::field}) {
            themes.setPref(pref);
            QuickShots::save(*view, name + (pref == ThemeManager::ThemePref::cockpit ? "-dark" : "-light"));
        }
    }
};

TEST_F(StoriesView, HubListsFiltersAndAsksBeforeDeleting)
{
    for (const std::string &id : {full, draft, single})
        ASSERT_TRUE(waitUntil([&] { return find("story-", id) != nullptr; })) << id;
    ASSERT_TRUE(waitUntil([&] { return images.size() >= 1; }, 10000));  // both covers are of one flight
    EXPECT_EQ(find("hubHeader")->property("text").toString(), "3 stories · 1 completed");
    shootBoth("stories-hub");

    hub->setFilter("drafts");
    ASSERT_TRUE(waitUntil([&] { return find("story-", draft) && !find("story-", full); }));
    hub->setFilter("unshared");
    ASSERT_TRUE(waitUntil([&] { return find("hubFiltered") != nullptr; }));
    hub->setFilter("all");

    // Delete asks with the story's name, then the row goes.
    QQuickItem *row = find("story-", single);
    ASSERT_TRUE(row);
    QMetaObject::invokeMethod(row, "deleteRequested");
    ASSERT_TRUE(waitUntil([&] { return showing("deleteStorySheet"); }));
    auto *dialog = view->rootObject()->findChild<QObject *>("deleteStorySheet");
    EXPECT_EQ(dialog->property("title").toString(), "Delete story “Lagoon morning”?");
    QQuickItem *confirm = nullptr;
    ASSERT_TRUE(waitUntil([&] { return (confirm = find("confirmDelete")) != nullptr; }));
    shootBoth("stories-hub-delete");
    press(confirm);
    ASSERT_TRUE(waitUntil([&] { return !find("story-", single) && !showing("deleteStorySheet"); }));
    EXPECT_EQ(store->toast(), "Story deleted");
    EXPECT_EQ(server->client()->Get(("/api/projects/" + single).c_str())->status, 404);
}

TEST_F(StoriesView, AStoryShowsItsItemsTakesClipsAndLetsThemGo)
{
    navigator.openStory(QString::fromStdString(full));
    ASSERT_TRUE(waitUntil([&] { return find("item-2") != nullptr; }, 10000));
    EXPECT_EQ(find("storyTitle")->property("text").toString(), "Ridge and lagoon");
    ASSERT_TRUE(waitUntil([&] { return images.size() >= 2; }, 10000));
    shootBoth("stories-story");

    // The picker: add the low pass, and the toast says so above the sheet.
    press(find("addClipsButton"));
    ASSERT_TRUE(waitUntil([&] { return find("clip-3") != nullptr; }));
    shootBoth("stories-add-clips");
    QQuickItem *lowPass = nullptr;
    for (int i = 0; i < 4 && !lowPass; ++i) {
        QQuickItem *row = find(QStringLiteral("clip-%1").arg(i));
        if (row && row->property("label").toString() == "Low pass over the reeds")
            lowPass = row;
    }
    ASSERT_TRUE(lowPass);
    // Its preview loops the clip silently above the list.
    press(findItem(lowPass, "previewClip"));
    auto *picker = view->rootObject()->findChild<QObject *>("addClipsSheet");
    QObject *segment = nullptr;
    ASSERT_TRUE(waitUntil([&] { return (segment = picker->property("segment").value<QObject *>()) != nullptr; }));
    auto *looping = segment->property("player").value<VideoPlayer *>();
    ASSERT_TRUE(waitUntil([&] { return looping->isPlaying() && looping->currentTime() > 3.3; }, 20000));
    EXPECT_TRUE(looping->isMuted());
    shootBoth("stories-add-clips-preview");
    press(findItem(lowPass, "previewClip"));
    EXPECT_EQ(picker->property("segment").value<QObject *>(), nullptr);

    press(findItem(lowPass, "addButton"));
    ASSERT_TRUE(waitUntil([&] { return showing("storyToast") && store->toast() == "Added to story"; }));
    shootBoth("stories-added");
    ASSERT_TRUE(waitUntil([&] { return serverStory(full)["items"].size() == 4; }));

    // ✂ opens the trim sheet on the item's stretch; each handle let go saves the item.
    QMetaObject::invokeMethod(view->rootObject()->findChild<QObject *>("addClipsSheet"), "close");
    ASSERT_TRUE(waitUntil([&] { return find("item-3") != nullptr; }));
    press(findItem(find("item-0"), "trimButton"));
    auto *trim = view->rootObject()->findChild<QObject *>("trimStandIn");
    ASSERT_TRUE(trim->property("isOpen").toBool());
    EXPECT_TRUE(view->rootObject()->findChild<QObject *>("trimSheetShown"));
    const QVariantList opened = trim->property("opened").toList();
    ASSERT_EQ(opened.size(), 7);
    EXPECT_EQ(opened[1].toString(), "20240512_093000_0001");
    EXPECT_EQ(opened[3].toString(), "Lagoon reveal");
    EXPECT_EQ(opened[4].toString(), "Saltmarsh Lagoon · May 12, 2024");
    EXPECT_DOUBLE_EQ(opened[5].toDouble(), 0.5);
    EXPECT_DOUBLE_EQ(opened[6].toDouble(), 2.0);
    QMetaObject::invokeMethod(trim, "changed", Q_ARG(QString, opened[0].toString()), Q_ARG(double, 0.8), Q_ARG(double, 1.9));
    ASSERT_TRUE(waitUntil([&] { return serverStory(full)["items"][0]["in"] == 0.8; }));
    EXPECT_EQ(serverStory(full)["items"][0]["out"], 1.9);
    QMetaObject::invokeMethod(trim, "close");

    // Back in the list: the new item is last; ✕ on the first takes it out, on the server too.
    press(findItem(find("item-0"), "removeButton"));
    ASSERT_TRUE(waitUntil([&] { return find("item-3") == nullptr; }));
    ASSERT_TRUE(waitUntil([&] { return serverStory(full)["items"].size() == 3; }));
    EXPECT_EQ(serverStory(full)["items"][0]["label"], "Ridge climb");

    // Back to the hub, which shows the new count without a reload.
    navigator.closeStory();
    ASSERT_TRUE(waitUntil([&] { return find("story-", full) != nullptr; }));
    EXPECT_EQ(store->summary(QString::fromStdString(full))->count, 3);
}

TEST_F(StoriesView, PreviewPlaysTheStoryInItsShape)
{
    navigator.openStory(QString::fromStdString(full));
    ASSERT_TRUE(waitUntil([&] { return find("item-2") != nullptr; }, 10000));
    press(find("previewButton"));
    auto *sheet = view->rootObject()->findChild<QObject *>("previewSheet");
    ASSERT_TRUE(sheet);
    QObject *sp = nullptr;
    ASSERT_TRUE(waitUntil([&] { return (sp = sheet->property("sp").value<QObject *>()) != nullptr; }));
    auto *player = sp->property("player").value<VideoPlayer *>();
    ASSERT_TRUE(player);
    // Two of its three clips are vertical footage: the preview starts in the vertical look, in
    // that shape from the moment the frame has a size (it doesn't grow out of nothing).
    EXPECT_TRUE(sheet->property("verticalLook").toBool());
    QQuickItem *frame = find("previewFrame");
    ASSERT_TRUE(waitUntil([&] { return frame->height() > 0; }));
    EXPECT_NEAR(frame->width() / frame->height(), 0.5625, 0.01);
    ASSERT_TRUE(waitUntil([&] { return player->isPlaying() && player->currentTime() > 0.8; }, 20000));
    EXPECT_EQ(find("previewPosition")->property("text").toString(), "1 / 3");
    EXPECT_EQ(find("previewLabel")->property("text").toString(), "Lagoon reveal");
    ASSERT_TRUE(waitUntil([&] { return std::abs(frame->width() / frame->height() - 0.5625) < 0.01; }));
    shootBoth("stories-preview-vertical");

    // The look is the frame's alone: the same player, file and clip go on.
    const QUrl file = player->currentUrl();
    const int index = sp->property("index").toInt();
    press(find("verticalButton"));
    ASSERT_TRUE(waitUntil([&] { return std::abs(frame->width() / frame->height() - 16.0 / 9) < 0.01; }, 3000));
    EXPECT_EQ(sp->property("player").value<VideoPlayer *>(), player);
    if (sp->property("index").toInt() == index) {
        EXPECT_EQ(player->currentUrl(), file);
    }
    shootBoth("stories-preview-wide");

    // Closing stops the player; the story goes on to be edited.
    QPointer<QObject> story(sp);
    QMetaObject::invokeMethod(sheet, "close");
    ASSERT_TRUE(waitUntil([&] {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return story.isNull();
    }));
    EXPECT_TRUE(find("item-2") != nullptr);
}

TEST_F(StoriesView, EmptyLibraryAndAStoryThatIsGone)
{
    deleteAllStories();
    hub->refresh();
    ASSERT_TRUE(waitUntil([&] { return find("hubEmpty") != nullptr; }));
    shootBoth("stories-hub-empty");

    navigator.openStory("no-such-story");
    ASSERT_TRUE(waitUntil([&] { return find("storyFailed") != nullptr; }));
    navigator.openStory(QString::fromStdString(makeStory("Fresh")));
    ASSERT_TRUE(waitUntil([&] { return find("storyEmpty") != nullptr; }));
    shootBoth("stories-story-empty");
}

} // namespace
