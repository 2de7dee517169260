#pragma once

#include <QList>
#include <QLockFile>
#include <QObject>
#include <QString>
#include <QUrl>

#include <chrono>
#include <memory>

class QLocalServer;
class QLocalSocket;

/// @brief One program per work folder: a second launch hands its files to the running one and
/// leaves, so no two import queues ever share a `Pending` folder.
///
/// Who runs is decided by a lock file in the work folder (a crashed holder is recognised by its
/// process id, so its lock doesn't keep every later launch out); the running program listens on a
/// local socket named after that folder, and a second launch sends it the files it was given.
/// A local socket rather than a bus name: it exists on every desktop and on none, it belongs to
/// the folder that must not be shared rather than to a login session, and it needs no bus.
class SingleInstance : public QObject
{
    Q_OBJECT
public:
    /// `workRoot` holds `Pending`; `socketDir` is where the socket goes (the user's runtime
    /// folder by default).
    explicit SingleInstance(QString workRoot, QString socketDir = {}, QObject *parent = nullptr);
    ~SingleInstance() override;

    /// Becomes the running program and true, or hands `files` to the one that runs and false
    /// (the caller then exits). Blocks for at most `patience` while the running program answers.
    /// A folder that can't be locked at all lets this one run alone rather than not at all.
    [[nodiscard]] bool claim(const QList<QUrl> &files, std::chrono::milliseconds patience = std::chrono::seconds(5));

    /// Where the running program listens.
    [[nodiscard]] QString socketName() const { return m_socketName; }
    /// False when the handover failed: another program runs but didn't take the files.
    [[nodiscard]] bool handedOver() const { return m_handedOver; }

Q_SIGNALS:
    /// Another launch was started with these files (maybe none: it only wants to be seen).
    void launched(const QList<QUrl> &files);

private:
    void listen();
    void receive(QLocalSocket *socket);
    [[nodiscard]] bool handOver(const QList<QUrl> &files, std::chrono::milliseconds patience);

    QString m_workRoot;
    QString m_socketName;
    std::unique_ptr<QLockFile> m_lock;
    QLocalServer *m_server = nullptr;
    bool m_handedOver = false;
};
