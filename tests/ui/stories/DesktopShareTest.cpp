// Handing videos and links to the desktop over a private session bus: the portal, and without
// it the mailer and the file manager. The portal, the file manager and xdg-email are the
// desktop's, outside this program: small stand-ins record what reaches them.
#include "CoroTest.h"
#include "DesktopShare.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMetaType>
#include <QDBusUnixFileDescriptor>
#include <QDBusVirtualObject>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>

#include <unistd.h>

namespace {

/// One desktop service on its own bus connection: every call it gets is kept and answered.
class StandIn : public QDBusVirtualObject
{
public:
    struct Call {
        QString interface;
        QString member;
        QList<QVariant> args;
    };

    StandIn(const QString &service, const QString &path, const char *connection)
        : m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, QString::fromLatin1(connection)))
        , m_service(service)
    {
        m_bus.registerVirtualObject(path, this);
        m_bus.registerService(service);
    }
    ~StandIn() override
    {
        m_bus.unregisterService(m_service);
        QDBusConnection::disconnectFromBus(m_bus.name());
    }

    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        Call call{message.interface(), message.member(), message.arguments()};
        // The file a descriptor stands for, read now, while it is open.
        for (const QVariant &arg : call.args)
            if (arg.metaType() == QMetaType::fromType<QDBusUnixFileDescriptor>())
                contents.append(read(arg.value<QDBusUnixFileDescriptor>()));
        calls.append(call);
        connection.send(message.createReply(QVariant::fromValue(QDBusObjectPath("/request/1"))));
        return true;
    }
    static QByteArray read(const QDBusUnixFileDescriptor &fd)
    {
        QFile file;
        if (!file.open(fd.fileDescriptor(), QIODevice::ReadOnly))
            return {};
        return file.readAll();
    }

    QList<Call> calls;
    QList<QByteArray> contents;

private:
    QDBusConnection m_bus;
    QString m_service;
};

/// The `a{sv}` options of a portal call, with the attached files read.
QVariantMap optionsOf(const QVariant &arg, QList<QByteArray> *attached = nullptr)
{
    QVariantMap options = qdbus_cast<QVariantMap>(arg);
    if (attached && options.contains("attachment_fds")) {
        const auto fds = qdbus_cast<QList<QDBusUnixFileDescriptor>>(options["attachment_fds"].value<QDBusArgument>());
        for (const QDBusUnixFileDescriptor &fd : fds)
            attached->append(StandIn::read(fd));
    }
    return options;
}

// The suite's other tests may have started the real portal on the bus they share.
const QString testPortal = QStringLiteral("org.aeroloom.TestPortal");

class Desktop : public ::testing::Test
{
protected:
    QTemporaryDir dir;
    QString video;

    void SetUp() override
    {
        if (!QDBusConnection::sessionBus().isConnected())
            GTEST_SKIP() << "no session bus";
        video = dir.filePath("story_r1.mp4");
        QFile file(video);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("not really a video, but bytes the portal must see");
    }
};

TEST_F(Desktop, ThePortalGetsTheFileItselfAndTheLink)
{
    StandIn portal(testPortal, DesktopShare::portalPath, "portal");
    DesktopShare desktop(QDBusConnection::sessionBus(), testPortal);

    desktop.emailFile(video, "Ridge and lagoon");
    ASSERT_TRUE(waitUntil([&] { return portal.calls.size() == 1; }));
    EXPECT_EQ(portal.calls[0].interface, DesktopShare::emailInterface);
    EXPECT_EQ(portal.calls[0].member, "ComposeEmail");
    QList<QByteArray> attached;
    const QVariantMap mail = optionsOf(portal.calls[0].args.value(1), &attached);
    EXPECT_EQ(mail.value("subject").toString(), "Ridge and lagoon");
    EXPECT_EQ(attached, QList<QByteArray>{"not really a video, but bytes the portal must see"});

    desktop.emailLink(QUrl("http://127.0.0.1:8484/s/abc"), "Ridge and lagoon");
    desktop.openLink(QUrl("http://127.0.0.1:8484/s/abc"));
    desktop.showFile(video);
    ASSERT_TRUE(waitUntil([&] { return portal.calls.size() == 4; }));
    EXPECT_EQ(optionsOf(portal.calls[1].args.value(1)).value("body").toString(), "http://127.0.0.1:8484/s/abc");
    EXPECT_EQ(portal.calls[2].member, "OpenURI");
    EXPECT_EQ(portal.calls[2].args.value(1).toString(), "http://127.0.0.1:8484/s/abc");
    EXPECT_EQ(portal.calls[3].interface, DesktopShare::openUriInterface);
    EXPECT_EQ(portal.calls[3].member, "OpenDirectory");
    ASSERT_EQ(portal.contents.size(), 1);  // the descriptor of the folder's file
    EXPECT_EQ(portal.contents[0], "not really a video, but bytes the portal must see");
}

