// The settings window as QML draws it, over the real settings models and a library stand-in:
// what it fetches and when, and what a pilot who is not signed in can still reach. Pictures of
// it go to <build>/screenshots in both palettes.
#include "AccountSettingsModel.h"
#include "AppEvents.h"
#include "AppModel.h"
#include "CoroTest.h"
#include "LoginViewModel.h"
#include "MemoryCredentialStore.h"
#include "PlaybackQuality.h"
#include "Preferences.h"
#include "QuickShots.h"
#include "RecordingServer.h"
#include "StorageSettingsModel.h"
#include "TestPaths.h"
#include "Theme.h"
#include "ThemeManager.h"
#include "UnitsPref.h"

#include <QDir>
#include <QQmlApplicationEngine>
#include <QQmlContext>
#include <QQuickItem>
#include <QQuickStyle>
#include <QQuickView>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

const char *uri = "Aeroloom.Services";

QUrl qmlFile(const QString &name)
{
    return QUrl::fromLocalFile(TestPaths::sourceDir() + "/src/ui/qml/" + name);
}

/// Drawn the way the program draws: software scene graph, the Basic controls it styles.
void useTheProgramsLook()
{
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QQuickStyle::setStyle(QStringLiteral("Basic"));
}

void shoot(QQuickWindow *window, const QString &name)
{
    waitUntil([] { return false; }, 100);  // let the layout and the tab switch settle
    QuickShots::save(*window, name);
}

/// A library that answers the Account tab's three calls.
void serveAccount(RecordingServer &server)
{
    server.setHandler([](const RecordingServer::Request &r) {
        RecordingServer::Reply reply;
        reply.headers.insert("Connection", "close");
        if (r.target == "/api/me")
            reply.body = R"({"id":1,"email":"pilot@example.org","admin":false})";
        else if (r.target == "/api/flights")
            reply.body = R"({"ids":["A","B","C"],"quota":50000000000,"used":12300000000})";
        else if (r.target == "/api/samples")
            reply.body = R"({"count":3,"bytes":84000000,"restorable":0})";
        return reply;
    });
}

struct Services {
    QTemporaryDir dir;
    Preferences prefs{dir.filePath("settings.ini")};
    MemoryCredentialStore credentials;
    AppModel app{prefs, credentials, QProcessEnvironment()};
    ThemeManager themes{prefs};
    Theme theme{themes};
    UnitsPref units{prefs};
    PlaybackQuality playback{prefs};
    AppEvents events;
    AccountSettingsModel account{app, &events};
    StorageSettingsModel storage{prefs, dir.filePath("Pending")};

    Services()
    {
        qmlRegisterSingletonInstance(uri, 1, 0, "App", &app);
        qmlRegisterSingletonInstance(uri, 1, 0, "Prefs", &prefs);
        qmlRegisterSingletonInstance(uri, 1, 0, "Themes", &themes);
        qmlRegisterSingletonInstance(uri, 1, 0, "Theme", &theme);
        qmlRegisterSingletonInstance(uri, 1, 0, "Units", &units);
        qmlRegisterSingletonInstance(uri, 1, 0, "Playback", &playback);
        qmlRegisterSingletonInstance(uri, 1, 0, "AccountSettings", &account);
        qmlRegisterSingletonInstance(uri, 1, 0, "StorageSettings", &storage);
    }
};

} // namespace

