// Keep, toss and trim in the lightbox, and where the lightbox goes after them.
#include "ClipLightboxModel.h"

#include "ClipFilmstrip.h"
#include "ClipPool.h"
#include "ClipsBrowserModel.h"

void ClipLightboxModel::keep()
{
    runKeep();
}

void ClipLightboxModel::toss()
{
    runToss();
}

void ClipLightboxModel::saveTrim()
{
    runSaveTrim();
}

QCoro::Task<> ClipLightboxModel::runKeep()
{
    QPointer<ClipLightboxModel> self(this);
    if (m_busy || !m_clip || !m_browser)
        co_return;
    const PoolClip clip = *m_clip;
    ClipsBrowserStore *store = m_browser->store();
    setBusy(true);
    const bool kept = co_await store->keep(clip);
    if (!self)
        co_return;
    store->showToast(kept ? QStringLiteral("Kept — it's your clip now") : QStringLiteral("Keep failed"));
    if (kept)
        settleAfter(clip.identity());
    setBusy(false);
}

QCoro::Task<> ClipLightboxModel::runToss()
{
    QPointer<ClipLightboxModel> self(this);
    if (m_busy || !m_clip || !m_browser)
        co_return;
    const PoolClip clip = *m_clip;
    ClipsBrowserStore *store = m_browser->store();
    setBusy(true);
    const bool tossed = co_await store->toss(clip);
    if (!self)
        co_return;
    store->showToast(tossed ? QStringLiteral("Tossed — won't be suggested again") : QStringLiteral("Toss failed"));
    if (tossed)
        settleAfter(clip.identity());
    setBusy(false);
}

QCoro::Task<> ClipLightboxModel::runSaveTrim()
{
    QPointer<ClipLightboxModel> self(this);
    const auto draft = m_strip->draft();
    if (m_busy || !m_clip || !m_browser || !draft)
        co_return;
    const PoolClip clip = *m_clip;
    ClipsBrowserStore *store = m_browser->store();
    setBusy(true);
    const bool trimmed = co_await store->retrim(clip, draft->start, draft->end);
    if (!self)
        co_return;
    if (trimmed)
        store->showToast(ClipPool::isSuggestion(clip) ? QStringLiteral("Trimmed — it's your clip now")
                                                       : QStringLiteral("Trimmed"));
    else
        store->showToast(QStringLiteral("Trim failed"));  // the draft stays for another try
    if (trimmed)
        settleAfter(clip.identity());
    setBusy(false);
}

void ClipLightboxModel::cancelTrim()
{
    if (!m_clip)
        return;
    m_strip->clearDraft();
    m_engine->setBounds(m_clip->start, m_clip->end);
    m_engine->seekExactly(m_clip->start);
}

void ClipLightboxModel::settleAfter(const QString &identity)
{
    if (!m_browser || !m_open)
        return;
    const QList<PoolClip> &clips = m_browser->visible();
    if (clips.isEmpty()) {
        m_browser->closeLightbox();
        return;
    }
    for (int i = 0; i < clips.size(); ++i) {
        if (clips[i].identity() != identity)
            continue;
        if (i != m_shownIndex) {
            m_browser->setLightboxIndex(i);
        } else {
            // The same clip in the same place: its marks change, the playback goes on.
            m_clip = clips[i];
            Q_EMIT clipChanged();
            Q_EMIT dirtyChanged();
        }
        return;
    }
    const int index = std::min(m_shownIndex, int(clips.size()) - 1);
    if (index != m_browser->lightboxIndex())
        m_browser->setLightboxIndex(index);
    else
        showClip();
}