TEST_F(Desktop, WithoutAPortalTheMailerAndTheFileManagerTakeOver)
{
    // A mailer that writes down how it was called.
    const QString bin = dir.filePath("bin");
    QDir().mkpath(bin);
    const QString log = dir.filePath("mailer.log");
    QFile mailer(bin + "/xdg-email");
    ASSERT_TRUE(mailer.open(QIODevice::WriteOnly));
    mailer.write(QStringLiteral("#!/bin/sh\nfor a in \"$@\"; do printf '%s\\n' \"$a\"; done > '%1'\n").arg(log).toUtf8());
    mailer.close();
    mailer.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", bin.toUtf8() + ":" + path);

    StandIn files(DesktopShare::fileManagerService, DesktopShare::fileManagerPath, "files");
    DesktopShare desktop(QDBusConnection::sessionBus(), testPortal);  // no one answers to that name
    desktop.emailFile(video, "Ridge and lagoon");
    ASSERT_TRUE(waitUntil([&] { return QFile::exists(log) && QFileInfo(log).size() > 0; }, 10000));
    QFile written(log);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(written.readAll()).split('\n', Qt::SkipEmptyParts),
              (QStringList{"--utf8", "--subject", "Ridge and lagoon", "--attach", video}));

    desktop.showFile(video);
    ASSERT_TRUE(waitUntil([&] { return files.calls.size() == 1; }));
    EXPECT_EQ(files.calls[0].member, "ShowItems");
    EXPECT_EQ(files.calls[0].args.value(0).toStringList(), QStringList{QUrl::fromLocalFile(video).toString()});
    qputenv("PATH", path);
}

TEST_F(Desktop, KeepingAVideoNeverOverwritesOne)
{
    StandIn portal(testPortal, DesktopShare::portalPath, "portal");
    DesktopShare desktop(QDBusConnection::sessionBus(), testPortal);
    const QString videos = dir.filePath("Videos");
    desktop.setVideosFolder(videos);
    const QString first = desktop.keepInVideos(video);
    const QString second = desktop.keepInVideos(video);
    EXPECT_EQ(first, videos + "/story_r1.mp4");
    EXPECT_EQ(second, videos + "/story_r1 (2).mp4");
    QFile copy(second);
    ASSERT_TRUE(copy.open(QIODevice::ReadOnly));
    EXPECT_EQ(copy.readAll(), "not really a video, but bytes the portal must see");
    // No half-written file is left under another name.
    EXPECT_EQ(QDir(videos).entryList(QDir::Files | QDir::Hidden).size(), 2);
    // Each kept copy is shown where it now lies.
    ASSERT_TRUE(waitUntil([&] { return portal.calls.size() == 2; }));
    EXPECT_EQ(portal.calls[1].member, "OpenDirectory");

    EXPECT_TRUE(desktop.keepInVideos(dir.filePath("missing.mp4")).isEmpty());
}

TEST_F(Desktop, CopyReplacesTheClipboard)
{
    DesktopShare desktop;
    QGuiApplication::clipboard()->setText("something older");
    desktop.copyText("http://127.0.0.1:8484/s/abc");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "http://127.0.0.1:8484/s/abc");
}

} // namespace
