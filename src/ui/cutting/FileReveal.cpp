#include "FileReveal.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

namespace FileReveal {

namespace {
void openFolder(const QString &item)
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(item).absolutePath()));
}
} // namespace

void show(const QString &item)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        openFolder(item);
        return;
    }
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, service, QStringLiteral("ShowItems"));
    call << QStringList{QUrl::fromLocalFile(QFileInfo(item).absoluteFilePath()).toString(QUrl::FullyEncoded)} << QString();
    // Asynchronous: a file manager that has to start first must not freeze the window.
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), nullptr);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, [item](QDBusPendingCallWatcher *w) {
        if (w->isError())
            openFolder(item);
        w->deleteLater();
    });
}

} // namespace FileReveal
