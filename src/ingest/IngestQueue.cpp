#include "IngestQueue.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUrl>

namespace {

void removeTree(const QString &path)
{
    QDir(path).removeRecursively();  // failures are of no consequence: the folder is scratch
}

} // namespace

IngestQueue::IngestQueue(Services services, QObject *parent)
    : QAbstractListModel(parent)
    , m_services(std::move(services))
    , m_uploader(std::make_unique<FlightUploader>(m_services.client, m_services.retryUnit))
{
    restorePending();
}

IngestQueue::~IngestQueue()
{
    // Running children and transfers end with the queue.
    if (m_worker)
        m_worker->cancel();
    for (const auto &token : std::as_const(m_processTasks))
        if (token)
            token->cancel();
    for (const auto &token : std::as_const(m_uploadTasks))
        if (token)
            token->cancel();
}

void IngestQueue::setClient(std::shared_ptr<const APIClient> client)
{
    m_services.client = std::move(client);
    m_uploader = std::make_unique<FlightUploader>(m_services.client, m_services.retryUnit);
}

QString IngestQueue::pendingDir() const
{
    return QDir(m_services.workRoot).filePath(QStringLiteral("Pending"));
}

QString IngestQueue::inboxDir() const
{
    return QDir(m_services.workRoot).filePath(QStringLiteral("Inbox"));
}

int IngestQueue::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_items.size());
}

QVariant IngestQueue::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_items.size())
        return {};
    const Item &item = m_items.at(index.row());
    switch (role) {
    case IdRole:
        return item.id;
    case FileNameRole:
        return item.source ? QFileInfo(*item.source).fileName() : item.id;
    case DateRole:
        return item.date ? QVariant(*item.date) : QVariant();
    case PhaseTextRole:
    case Qt::DisplayRole:
        return item.phase.text();
    case PhaseRole:
        return int(item.phase.kind);
    case ProgressRole:
        return item.phase.progress ? QVariant(*item.phase.progress) : QVariant();
    case ThumbRole:
        return item.thumb && QFileInfo::exists(*item.thumb) ? QUrl::fromLocalFile(*item.thumb) : QUrl();
    case TerminalRole:
        return item.phase.isTerminal();
    default:
        return {};
    }
}

QHash<int, QByteArray> IngestQueue::roleNames() const
{
    return {{IdRole, "flightId"},       {FileNameRole, "fileName"}, {DateRole, "date"},
            {PhaseTextRole, "phaseText"}, {PhaseRole, "phase"},     {ProgressRole, "progress"},
            {ThumbRole, "thumb"},         {TerminalRole, "terminal"}};
}

const IngestQueue::Item *IngestQueue::item(const QString &id) const
{
    const int i = indexOf(id);
    return i < 0 ? nullptr : &m_items.at(i);
}

int IngestQueue::indexOf(const QString &id) const
{
    for (int i = 0; i < m_items.size(); ++i)
        if (m_items.at(i).id == id)
            return i;
    return -1;
}

void IngestQueue::setPhase(const QString &id, IngestPhase phase)
{
    const int i = indexOf(id);
    if (i < 0 || m_items[i].phase == phase)
        return;
    const bool countsMove = m_items[i].phase.kind != phase.kind;
    m_items[i].phase = std::move(phase);
    Q_EMIT dataChanged(index(i), index(i), {PhaseTextRole, PhaseRole, ProgressRole, TerminalRole, Qt::DisplayRole});
    if (countsMove)
        Q_EMIT countsChanged();
}

void IngestQueue::setThumb(const QString &id, const QString &thumb)
{
    const int i = indexOf(id);
    if (i < 0)
        return;
    m_items[i].thumb = thumb;
    Q_EMIT dataChanged(index(i), index(i), {ThumbRole});
}

void IngestQueue::setRunning(bool running)
{
    if (m_running == running)
        return;
    m_running = running;
    Q_EMIT runningChanged();
}

void IngestQueue::setLastError(const QString &text)
{
    if (m_lastError == text)
        return;
    m_lastError = text;
    Q_EMIT lastErrorChanged();
}

void IngestQueue::setQuota(const FlightUploader::ServerLibrary &library)
{
    m_quota = library;
    Q_EMIT quotaChanged();
}

