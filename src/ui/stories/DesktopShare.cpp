#include "DesktopShare.h"

#include <QClipboard>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusUnixFileDescriptor>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryFile>
#include <QUrlQuery>

#include <fcntl.h>
#include <unistd.h>

namespace {

/// The file as a descriptor the portal can read (it may not see our paths); invalid when the
/// file can't be opened.
QDBusUnixFileDescriptor descriptorOf(const QString &path)
{
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return {};
    QDBusUnixFileDescriptor wrapped(fd);  // keeps a duplicate
    ::close(fd);
    return wrapped;
}

QUrl mailto(const QString &subject, const QString &body)
{
    QUrl url(QStringLiteral("mailto:"));
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("subject"), subject);
    if (!body.isEmpty())
        query.addQueryItem(QStringLiteral("body"), body);
    url.setQuery(query);
    return url;
}

} // namespace

DesktopShare::DesktopShare(QDBusConnection bus, QString portal, QObject *parent)
    : DesktopHandoff(parent)
    , m_bus(std::move(bus))
    , m_portal(std::move(portal))
    , m_videos(QStandardPaths::writableLocation(QStandardPaths::MoviesLocation))
{
    qDBusRegisterMetaType<QList<QDBusUnixFileDescriptor>>();
}

void DesktopShare::copyText(const QString &text)
{
    QClipboard *clipboard = QGuiApplication::clipboard();
    clipboard->clear();
    clipboard->setText(text);
}

void DesktopShare::callPortal(const QString &interface, const QString &method, const QVariantList &args,
                              std::function<void()> fallback)
{
    QDBusMessage call = QDBusMessage::createMethodCall(m_portal, portalPath, interface, method);
    call.setArguments(args);
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher, fallback = std::move(fallback)] {
        watcher->deleteLater();
        if (watcher->isError() && fallback)
            fallback();
    });
}

bool DesktopShare::startMailer(const QStringList &args)
{
    // Not through the process runner: that one waits for its child, and this child may be
    // the mail client itself, which must stay open after this program quits.
    const QString mailer = QStandardPaths::findExecutable(QStringLiteral("xdg-email"));
    return !mailer.isEmpty() && QProcess::startDetached(mailer, args);
}

void DesktopShare::emailLink(const QUrl &link, const QString &subject)
{
    const QString body = link.toString();
    const QVariantMap options{{QStringLiteral("subject"), subject}, {QStringLiteral("body"), body}};
    callPortal(emailInterface, QStringLiteral("ComposeEmail"), {QString(), options}, [subject, body] {
        if (!startMailer({QStringLiteral("--utf8"), QStringLiteral("--subject"), subject, QStringLiteral("--body"), body}))
            QDesktopServices::openUrl(mailto(subject, body));
    });
}

void DesktopShare::openLink(const QUrl &link)
{
    callPortal(openUriInterface, QStringLiteral("OpenURI"), {QString(), link.toString(), QVariantMap()},
               [link] { QDesktopServices::openUrl(link); });
}

void DesktopShare::emailFile(const QString &path, const QString &subject)
{
    const QDBusUnixFileDescriptor fd = descriptorOf(path);
    const auto byMailer = [path, subject] {
        startMailer({QStringLiteral("--utf8"), QStringLiteral("--subject"), subject, QStringLiteral("--attach"), path});
    };
    if (!fd.isValid()) {
        byMailer();
        return;
    }
    QVariantMap options{{QStringLiteral("subject"), subject}};
    options.insert(QStringLiteral("attachment_fds"), QVariant::fromValue(QList<QDBusUnixFileDescriptor>{fd}));
    callPortal(emailInterface, QStringLiteral("ComposeEmail"), {QString(), options}, byMailer);
}

void DesktopShare::showFile(const QString &path)
{
    const auto byFileManager = [this, path] {
        QDBusMessage call = QDBusMessage::createMethodCall(fileManagerService, fileManagerPath, fileManagerService,
                                                           QStringLiteral("ShowItems"));
        call.setArguments({QStringList{QUrl::fromLocalFile(path).toString()}, QString()});
        auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
        connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher, path] {
            watcher->deleteLater();
            if (watcher->isError())
                QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(path).absolutePath()));
        });
    };
    const QDBusUnixFileDescriptor fd = descriptorOf(path);
    if (!fd.isValid()) {
        byFileManager();
        return;
    }
    callPortal(openUriInterface, QStringLiteral("OpenDirectory"), {QString(), QVariant::fromValue(fd), QVariantMap()},
               byFileManager);
}

void DesktopShare::openFile(const QString &path)
{
    const QDBusUnixFileDescriptor fd = descriptorOf(path);
    const auto byDefault = [path] { QDesktopServices::openUrl(QUrl::fromLocalFile(path)); };
    if (!fd.isValid()) {
        byDefault();
        return;
    }
    callPortal(openUriInterface, QStringLiteral("OpenFile"), {QString(), QVariant::fromValue(fd), QVariantMap()}, byDefault);
}

QString DesktopShare::freeName(const QString &folder, const QString &fileName)
{
    const QDir dir(folder);
    const QFileInfo name(fileName);
    const QString base = name.completeBaseName();
    const QString suffix = name.suffix().isEmpty() ? QString() : QLatin1Char('.') + name.suffix();
    QString candidate = fileName;
    for (int n = 2; dir.exists(candidate); ++n)
        candidate = QStringLiteral("%1 (%2)%3").arg(base).arg(n).arg(suffix);
    return dir.filePath(candidate);
}

QString DesktopShare::keepInVideos(const QString &path)
{
    if (m_videos.isEmpty() || !QDir().mkpath(m_videos))
        return {};
    QFile source(path);
    if (!source.open(QIODevice::ReadOnly))
        return {};
    // Copied under a hidden name and renamed once whole: a full disk leaves no half video.
    QTemporaryFile part(QDir(m_videos).filePath(QStringLiteral(".aeroloom-copy-XXXXXX")));
    if (!part.open())
        return {};
    QByteArray chunk;
    while (!(chunk = source.read(1 << 20)).isEmpty())
        if (part.write(chunk) != chunk.size())
            return {};
    if (source.error() != QFile::NoError || !part.flush())
        return {};
    const QString destination = freeName(m_videos, QFileInfo(path).fileName());
    if (!part.rename(destination))
        return {};
    part.setAutoRemove(false);
    showFile(destination);
    return destination;
}
