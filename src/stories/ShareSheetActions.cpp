// The share sheet's calls to the library: making the link, suggestions, saving, revoking.
#include "ShareSheetModel.h"

#include "APIClient.h"
#include "CancelToken.h"
#include "ReelsStore.h"

void ShareSheetModel::appear()
{
    if (m_appeared)
        return;
    m_appeared = true;
    begin();
}

void ShareSheetModel::retry()
{
    createLink();
}

void ShareSheetModel::suggest()
{
    askForSuggestion();
}

void ShareSheetModel::save()
{
    saveEdit();
}

void ShareSheetModel::revoke()
{
    cancelRevoke();
    revokeLink();
}

QCoro::Task<> ShareSheetModel::begin()
{
    QPointer<ShareSheetModel> self(this);
    CancelToken *token = m_cancel;
    const std::shared_ptr<APIClient> client = m_store ? m_store->client() : nullptr;
    std::optional<ReelShare> known = m_existing;
    if (!known && m_store) {
        const auto found = m_store->shares().constFind(m_projectId + QLatin1Char('/') + m_renderId);
        if (found != m_store->shares().constEnd())
            known = *found;
    }
    if (known) {
        setShare(known);
        fillFields();
    } else {
        co_await createLink();
        if (!self)
            co_return;
    }
    if (!client || token->isCancelled())
        co_return;
    // The server says whether it can suggest words; without an answer the button stays away.
    const auto me = co_await client->fetchMe();
    if (!self || token->isCancelled())
        co_return;
    const bool ai = me && me->ai.value_or(false);
    if (ai != m_aiAvailable) {
        m_aiAvailable = ai;
        Q_EMIT aiAvailableChanged();
    }
}

QCoro::Task<> ShareSheetModel::createLink()
{
    QPointer<ShareSheetModel> self(this);
    const std::shared_ptr<APIClient> client = m_store ? m_store->client() : nullptr;
    if (m_share || m_creating)
        co_return;
    if (!client) {
        setFailed(true);
        co_return;
    }
    m_creating = true;
    setFailed(false);
    const auto made = co_await client->createShare(m_projectId, m_renderId);
    if (!self)
        co_return;
    m_creating = false;
    if (!made) {
        setFailed(true);
        co_return;
    }
    setShare(made.value());
    fillFields();
    Q_EMIT linkChanged(QVariant::fromValue(made.value()));
}

QCoro::Task<> ShareSheetModel::askForSuggestion()
{
    QPointer<ShareSheetModel> self(this);
    const std::shared_ptr<APIClient> client = m_store ? m_store->client() : nullptr;
    if (m_suggesting || !client)
        co_return;
    if (!m_suggestions.isEmpty()) {
        takeNextSuggestion();
        co_return;
    }
    setBusy(m_suggesting, true);
    const auto proposed = co_await client->suggestShareCopy(m_projectId);
    if (!self)
        co_return;
    if (!proposed) {
        m_note.show(QStringLiteral("Couldn’t get suggestions — try again"));
    } else {
        // An empty answer leaves the button as it was, so the next press asks again.
        m_suggestions = proposed.value();
        takeNextSuggestion();
    }
    setBusy(m_suggesting, false);
}

QCoro::Task<> ShareSheetModel::saveEdit()
{
    QPointer<ShareSheetModel> self(this);
    const std::shared_ptr<APIClient> client = m_store ? m_store->client() : nullptr;
    if (!m_share || m_savingEdit || !client)
        co_return;
    setBusy(m_savingEdit, true);
    const auto saved = co_await client->updateShare(m_share->token, m_editTitle, m_editDesc);
    if (!self)
        co_return;
    if (saved) {
        setShare(saved.value());
        fillFields();
        Q_EMIT linkChanged(QVariant::fromValue(saved.value()));
        m_note.show(QStringLiteral("Share updated"));
    } else {
        m_note.show(QStringLiteral("Save failed"));
    }
    setBusy(m_savingEdit, false);
}

QCoro::Task<> ShareSheetModel::revokeLink()
{
    QPointer<ShareSheetModel> self(this);
    const std::shared_ptr<APIClient> client = m_store ? m_store->client() : nullptr;
    if (!m_share || !client)
        co_return;
    const auto revoked = co_await client->deleteShare(m_share->token);
    if (!self)
        co_return;
    if (!revoked) {
        m_note.show(QStringLiteral("Revoke failed"));
        co_return;
    }
    Q_EMIT linkChanged(QVariant());
    Q_EMIT closeRequested();
}
