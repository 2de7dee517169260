#include "ImportWindowModel.h"

#include "CardScanner.h"
#include "ImportSummary.h"
#include "IngestQueue.h"
#include "MountWatcher.h"
#include "ToolLocator.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtConcurrent/QtConcurrentRun>

#include <QCoroFuture>

ImportWindowModel::ImportWindowModel(IngestQueue *queue, MountWatcher *mounts, QObject *parent)
    : QObject(parent)
    , m_queue(queue)
{
    if (mounts)
        connect(mounts, &MountWatcher::mountsChanged, this, &ImportWindowModel::refreshVolumes);
    for (auto signal : {&IngestQueue::runningChanged, &IngestQueue::countsChanged})
        connect(queue, signal, this, &ImportWindowModel::stateChanged);
}

QVariantList ImportWindowModel::cardVolumesList() const
{
    QVariantList out;
    for (const auto &v : m_volumes)
        out << QVariantMap{{QStringLiteral("root"), v.root}, {QStringLiteral("name"), v.name}};
    return out;
}

ImportWindowModel::State ImportWindowModel::state() const
{
    if (!m_queue || m_queue->rowCount() == 0)
        return m_queue && m_queue->running() ? State::Running : State::Idle;
    if (m_queue->running())
        return State::Running;
    return m_queue->remainingCount() > 0 ? State::Ready : State::Finished;
}

QString ImportWindowModel::readyFooter() const
{
    return ImportSummary::readyFooter(m_queue ? m_queue->remainingCount() : 0);
}

QString ImportWindowModel::finishedSummary() const
{
    if (!m_queue)
        return {};
    return ImportSummary::finished(m_queue->doneCount(), m_queue->skippedCount(), m_queue->failedCount());
}

bool ImportWindowModel::finishedWithFailures() const
{
    return m_queue && m_queue->failedCount() > 0;
}

QString ImportWindowModel::scanPermissionMessage(const QString &volumeName)
{
    return QStringLiteral("Click Open to let Ornivale scan “%1” for flights.").arg(volumeName);
}

void ImportWindowModel::refresh()
{
    refreshVolumes();
    QPointer<ImportWindowModel> self(this);
    QCoro::connect(ToolLocator::preflight(), this, [self](const QStringList &problems) {
        if (self && self->m_toolProblems != problems) {
            self->m_toolProblems = problems;
            Q_EMIT self->toolProblemsChanged();
        }
    });
}

void ImportWindowModel::refreshVolumes()
{
    const auto volumes = CardVolumes::cardVolumes();
    if (volumes == m_volumes)
        return;
    m_volumes = volumes;
    Q_EMIT cardVolumesChanged();
}

bool ImportWindowModel::scanVolume(const QString &root)
{
    const QDir dcim(QDir(root).filePath(QStringLiteral("DCIM")));
    if (!dcim.exists() || !dcim.isReadable())
        return false;
    QCoro::connect(addFolders({dcim.path()}), this, [] {});
    return true;
}

void ImportWindowModel::addUrls(const QList<QUrl> &urls)
{
    QStringList folders, files;
    for (const QUrl &url : urls) {
        const QString path = url.isLocalFile() ? url.toLocalFile() : url.toString();
        (QFileInfo(path).isDir() ? folders : files) << path;
    }
    if (!folders.isEmpty())
        QCoro::connect(addFolders(folders), this, [] {});
    if (!files.isEmpty())
        QCoro::connect(addFiles(files), this, [] {});
}

bool ImportWindowModel::addDroppedMovie(const QString &temporaryFile)
{
    if (!m_queue)
        return false;
    const QDir inbox(m_queue->inboxDir());
    if (!inbox.mkpath(QStringLiteral(".")))
        return false;
    const QString copy = inbox.filePath(QFileInfo(temporaryFile).fileName());
    QFile::remove(copy);  // a later movie of the same name replaces the earlier copy
    if (!QFile::copy(temporaryFile, copy))
        return false;
    addUrls({QUrl::fromLocalFile(copy)});
    return true;
}

void ImportWindowModel::beginScan()
{
    if (m_scans++ == 0)
        Q_EMIT scanningChanged();
}

void ImportWindowModel::endScan()
{
    if (--m_scans == 0)
        Q_EMIT scanningChanged();
}

QCoro::Task<void> ImportWindowModel::addFolders(QStringList folders)
{
    QPointer<ImportWindowModel> self(this);
    beginScan();
    for (const QString &folder : folders) {
        // Walking a card can take a while; it runs off the GUI thread.
        auto walk = QtConcurrent::run([folder] { return CardScanner::scan(folder); });
        const auto found = co_await walk;
        if (!self)
            co_return;
        if (m_queue)
            m_queue->add(found);
    }
    endScan();
}

QCoro::Task<void> ImportWindowModel::addFiles(QStringList files)
{
    QPointer<ImportWindowModel> self(this);
    beginScan();
    const auto found = co_await CardScanner::flights(files);
    if (!self)
        co_return;
    if (m_queue)
        m_queue->add(found);
    endScan();
}
