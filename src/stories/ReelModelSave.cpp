// The save loop of an open story, and how the model outlives its screen while it saves.
#include "ReelModel.h"

#include "APIClient.h"
#include "ReelsStore.h"

void ReelModel::save()
{
    if (m_store)
        m_store->touchSummary(m_project.id, m_project.title, int(m_project.items.size()));
    saveLoop();
}

QCoro::Task<> ReelModel::saveLoop()
{
    if (m_saving) {
        // The running loop picks this edit up when its request is back.
        m_resaveQueued = true;
        co_return;
    }
    const std::shared_ptr<APIClient> client = m_client;
    if (!client)
        co_return;
    QPointer<ReelModel> self(this);
    setSaving(true);
    do {
        // The flag is cleared before the snapshot: an edit landing after this sets it again.
        m_resaveQueued = false;
        const Project snapshot = m_project;
        auto saved = co_await client->saveProject(snapshot);
        if (!self)
            co_return;
        if (!saved) {
            // No retry: the next edit sends the whole story again. What was queued stays queued.
            if (m_store)
                m_store->showToast(QStringLiteral("Save failed — is serve.py running?"));
            break;
        }
    } while (m_resaveQueued);
    setSaving(false);
    if (m_retired)
        deleteLater();
}

void ReelModel::setSaving(bool saving)
{
    if (saving == m_saving)
        return;
    m_saving = saving;
    Q_EMIT savingChanged();
}

void ReelModel::retire()
{
    m_retired = true;
    if (!m_saving)
        deleteLater();
}
