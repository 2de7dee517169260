#include "RenderPlayerModel.h"

#include "APIClient.h"
#include "CancelToken.h"
#include "ReelsStore.h"
#include "RenderPlayback.h"
#include "RenderTags.h"

#include <QTimer>

RenderPlayerModel::RenderPlayerModel(QObject *parent) : QObject(parent), m_cancel(new CancelToken) {}

RenderPlayerModel::~RenderPlayerModel()
{
    // Cancelled from the event loop, so an aborted lookup resumes after this object is gone.
    CancelToken *token = m_cancel;
    QTimer::singleShot(0, token, [token] {
        token->cancel();
        token->deleteLater();
    });
}

QObject *RenderPlayerModel::storeObject() const
{
    return m_store.data();
}

void RenderPlayerModel::setStoreObject(QObject *store)
{
    setStore(qobject_cast<ReelsStore *>(store));
}

void RenderPlayerModel::setStore(ReelsStore *store)
{
    if (store == m_store)
        return;
    m_store = store;
    Q_EMIT givenChanged();
}

void RenderPlayerModel::setStoryId(const QString &id)
{
    if (id == m_storyId)
        return;
    m_storyId = id;
    Q_EMIT givenChanged();
}

void RenderPlayerModel::setRenderId(const QString &id)
{
    if (id == m_renderId)
        return;
    m_renderId = id;
    Q_EMIT givenChanged();
}

QString RenderPlayerModel::storyTitle() const
{
    if (!m_storyTitle.isEmpty())
        return m_storyTitle;
    if (m_entry && m_entry->projectTitle)
        return *m_entry->projectTitle;
    const auto summary = m_store ? m_store->summary(m_storyId) : std::nullopt;
    return summary ? summary->title : QString();
}

void RenderPlayerModel::setStoryTitle(const QString &title)
{
    if (title == m_storyTitle)
        return;
    m_storyTitle = title;
    Q_EMIT entryChanged();
}

QVariant RenderPlayerModel::entryValue() const
{
    return m_entry ? QVariant::fromValue(*m_entry) : QVariant();
}

void RenderPlayerModel::setEntryValue(const QVariant &entry)
{
    std::optional<RenderEntry> given;
    if (entry.metaType() == QMetaType::fromType<RenderEntry>())
        given = entry.value<RenderEntry>();
    if (given == m_entry)
        return;
    m_entry = std::move(given);
    if (m_entry)
        m_renderId = m_entry->id;
    Q_EMIT entryChanged();
}

bool RenderPlayerModel::vertical() const
{
    return m_entry && RenderTags::isVertical(m_entry->aspect);
}

QStringList RenderPlayerModel::tags() const
{
    return m_entry ? RenderTags::tags(RenderTags::of(*m_entry)) : QStringList();
}

QString RenderPlayerModel::musicText() const
{
    return m_entry ? RenderTags::music(m_entry->settings) : QString();
}

QString RenderPlayerModel::dateText() const
{
    return m_entry ? RenderTags::dateText(m_entry->rendered) : QString();
}

void RenderPlayerModel::appear()
{
    if (m_appeared)
        return;
    m_appeared = true;
    open();
}

QCoro::Task<> RenderPlayerModel::open()
{
    QPointer<RenderPlayerModel> self(this);
    CancelToken *token = m_cancel;
    const std::shared_ptr<APIClient> client = m_store ? m_store->client() : nullptr;
    if (!client)
        co_return;
    if (!m_entry) {
        for (const RenderEntry &known : m_store->videosOf(m_storyId))
            if (known.id == m_renderId)
                m_entry = known;
    }
    if (!m_entry) {
        // Not among the videos the hub knows: the story's own list is newer.
        const auto listed = co_await client->fetchRenders(m_storyId, token);
        if (!self || token->isCancelled())
            co_return;
        if (listed)
            for (const RenderEntry &found : listed.value())
                if (found.id == m_renderId)
                    m_entry = found;
    }
    m_missing = !m_entry || !m_entry->url;
    if (!m_missing)
        play();
    Q_EMIT entryChanged();
}

void RenderPlayerModel::play()
{
    const std::shared_ptr<APIClient> client = m_store->client();
    if (!m_playback) {
        VideoPlayer *player = m_store->makePlayer();
        if (!player)
            return;
        m_playback = new RenderPlayback(player, this);
    }
    m_playback->load(RenderPlayback::stampedUrl(*client, *m_entry->url, m_entry->rendered.value_or(QString())),
                     client->mediaHeaders());
    m_playback->togglePlay();
}
