#include "FileOpenRouter.h"

#include "AppModel.h"

#include <QDir>

void FileOpenRouter::open(const QList<QUrl> &urls)
{
    if (urls.isEmpty())
        return;
    m_pending += urls;
    Q_EMIT pendingChanged();
    check();
}

void FileOpenRouter::openArguments(const QStringList &arguments)
{
    open(urlsOf(arguments));
}

QList<QUrl> FileOpenRouter::urlsOf(const QStringList &arguments)
{
    QList<QUrl> urls;
    for (const QString &arg : arguments) {
        if (arg.isEmpty() || arg.startsWith(QLatin1Char('-')))
            continue;
        const QUrl url(arg);
        urls.append(url.isLocalFile() ? url : QUrl::fromLocalFile(QDir::current().absoluteFilePath(arg)));
    }
    return urls;
}

QList<QUrl> FileOpenRouter::take()
{
    QList<QUrl> taken;
    taken.swap(m_pending);
    if (!taken.isEmpty())
        Q_EMIT pendingChanged();
    return taken;
}

void FileOpenRouter::follow(const AppModel *app)
{
    if (m_app)
        disconnect(m_app, nullptr, this, nullptr);
    m_app = app;
    if (app)
        connect(app, &AppModel::loggedInChanged, this, &FileOpenRouter::check);
    check();
}

void FileOpenRouter::check()
{
    if (m_app && m_app->loggedIn() && hasPending())
        Q_EMIT importWanted();
}
