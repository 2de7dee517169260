#include "ReelDetailModel.h"

#include "APIClient.h"
#include "CancelToken.h"
#include "ReelModel.h"
#include "ReelsStore.h"

#include <utility>

ReelDetailModel::ReelDetailModel(QObject *parent) : QObject(parent) {}

ReelDetailModel::~ReelDetailModel()
{
    // A fetch still running finds this object gone when it resumes; its token goes with it.
    dropReel();
}

QObject *ReelDetailModel::storeObject() const
{
    return m_store.data();
}

void ReelDetailModel::setStoreObject(QObject *store)
{
    setStore(qobject_cast<ReelsStore *>(store));
}

void ReelDetailModel::setStore(ReelsStore *store)
{
    if (store == m_store)
        return;
    m_store = store;
    Q_EMIT storeChanged();
}

void ReelDetailModel::setStoryId(const QString &id)
{
    if (id == m_storyId)
        return;
    m_storyId = id;
    Q_EMIT storyIdChanged();
}

void ReelDetailModel::load()
{
    fetch();
}

void ReelDetailModel::dropReel()
{
    if (!m_reel)
        return;
    // The screen is done with it; a save it is running still reaches the server.
    m_reel->setParent(nullptr);
    m_reel->retire();
    m_reel = nullptr;
}

QCoro::Task<> ReelDetailModel::fetch()
{
    QPointer<ReelDetailModel> self(this);
    const std::shared_ptr<APIClient> client = m_store ? m_store->client() : nullptr;
    auto *cancel = new CancelToken(this);
    // The older fetch resumes inside this cancel() and must already see that it was replaced.
    if (CancelToken *previous = std::exchange(m_cancel, cancel))
        previous->cancel();
    dropReel();
    m_loading = true;
    m_failed = false;
    Q_EMIT stateChanged();
    if (!client || m_storyId.isEmpty()) {
        m_loading = false;
        m_failed = true;
        Q_EMIT stateChanged();
        co_return;
    }
    auto project = co_await client->fetchProject(m_storyId, cancel);
    if (!self)
        co_return;
    cancel->deleteLater();
    if (cancel != m_cancel)
        co_return;  // a newer fetch took over
    m_cancel = nullptr;
    m_loading = false;
    if (project && m_store)
        m_reel = new ReelModel(project.value(), m_store, this);
    else
        m_failed = true;
    Q_EMIT stateChanged();
}
