#include "ReelsStore.h"

#include "APIClient.h"

#include <QPointer>

ReelsStore::ReelsStore(std::shared_ptr<APIClient> client, QObject *parent)
    : QObject(parent), m_client(std::move(client))
{
    connect(&m_toast, &Toast::textChanged, this, &ReelsStore::toastChanged);
}

ReelsStore::~ReelsStore() = default;

void ReelsStore::setClient(std::shared_ptr<APIClient> client)
{
    if (client == m_client)
        return;
    m_client = std::move(client);
    setSummaries({});
    m_pool.clear();
    m_renders.clear();
    m_shares.clear();
    Q_EMIT clientChanged();
    Q_EMIT poolChanged();
    Q_EMIT rendersChanged();
    Q_EMIT sharesChanged();
}

QObject *ReelsStore::clientObject() const
{
    return m_client.get();
}

std::optional<ProjectSummary> ReelsStore::summary(const QString &id) const
{
    for (const ProjectSummary &s : m_summaries)
        if (s.id == id)
            return s;
    return std::nullopt;
}

QList<RenderEntry> ReelsStore::videosOf(const QString &projectId) const
{
    QList<RenderEntry> found;
    for (const RenderEntry &r : m_renders)
        if (r.projectId && *r.projectId == projectId)
            found.append(r);
    return found;
}

bool ReelsStore::isShared(const QString &projectId) const
{
    for (const RenderEntry &r : m_renders)
        if (r.projectId && *r.projectId == projectId && m_shares.contains(projectId + QLatin1Char('/') + r.id))
            return true;
    return false;
}

void ReelsStore::load()
{
    reload();
}

void ReelsStore::refreshRenders()
{
    reloadRenders();
}

void ReelsStore::refreshShares()
{
    reloadShares();
}

void ReelsStore::showToast(const QString &text)
{
    m_toast.show(text);
}

void ReelsStore::setLoading(bool loading, bool failed)
{
    if (loading == m_loading && failed == m_loadFailed)
        return;
    m_loading = loading;
    m_loadFailed = failed;
    Q_EMIT loadingChanged();
}

void ReelsStore::setSummaries(QList<ProjectSummary> summaries)
{
    if (summaries == m_summaries)
        return;
    m_summaries = std::move(summaries);
    Q_EMIT summariesChanged();
}

QCoro::Task<> ReelsStore::reload()
{
    QPointer<ReelsStore> self(this);
    const std::shared_ptr<APIClient> client = m_client;
    setLoading(true, false);
    if (!client) {
        setLoading(false, true);
        co_return;
    }
    // Both requests leave now; the list is awaited first, whichever answers first.
    auto listCall = client->fetchProjects();
    auto poolCall = client->fetchPoolClips();
    bool failed = false;
    auto list = co_await std::move(listCall);
    if (!self)
        co_return;
    if (list)
        setSummaries(list.value());
    else
        failed = true;
    auto pool = co_await std::move(poolCall);
    if (!self)
        co_return;
    if (pool) {
        m_pool = pool.value();
        Q_EMIT poolChanged();
    } else {
        failed = true;
    }
    if (failed)
        setLoading(true, true);
    co_await reloadRenders();
    if (!self)
        co_return;
    setLoading(false, failed);
}

QCoro::Task<> ReelsStore::reloadRenders()
{
    QPointer<ReelsStore> self(this);
    const std::shared_ptr<APIClient> client = m_client;
    if (!client)
        co_return;
    auto renders = co_await client->fetchAllRenders();
    if (!self)
        co_return;
    if (renders) {
        m_renders = renders.value();
        Q_EMIT rendersChanged();
    }
    co_await reloadShares();
}

QCoro::Task<> ReelsStore::reloadShares()
{
    QPointer<ReelsStore> self(this);
    const std::shared_ptr<APIClient> client = m_client;
    if (!client)
        co_return;
    auto shares = co_await client->fetchShares();
    if (!self || !shares)
        co_return;
    QHash<QString, ReelShare> byVideo;
    for (const ReelShare &share : shares.value())
        byVideo.insert(share.projectId + QLatin1Char('/') + share.renderId, share);
    m_shares = std::move(byVideo);
    Q_EMIT sharesChanged();
}

void ReelsStore::touchSummary(const QString &id, const QString &title, int count)
{
    for (ProjectSummary &s : m_summaries) {
        if (s.id != id)
            continue;
        if (s.title == title && s.count == count)
            return;
        s.title = title;
        s.count = count;
        Q_EMIT summariesChanged();
        return;
    }
}