void IngestQueue::restorePending()
{
    const QDir pending(pendingDir());
    for (const QString &name : pending.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
        const QDir dir(pending.filePath(name));
        if (indexOf(name) >= 0 || !dir.exists(QStringLiteral("flight.json")) || !dir.exists(QStringLiteral("proxy.mp4")))
            continue;
        beginInsertRows({}, int(m_items.size()), int(m_items.size()));
        m_items.append(Item{name, std::nullopt, std::nullopt, std::nullopt, IngestPhase::ready(),
                            dir.filePath(QStringLiteral("thumb.jpg"))});
        endInsertRows();
    }
    Q_EMIT countsChanged();
}

void IngestQueue::add(const QList<FoundFlight> &found)
{
    bool added = false;
    for (const FoundFlight &flight : found) {
        if (indexOf(flight.id) >= 0)
            continue;
        beginInsertRows({}, int(m_items.size()), int(m_items.size()));
        m_items.append(Item{flight.id, flight.url, flight.date, flight.srt, IngestPhase::waiting(), std::nullopt});
        endInsertRows();
        added = true;
    }
    if (added)
        Q_EMIT countsChanged();
}

void IngestQueue::stop()
{
    if (m_worker) {
        m_worker->cancel();
        m_worker.clear();
    }
    for (const auto &token : std::as_const(m_processTasks))
        if (token)
            token->cancel();
    for (const auto &token : std::as_const(m_uploadTasks))
        if (token)
            token->cancel();
    setRunning(false);
    for (const Item &item : std::as_const(m_items)) {
        if (item.phase.isTerminal())
            continue;
        using K = IngestPhase::Kind;
        const K k = item.phase.kind;
        // A complete folder waits for upload; anything less starts over from the clip.
        setPhase(item.id, k == K::Uploading || k == K::Ready || k == K::Committing ? IngestPhase::ready()
                                                                                  : IngestPhase::waiting());
    }
    wake();
}

void IngestQueue::remove(const QString &id)
{
    const int i = indexOf(id);
    if (i < 0)
        return;
    for (auto *tasks : {&m_processTasks, &m_uploadTasks}) {
        if (const auto token = tasks->value(id)) {
            m_removedIds.insert(id);
            token->cancel();  // the task's failure branch forgets the flight
            return;
        }
    }
    if (m_items.at(i).phase.kind != IngestPhase::Kind::Done || !m_services.keepProcessed()) {
        forget(id);
        return;
    }
    takeItem(id);  // done and kept: the folder stays on disk
}

void IngestQueue::forget(const QString &id)
{
    if (const Item *found = item(id); found && isInInbox(found->source))
        QFile::remove(*found->source);
    takeItem(id);
    removeTree(QDir(pendingDir()).filePath(id));
    m_removedIds.remove(id);
}

void IngestQueue::takeItem(const QString &id)
{
    const int i = indexOf(id);
    if (i < 0)
        return;
    beginRemoveRows({}, i, i);
    m_items.removeAt(i);
    endRemoveRows();
    Q_EMIT countsChanged();
}

bool IngestQueue::isInInbox(const std::optional<QString> &source) const
{
    if (!source)
        return false;
    const QString inbox = QDir::cleanPath(inboxDir()) + QLatin1Char('/');
    return QDir::cleanPath(*source).startsWith(inbox);
}

QString IngestQueue::summary() const
{
    const int count = int(m_items.size());
    QStringList parts{QStringLiteral("%1 flight%2").arg(count).arg(count == 1 ? QString() : QStringLiteral("s"))};
    if (const int n = doneCount())
        parts << QStringLiteral("%1 uploaded").arg(n);
    if (const int n = skippedCount())
        parts << QStringLiteral("%1 already there").arg(n);
    if (const int n = failedCount())
        parts << QStringLiteral("%1 failed").arg(n);
    return parts.join(QStringLiteral(" · "));
}

int IngestQueue::doneCount() const
{
    return int(std::count_if(m_items.cbegin(), m_items.cend(), [](const Item &i) { return i.phase.kind == IngestPhase::Kind::Done; }));
}

int IngestQueue::skippedCount() const
{
    return int(std::count_if(m_items.cbegin(), m_items.cend(), [](const Item &i) { return i.phase.kind == IngestPhase::Kind::Skipped; }));
}

int IngestQueue::failedCount() const
{
    return int(std::count_if(m_items.cbegin(), m_items.cend(), [](const Item &i) { return i.phase.kind == IngestPhase::Kind::Failed; }));
}

int IngestQueue::remainingCount() const
{
    return int(std::count_if(m_items.cbegin(), m_items.cend(), [](const Item &i) { return i.phase.isActive(); }));
}

void IngestQueue::wake()
{
    m_work.notifyAll();
}
