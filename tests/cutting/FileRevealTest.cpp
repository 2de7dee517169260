// Revealing a cut clip: the desktop's file manager is asked over D-Bus to show it selected;
// without one, the clip's folder is opened.
#include <FileReveal.h>

#include <CoroTest.h>

#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDesktopServices>
#include <QUrl>

namespace {

/// Stands in for the desktop's file manager on the test's private session bus.
class FakeFileManager : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")
public:
    QStringList shown;
    QString startupId = QStringLiteral("unset");

public Q_SLOTS:
    void ShowItems(const QStringList &uris, const QString &startup)
    {
        shown = uris;
        startupId = startup;
    }
};

/// Receives what would have gone to the desktop's default opener.
class Opener : public QObject
{
    Q_OBJECT
public:
    QList<QUrl> opened;

public Q_SLOTS:
    void open(const QUrl &url) { opened << url; }
};

} // namespace

TEST(FileReveal, TheFileManagerShowsTheItemElseItsFolderOpens)
{
    Opener opener;
    QDesktopServices::setUrlHandler(QStringLiteral("file"), &opener, "open");
    auto restore = qScopeGuard([] { QDesktopServices::unsetUrlHandler(QStringLiteral("file")); });

    QDBusConnection manager = QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("file-manager"));
    // The test script gives every run a private session bus; only a bare run goes without.
    if (qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS")) {
        ASSERT_TRUE(manager.isConnected());
    }
    if (manager.isConnected()) {
        FakeFileManager fake;
        ASSERT_TRUE(manager.registerService(FileReveal::service));
        ASSERT_TRUE(manager.registerObject(FileReveal::path, &fake, QDBusConnection::ExportAllSlots));
        FileReveal::show(QStringLiteral("/tmp/Cuts/ridge run/ridge_story.mp4"));
        ASSERT_TRUE(waitUntil([&] { return !fake.shown.isEmpty(); }));
        EXPECT_EQ(fake.shown, QStringList{QStringLiteral("file:///tmp/Cuts/ridge%20run/ridge_story.mp4")});
        EXPECT_EQ(fake.startupId, QString());
        EXPECT_TRUE(opener.opened.isEmpty());
        manager.unregisterObject(FileReveal::path);
        manager.unregisterService(FileReveal::service);
    }
    QDBusConnection::disconnectFromBus(QStringLiteral("file-manager"));

    // Nobody answers the call: the folder opens.
    FileReveal::show(QStringLiteral("/tmp/Cuts/ridge run/ridge_01.mp4"));
    ASSERT_TRUE(waitUntil([&] { return !opener.opened.isEmpty(); }, 30000));
    EXPECT_EQ(opener.opened, QList<QUrl>{QUrl::fromLocalFile(QStringLiteral("/tmp/Cuts/ridge run"))});
}

#include "FileRevealTest.moc"
