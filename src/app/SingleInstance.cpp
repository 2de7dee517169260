#include "SingleInstance.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalServer>
#include <QLocalSocket>
#include <QThread>
#include <QTimer>

namespace {

constexpr qint64 maxMessage = 1 << 20;
const QByteArray accepted = QByteArrayLiteral("ok\n");

QString defaultSocketDir()
{
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return !runtime.isEmpty() && QFileInfo(runtime).isDir() ? runtime : QDir::tempPath();
}

} // namespace

SingleInstance::SingleInstance(QString workRoot, QString socketDir, QObject *parent)
    : QObject(parent)
    , m_workRoot(QDir(workRoot).absolutePath())
{
    // Named after the folder, so two users, or one user with two data folders, never meet.
    const QByteArray key = QCryptographicHash::hash(QDir::cleanPath(m_workRoot).toUtf8(), QCryptographicHash::Sha1);
    m_socketName = QDir(socketDir.isEmpty() ? defaultSocketDir() : socketDir)
                       .filePath(QStringLiteral("aeroloom-%1.sock").arg(QString::fromLatin1(key.toHex().left(16))));
}

SingleInstance::~SingleInstance() = default;

bool SingleInstance::claim(const QList<QUrl> &files, std::chrono::milliseconds patience)
{
    QDir().mkpath(m_workRoot);
    m_lock = std::make_unique<QLockFile>(QDir(m_workRoot).filePath(QStringLiteral("instance.lock")));
    // Only a holder that is gone makes a lock stale; age alone must not, the program runs for days.
    m_lock->setStaleLockTime(0);
    if (m_lock->tryLock(0)) {
        listen();
        return true;
    }
    if (m_lock->error() != QLockFile::LockFailedError)
        return true;  // a folder that can't hold a lock at all: run, unguarded, rather than not at all
    m_handedOver = handOver(files, patience);
    return false;
}

void SingleInstance::listen()
{
    // The lock is ours, so a socket left at this name belongs to a program that crashed.
    QLocalServer::removeServer(m_socketName);
    m_server = new QLocalServer(this);
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    if (!m_server->listen(m_socketName)) {
        delete m_server;
        m_server = nullptr;
        return;
    }
    connect(m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket *socket = m_server->nextPendingConnection())
            receive(socket);
    });
}

void SingleInstance::receive(QLocalSocket *socket)
{
    connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    // A launch that connects and then says nothing is dropped rather than held.
    QTimer::singleShot(std::chrono::seconds(10), socket, [socket] { socket->abort(); });
    connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
        if (!socket->canReadLine()) {
            if (socket->bytesAvailable() > maxMessage)
                socket->abort();
            return;
        }
        const QJsonDocument message = QJsonDocument::fromJson(socket->readLine(maxMessage));
        QList<QUrl> files;
        for (const QJsonValue &file : message.object().value(QStringLiteral("files")).toArray()) {
            const QUrl url(file.toString());
            if (url.isLocalFile())
                files.append(url);
        }
        socket->write(accepted);
        socket->disconnectFromServer();
        Q_EMIT launched(files);
    });
}

bool SingleInstance::handOver(const QList<QUrl> &files, std::chrono::milliseconds patience)
{
    QJsonArray list;
    for (const QUrl &file : files)
        list.append(file.toString(QUrl::FullyEncoded));
    const QByteArray message = QJsonDocument(QJsonObject{{QStringLiteral("files"), list}}).toJson(QJsonDocument::Compact) + '\n';

    QDeadlineTimer deadline(patience);
    QLocalSocket socket;
    // The running program may hold the lock a moment before it listens: try until it does.
    for (;;) {
        socket.connectToServer(m_socketName);
        if (socket.waitForConnected(int(std::max<qint64>(1, deadline.remainingTime()))))
            break;
        if (deadline.hasExpired())
            return false;
        QThread::msleep(50);
    }
    socket.write(message);
    if (!socket.waitForBytesWritten(int(std::max<qint64>(1, deadline.remainingTime()))))
        return false;
    QByteArray answer;
    while (!answer.endsWith('\n') && socket.waitForReadyRead(int(std::max<qint64>(1, deadline.remainingTime()))))
        answer += socket.readAll();
    return answer == accepted;
}
