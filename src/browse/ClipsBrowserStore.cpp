#include "ClipsBrowserStore.h"

#include "APIClient.h"
#include "ClipPool.h"
#include "Toast.h"

#include <QPointer>

ClipsBrowserStore::ClipsBrowserStore(std::shared_ptr<APIClient> client, QObject *parent,
                                     std::chrono::milliseconds toastStand)
    : QObject(parent), m_client(std::move(client)), m_toast(new Toast(toastStand, this))
{
    connect(m_toast, &Toast::textChanged, this, &ClipsBrowserStore::toastChanged);
}

ClipsBrowserStore::~ClipsBrowserStore() = default;

void ClipsBrowserStore::setClient(std::shared_ptr<APIClient> client)
{
    if (client == m_client)
        return;
    // Telemetry belongs to the old library; the list stays until the next load replaces it.
    m_client = std::move(client);
    m_tracks.clear();
    m_trackFetched.clear();
}

QString ClipsBrowserStore::toast() const
{
    return m_toast->text();
}

void ClipsBrowserStore::showToast(const QString &text)
{
    m_toast->show(text);
}

void ClipsBrowserStore::load()
{
    // Two loads may overlap; the later reply simply wins.
    reload();
}

QCoro::Task<> ClipsBrowserStore::reload()
{
    QPointer<ClipsBrowserStore> self(this);
    const std::shared_ptr<APIClient> client = m_client;
    m_loading = true;
    m_loadFailed = false;
    Q_EMIT loadingChanged();
    if (!client) {
        m_loading = false;
        m_loadFailed = true;
        Q_EMIT loadingChanged();
        co_return;
    }

    auto reply = co_await client->fetchPoolClips();
    if (!self)
        co_return;
    if (reply) {
        m_all = ClipPool::sorted(std::move(reply).value());
        Q_EMIT clipsChanged();
    } else {
        m_loadFailed = true;
    }
    m_loading = false;
    Q_EMIT loadingChanged();
}

QCoro::Task<QList<TrackSample>> ClipsBrowserStore::track(QString flightId)
{
    QPointer<ClipsBrowserStore> self(this);
    if (m_trackFetched.contains(flightId))
        co_return QList<TrackSample>(m_tracks.value(flightId));
    m_trackFetched.insert(flightId);
    const std::shared_ptr<APIClient> client = m_client;
    if (!client)
        co_return QList<TrackSample>();

    auto reply = co_await client->fetchTrack(flightId);
    QList<TrackSample> samples = reply ? std::move(reply).value() : QList<TrackSample>();
    if (self && client == m_client)
        m_tracks.insert(flightId, samples);
    co_return samples;
}

qsizetype ClipsBrowserStore::indexOf(const QString &identity) const
{
    for (qsizetype i = 0; i < m_all.size(); ++i)
        if (m_all[i].identity() == identity)
            return i;
    return -1;
}

QCoro::Task<bool> ClipsBrowserStore::keep(PoolClip clip)
{
    QPointer<ClipsBrowserStore> self(this);
    const std::shared_ptr<APIClient> client = m_client;
    if (!client)
        co_return false;
    const bool kept = co_await client->keepClip(clip);
    if (!self || !kept)
        co_return kept;
    if (const auto at = indexOf(clip.identity()); at >= 0) {
        m_all[at].autoSuggested = false;
        Q_EMIT clipsChanged();
    }
    co_return true;
}

QCoro::Task<bool> ClipsBrowserStore::toss(PoolClip clip)
{
    QPointer<ClipsBrowserStore> self(this);
    const std::shared_ptr<APIClient> client = m_client;
    if (!client)
        co_return false;
    const bool tossed = co_await client->tossClip(clip);
    if (!self || !tossed)
        co_return tossed;
    const QString identity = clip.identity();
    if (m_all.removeIf([&](const PoolClip &c) { return c.identity() == identity; }) > 0)
        Q_EMIT clipsChanged();
    co_return true;
}

QCoro::Task<bool> ClipsBrowserStore::retrim(PoolClip clip, double start, double end)
{
    QPointer<ClipsBrowserStore> self(this);
    const std::shared_ptr<APIClient> client = m_client;
    if (!client)
        co_return false;
    const double in = ClipPool::hundredths(start);
    const double out = ClipPool::hundredths(end);
    const bool trimmed = co_await client->retrimClip(clip, in, out);
    if (!self || !trimmed)
        co_return trimmed;
    if (const auto at = indexOf(clip.identity()); at >= 0) {
        m_all[at] = ClipPool::retrimmed(m_all[at], in, out);
        Q_EMIT clipsChanged();
    }
    co_return true;
}
