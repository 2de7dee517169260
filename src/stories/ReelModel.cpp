#include "ReelModel.h"

#include "APIClient.h"
#include "ReelMatch.h"
#include "ReelsStore.h"
#include "StoryPlayer.h"
#include "Units.h"
#include "VideoPlayer.h"

#include <algorithm>

ReelModel::ReelModel(Project project, ReelsStore *store, QObject *parent)
    : QObject(parent), m_project(std::move(project)), m_store(store), m_client(store ? store->client() : nullptr)
{
    ReelItemsModel::Source source;
    source.items = &m_project.items;
    source.pool = [this]() -> const QList<PoolClip> & { return pool(); };
    source.thumbUrl = [client = m_client](const ReelItem &item, const std::optional<PoolClip> &clip) {
        if (!client)
            return QUrl();
        if (clip)
            return client->poolClipThumbURL(*clip);
        return item.flightId ? client->flightThumbURL(*item.flightId) : QUrl();
    };
    m_rows = new ReelItemsModel(std::move(source), this);
    if (store) {
        // The pool is replaced on each load: rows and the vertical look follow it.
        connect(store, &ReelsStore::poolChanged, this, [this] {
            m_rows->changedAll();
            Q_EMIT itemsChanged();
        });
    }
}

ReelModel::~ReelModel() = default;

const QList<PoolClip> &ReelModel::pool() const
{
    static const QList<PoolClip> none;
    return m_store ? m_store->pool() : none;
}

QObject *ReelModel::storeObject() const
{
    return m_store.data();
}

QString ReelModel::totalText() const
{
    return Units::tenthsTime(totalDuration());
}

int ReelModel::rowOf(const QUuid &uid) const
{
    for (int i = 0; i < m_project.items.size(); ++i)
        if (m_project.items[i].uid == uid)
            return i;
    return -1;
}

void ReelModel::add(const PoolClip &clip)
{
    const int row = int(m_project.items.size());
    m_rows->aboutToInsert(row);
    m_project.items.append(ReelMatch::itemOf(clip));
    m_rows->inserted();
    Q_EMIT itemsChanged();
    save();
}

void ReelModel::remove(QList<int> offsets)
{
    std::sort(offsets.begin(), offsets.end(), std::greater<>());
    offsets.erase(std::unique(offsets.begin(), offsets.end()), offsets.end());
    bool removed = false;
    for (const int row : offsets) {
        if (row < 0 || row >= m_project.items.size())
            continue;
        m_rows->aboutToRemove(row, row);
        m_project.items.removeAt(row);
        m_rows->removed();
        removed = true;
    }
    if (!removed)
        return;
    Q_EMIT itemsChanged();
    save();
}

void ReelModel::remove(const QUuid &uid)
{
    const int row = rowOf(uid);
    if (row >= 0)
        remove(QList<int>{row});
}

void ReelModel::move(QList<int> fromOffsets, int toOffset)
{
    const int n = int(m_project.items.size());
    std::sort(fromOffsets.begin(), fromOffsets.end());
    fromOffsets.erase(std::unique(fromOffsets.begin(), fromOffsets.end()), fromOffsets.end());
    fromOffsets.erase(std::remove_if(fromOffsets.begin(), fromOffsets.end(), [n](int i) { return i < 0 || i >= n; }),
                      fromOffsets.end());
    toOffset = std::clamp(toOffset, 0, n);
    if (fromOffsets.isEmpty())
        return;
    if (fromOffsets.size() == 1) {
        const int from = fromOffsets.first();
        // A move onto itself or just after itself leaves the order as it is.
        if (toOffset == from || toOffset == from + 1 || !m_rows->aboutToMove(from, toOffset))
            return;
        m_project.items.move(from, toOffset > from ? toOffset - 1 : toOffset);
        m_rows->moved();
    } else {
        m_rows->reset([&] {
            QList<ReelItem> moving;
            int before = 0;
            for (auto it = fromOffsets.rbegin(); it != fromOffsets.rend(); ++it) {
                moving.prepend(m_project.items.takeAt(*it));
                before += *it < toOffset ? 1 : 0;
            }
            const int at = toOffset - before;
            for (int i = 0; i < moving.size(); ++i)
                m_project.items.insert(at + i, moving[i]);
        });
    }
    Q_EMIT itemsChanged();
    save();
}

void ReelModel::trim(const QUuid &uid, double start, double end)
{
    const int row = rowOf(uid);
    if (row < 0)
        return;
    m_project.items[row].start = start;
    m_project.items[row].end = end;
    m_rows->changed(row);
    Q_EMIT itemsChanged();
    save();
}

void ReelModel::rename(const QString &title)
{
    const QString trimmed = title.trimmed();
    if (trimmed.isEmpty() || trimmed == m_project.title)
        return;
    m_project.title = trimmed;
    Q_EMIT titleChanged();
    save();
    if (m_store)
        m_store->showToast(QStringLiteral("Renamed"));
}

std::optional<PoolClip> ReelModel::poolClip(const ReelItem &item) const
{
    return ReelMatch::poolClip(item, pool());
}

int ReelModel::count(const PoolClip &clip) const
{
    return ReelMatch::count(clip, m_project.items);
}

bool ReelModel::storyVertical() const
{
    return ReelMatch::storyVertical(m_project.items, pool());
}

double ReelModel::totalDuration() const
{
    return ReelMatch::totalDuration(m_project.items);
}

QList<ClipPreview> ReelModel::previewClips() const
{
    QList<ClipPreview> clips;
    for (const ReelItem &item : m_project.items)
        clips.append(ClipPreview::of(item, poolClip(item)));
    return clips;
}

void ReelModel::removeRow(int row)
{
    remove(QList<int>{row});
}

void ReelModel::moveRow(int from, int to)
{
    to = std::clamp(to, 0, int(m_project.items.size()) - 1);
    // In list-move terms a row going down goes before the one after its new place.
    move(QList<int>{from}, to > from ? to + 1 : to);
}

void ReelModel::trimItem(const QString &uid, double start, double end)
{
    trim(QUuid::fromString(uid), start, end);
}

QString ReelModel::uidAt(int row) const
{
    if (row < 0 || row >= m_project.items.size())
        return {};
    return m_project.items[row].uid.toString(QUuid::WithoutBraces);
}

QVariantMap ReelModel::trimTarget(const QString &uid) const
{
    const int row = rowOf(QUuid::fromString(uid));
    if (row < 0)
        return {};
    const ReelItem &item = m_project.items[row];
    const ClipPreview preview = ClipPreview::of(item, poolClip(item));
    return {{QStringLiteral("uid"), uid},
            {QStringLiteral("flightId"), preview.flightId},
            {QStringLiteral("p480"), preview.p480.value_or(false)},
            {QStringLiteral("label"), preview.label.isEmpty() ? QStringLiteral("Untitled clip") : preview.label},
            {QStringLiteral("subtitle"), preview.subtitle},
            {QStringLiteral("originalIn"), item.start},
            {QStringLiteral("originalOut"), item.end}};
}

QObject *ReelModel::startPreview()
{
    VideoPlayer *player = m_store && m_client ? m_store->makePlayer() : nullptr;
    if (!player)
        return nullptr;
    auto *story = new StoryPlayer(player, previewClips(), m_client, m_store->hqPlayback(), this);
    // The player goes with the preview, after it has stopped observing.
    player->setParent(story);
    story->start();
    return story;
}
