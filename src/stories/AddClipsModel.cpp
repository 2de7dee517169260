#include "AddClipsModel.h"

#include "APIClient.h"
#include "ClipPreview.h"
#include "ReelMatch.h"
#include "ReelModel.h"
#include "ReelsStore.h"
#include "SegmentPlayer.h"
#include "VideoPlayer.h"

AddClipsModel::AddClipsModel(QObject *parent) : QAbstractListModel(parent) {}

QObject *AddClipsModel::reelObject() const
{
    return m_reel.data();
}

void AddClipsModel::setReelObject(QObject *reel)
{
    setReel(qobject_cast<ReelModel *>(reel));
}

void AddClipsModel::setReel(ReelModel *reel)
{
    if (reel == m_reel)
        return;
    for (const auto &c : std::as_const(m_connections))
        disconnect(c);
    m_connections.clear();
    m_reel = reel;
    if (reel) {
        m_connections.append(connect(reel, &ReelModel::itemsChanged, this, &AddClipsModel::recompute));
        if (ReelsStore *store = reel->store())
            m_connections.append(connect(store, &ReelsStore::poolChanged, this, &AddClipsModel::recompute));
    }
    Q_EMIT reelChanged();
    recompute();
}

void AddClipsModel::setSearch(const QString &search)
{
    if (search == m_search)
        return;
    m_search = search;
    Q_EMIT searchChanged();
    recompute();
}

void AddClipsModel::setHideAdded(bool hide)
{
    if (hide == m_hideAdded)
        return;
    m_hideAdded = hide;
    Q_EMIT hideAddedChanged();
    recompute();
}

const QList<PoolClip> &AddClipsModel::pool() const
{
    static const QList<PoolClip> none;
    return m_reel && m_reel->store() ? m_reel->store()->pool() : none;
}

bool AddClipsModel::poolEmpty() const
{
    return pool().isEmpty();
}

QList<int> AddClipsModel::visible(const QList<PoolClip> &pool, const QList<ReelItem> &items, const QString &search,
                                  bool hideAdded)
{
    const QString query = search.toLower().trimmed();
    QList<int> rows;
    for (int i = 0; i < pool.size(); ++i) {
        const PoolClip &clip = pool[i];
        if (hideAdded && ReelMatch::count(clip, items) != 0)
            continue;
        if (!query.isEmpty()) {
            const QString text = clip.label + QLatin1Char(' ') + clip.place.value_or(QString()) + QLatin1Char(' ')
                + ClipPreview::dateText(clip);
            if (!text.toLower().contains(query))
                continue;
        }
        rows.append(i);
    }
    return rows;
}

void AddClipsModel::recompute()
{
    const QList<ReelItem> none;
    QList<int> rows = visible(pool(), m_reel ? m_reel->project().items : none, m_search, m_hideAdded);
    if (rows == m_visible) {
        // Same clips: only their "in story" counts can have moved.
        if (!m_visible.isEmpty())
            Q_EMIT dataChanged(index(0), index(int(m_visible.size()) - 1), {InStoryRole, InStoryTextRole});
        return;
    }
    beginResetModel();
    m_visible = std::move(rows);
    endResetModel();
    Q_EMIT countChanged();
}

const PoolClip *AddClipsModel::clipAt(int row) const
{
    if (row < 0 || row >= m_visible.size() || m_visible[row] >= pool().size())
        return nullptr;
    return &pool()[m_visible[row]];
}

int AddClipsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_visible.size());
}

QVariant AddClipsModel::data(const QModelIndex &index, int role) const
{
    const PoolClip *clip = index.isValid() ? clipAt(index.row()) : nullptr;
    if (!clip)
        return {};
    const int inStory = m_reel ? m_reel->count(*clip) : 0;
    switch (role) {
    case LabelRole:
        return clip->label.isEmpty() ? QStringLiteral("Untitled clip") : clip->label;
    case SubtitleRole:
        return ClipPreview::subtitleOf(*clip);
    case ThumbRole: {
        const auto client = m_reel && m_reel->store() ? m_reel->store()->client() : nullptr;
        return client ? client->poolClipThumbURL(*clip) : QUrl();
    }
    case InStoryRole:
        return inStory;
    case InStoryTextRole:
        return inStory ? QStringLiteral("%1 in story").arg(inStory) : QString();
    default:
        return {};
    }
}

QHash<int, QByteArray> AddClipsModel::roleNames() const
{
    return {{LabelRole, "label"}, {SubtitleRole, "subtitle"}, {ThumbRole, "thumbUrl"}, {InStoryRole, "inStory"},
            {InStoryTextRole, "inStoryText"}};
}

void AddClipsModel::add(int row)
{
    const PoolClip *clip = clipAt(row);
    if (!clip || !m_reel)
        return;
    const PoolClip taken = *clip;  // the add recomputes the rows under this pointer
    m_reel->add(taken);
    if (ReelsStore *store = m_reel->store())
        store->showToast(QStringLiteral("Added to story"));
}

QObject *AddClipsModel::startPreview(int row)
{
    const PoolClip *clip = clipAt(row);
    ReelsStore *store = m_reel ? m_reel->store() : nullptr;
    const auto client = store ? store->client() : nullptr;
    VideoPlayer *player = clip && client ? store->makePlayer() : nullptr;
    if (!player)
        return nullptr;
    const QUrl url = client->proxyURL(clip->flightId, clip->p480.value_or(false), store->hqPlayback());
    auto *segment = new SegmentPlayer(player, url, client->mediaHeaders(), clip->start, clip->end, this);
    player->setParent(segment);
    segment->begin();
    return segment;
}