TEST(SettingsWindow, LoadsWhenShownAndKeepsItsTabsWhileSignedOut)
{
    useTheProgramsLook();
    RecordingServer library;
    serveAccount(library);
    Services s;
    s.prefs.setValue("base", library.base());
    QSignalSpy refreshed(&s.app, &AppModel::accountRefreshed);
    run(s.app.start());
    ASSERT_TRUE(refreshed.wait(5000));
    const int atStart = library.count();

    QQmlApplicationEngine engine;
    engine.load(qmlFile("SettingsWindow.qml"));
    ASSERT_EQ(engine.rootObjects().size(), 1);
    auto *window = qobject_cast<QQuickWindow *>(engine.rootObjects().first());
    ASSERT_TRUE(window);
    QQuickItem *root = window->contentItem();
    waitUntil([] { return false; }, 300);
    EXPECT_EQ(library.count(), atStart) << "nothing is fetched before the window is shown";

    window->show();
    auto *signedInAs = QuickShots::findItem(root, "signedInAs");
    ASSERT_TRUE(signedInAs);
    ASSERT_TRUE(waitUntil([&] { return s.account.samplesCount() == 3; }));
    EXPECT_EQ(signedInAs->property("text").toString(), "pilot@example.org");
    s.themes.setPref(ThemeManager::ThemePref::cockpit);
    shoot(window, "settings-account-cockpit");

    // Signed out: every tab stays; the account rows say "—" and what needs a session stands aside.
    s.app.signOut();
    auto *tabs = QuickShots::findItem(root, "settingsTabs");
    ASSERT_TRUE(tabs);
    EXPECT_TRUE(tabs->isVisible());
    EXPECT_EQ(tabs->property("count").toInt(), 4);
    EXPECT_EQ(signedInAs->property("text").toString(), "—");
    EXPECT_TRUE(signedInAs->isVisible());
    for (const char *name : {"signOut", "testConnection", "openAccountOnWeb"}) {
        auto *item = QuickShots::findItem(root, name);
        ASSERT_TRUE(item) << name;
        EXPECT_FALSE(item->isVisible()) << name;
    }
    shoot(window, "settings-signedout-cockpit");
    s.themes.setPref(ThemeManager::ThemePref::field);
    shoot(window, "settings-signedout-field");

    // The Import tab works without a session: the contact address for place names is stored.
    tabs->setProperty("currentIndex", 1);
    auto *contact = QuickShots::findItem(root, "geocodeContact");
    ASSERT_TRUE(contact);
    ASSERT_TRUE(waitUntil([&] { return contact->isVisible(); }));
    contact->setProperty("text", "  pilot@example.org ");
    QMetaObject::invokeMethod(contact, "editingFinished");
    EXPECT_EQ(s.prefs.stringValue("ingest.geocodeContact"), "pilot@example.org");
    shoot(window, "settings-import-signedout-field");
    s.themes.setPref(ThemeManager::ThemePref::cockpit);
    shoot(window, "settings-import-signedout-cockpit");

    // Signing in while the window is open fills the rows for the new session.
    s.app.signIn(library.base(), QString(), QString());
    ASSERT_TRUE(waitUntil([&] { return s.account.samplesCount() == 3; }));
    EXPECT_EQ(signedInAs->property("text").toString(), "pilot@example.org");

    // Out of view, a new session fetches nothing but the account of the sign-in itself.
    window->hide();
    s.app.signOut();
    const int beforeSignIn = library.count();
    s.app.signIn(library.base(), QString(), QString());
    waitUntil([] { return false; }, 300);
    EXPECT_EQ(library.count(), beforeSignIn + 1);
    EXPECT_EQ(signedInAs->property("text").toString(), "—");
}

TEST(SignInScreen, TheLinkForPeopleWithoutAnAccountReadsAsWritten)
{
    useTheProgramsLook();
    Services s;
    qmlRegisterType<LoginViewModel>(uri, 1, 0, "LoginViewModel");
    LoginViewModel model;
    model.setBase(QStringLiteral("https://library.example.org"));
    QQuickView view;
    view.rootContext()->setContextProperty("loginModel", &model);
    QTemporaryDir dir;
    const QByteArray qml = QUrl::fromLocalFile(TestPaths::sourceDir() + "/src/ui/qml").toString().toUtf8();
    ASSERT_EQ(QuickShots::load(view, dir, "import QtQuick\nimport \"" + qml + "\"\nLoginLearnMore { width: 420; model: loginModel }\n"), "");
    auto *link = QuickShots::findItem(view.rootObject(), "learnMoreLink");
    ASSERT_TRUE(link);
    EXPECT_TRUE(link->isVisible());
    EXPECT_EQ(link->property("text").toString(), "Visit the website");
}
