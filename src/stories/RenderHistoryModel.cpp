#include "RenderHistoryModel.h"

#include "APIClient.h"
#include "CancelToken.h"
#include "ReelsStore.h"
#include "RenderTags.h"

#include <QTimer>

#include <algorithm>

RenderHistoryModel::RenderHistoryModel(QObject *parent) : QAbstractListModel(parent), m_cancel(new CancelToken) {}

RenderHistoryModel::~RenderHistoryModel()
{
    // Cancelled from the event loop: a request aborted here would resume its task while this
    // object is still half alive.
    CancelToken *token = m_cancel;
    QTimer::singleShot(0, token, [token] {
        token->cancel();
        token->deleteLater();
    });
}

QObject *RenderHistoryModel::storeObject() const
{
    return m_store.data();
}

void RenderHistoryModel::setStoreObject(QObject *store)
{
    setStore(qobject_cast<ReelsStore *>(store));
}

void RenderHistoryModel::setStore(ReelsStore *store)
{
    if (store == m_store)
        return;
    m_store = store;
    Q_EMIT givenChanged();
}

void RenderHistoryModel::setStoryId(const QString &id)
{
    if (id == m_storyId)
        return;
    m_storyId = id;
    Q_EMIT givenChanged();
}

void RenderHistoryModel::setRefreshKey(int key)
{
    if (key == m_refreshKey)
        return;
    m_refreshKey = key;
    Q_EMIT refreshKeyChanged();
    load();
}

QString RenderHistoryModel::countText() const
{
    return QStringLiteral("%1 on server").arg(m_renders.size());
}

QList<RenderEntry> RenderHistoryModel::newestFirst(QList<RenderEntry> renders)
{
    std::stable_sort(renders.begin(), renders.end(), [](const RenderEntry &a, const RenderEntry &b) {
        return a.rendered.value_or(QString()) > b.rendered.value_or(QString());
    });
    return renders;
}

int RenderHistoryModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_renders.size());
}

QVariant RenderHistoryModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_renders.size())
        return {};
    const RenderEntry &entry = m_renders[index.row()];
    switch (role) {
    case RenderIdRole:
        return entry.id;
    case DateRole:
        return RenderTags::dateText(entry.rendered);
    case TagsRole:
        return RenderTags::tags(RenderTags::of(entry));
    case MusicRole:
        return RenderTags::music(entry.settings);
    case VerticalRole:
        return RenderTags::isVertical(entry.aspect);
    case SharedRole:
        return m_shares.contains(entry.id);
    case PosterRole: {
        const std::shared_ptr<APIClient> client = m_store ? m_store->client() : nullptr;
        const QString url = entry.url.value_or(QString());
        // The library keeps a still beside each video file.
        if (!client || !url.endsWith(QLatin1String(".mp4")))
            return QUrl();
        return client->url(url.chopped(4) + QStringLiteral(".jpg"));
    }
    default:
        return {};
    }
}

QHash<int, QByteArray> RenderHistoryModel::roleNames() const
{
    return {{RenderIdRole, "renderId"}, {DateRole, "dateText"},   {TagsRole, "tags"},          {MusicRole, "musicText"},
            {VerticalRole, "vertical"}, {SharedRole, "shared"}, {PosterRole, "posterUrl"}};
}

QVariant RenderHistoryModel::entryAt(int row) const
{
    if (row < 0 || row >= m_renders.size())
        return {};
    return QVariant::fromValue(m_renders[row]);
}

QVariant RenderHistoryModel::shareFor(const QString &renderId) const
{
    const auto found = m_shares.constFind(renderId);
    return found == m_shares.constEnd() ? QVariant() : QVariant::fromValue(*found);
}

void RenderHistoryModel::setShare(const QString &renderId, const QVariant &share)
{
    if (share.metaType() == QMetaType::fromType<ReelShare>())
        m_shares.insert(renderId, share.value<ReelShare>());
    else
        m_shares.remove(renderId);
    if (const int row = rowOf(renderId); row >= 0)
        Q_EMIT dataChanged(index(row), index(row), {SharedRole});
}

int RenderHistoryModel::rowOf(const QString &renderId) const
{
    for (int i = 0; i < m_renders.size(); ++i)
        if (m_renders[i].id == renderId)
            return i;
    return -1;
}

void RenderHistoryModel::setRenders(QList<RenderEntry> renders)
{
    const bool countChanges = renders.size() != m_renders.size();
    beginResetModel();
    m_renders = std::move(renders);
    endResetModel();
    if (countChanges)
        Q_EMIT countChanged();
}

void RenderHistoryModel::load()
{
    fetch();
}

void RenderHistoryModel::remove(int row)
{
    if (row >= 0 && row < m_renders.size())
        deleteVideo(m_renders[row].id);
}

void RenderHistoryModel::download(int row)
{
    if (row >= 0 && row < m_renders.size())
        saveVideo(m_renders[row].id);
}

void RenderHistoryModel::shareDismissed()
{
    if (m_sharedFile.isEmpty())
        return;
    m_sharedFile.clear();
    Q_EMIT sharedFileChanged();
}

QCoro::Task<> RenderHistoryModel::fetch()
{
    QPointer<RenderHistoryModel> self(this);
    CancelToken *token = m_cancel;
    const std::shared_ptr<APIClient> client = m_store ? m_store->client() : nullptr;
    if (!client || m_storyId.isEmpty())
        co_return;
    const QString storyId = m_storyId;
    const auto renders = co_await client->fetchRenders(storyId, token);
    if (!self || token->isCancelled())
        co_return;
    if (renders)
        setRenders(newestFirst(renders.value()));
    const auto shares = co_await client->fetchShares(token);
    if (!self || token->isCancelled() || !shares)
        co_return;
    QHash<QString, ReelShare> mine;
    for (const ReelShare &share : shares.value())
        if (share.projectId == storyId)
            mine.insert(share.renderId, share);
    m_shares = std::move(mine);
    if (!m_renders.isEmpty())
        Q_EMIT dataChanged(index(0), index(int(m_renders.size()) - 1), {SharedRole});
}

QCoro::Task<> RenderHistoryModel::deleteVideo(QString renderId)
{
    QPointer<RenderHistoryModel> self(this);
    const std::shared_ptr<APIClient> client = m_store ? m_store->client() : nullptr;
    if (!client)
        co_return;
    const auto deleted = co_await client->deleteRender(m_storyId, renderId);
    // A failed delete leaves the list as it is: the video is still there.
    if (self && deleted)
        co_await fetch();
}

QCoro::Task<> RenderHistoryModel::saveVideo(QString renderId)
{
    QPointer<RenderHistoryModel> self(this);
    CancelToken *token = m_cancel;
    const std::shared_ptr<APIClient> client = m_store ? m_store->client() : nullptr;
    const int row = rowOf(renderId);
    if (!client || row < 0 || !m_renders[row].url)
        co_return;
    const auto saved =
        co_await client->downloadToTemporary(*m_renders[row].url, m_storyId + QLatin1Char('_') + renderId + QStringLiteral(".mp4"), token);
    if (!self || token->isCancelled())
        co_return;
    if (saved) {
        m_sharedFile = saved.value();
        Q_EMIT sharedFileChanged();
    } else if (m_store) {
        m_store->showToast(QStringLiteral("Download failed."));
    }
}
