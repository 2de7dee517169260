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
    return runChange([](ClipsBrowserStore &store, PoolClip clip) { return store.keep(std::move(clip)); },
                     QStringLiteral("Kept — it's your clip now"), QStringLiteral("Keep failed"));
}

QCoro::Task<> ClipLightboxModel::runToss()
{
    return runChange([](ClipsBrowserStore &store, PoolClip clip) { return store.toss(std::move(clip)); },
                     QStringLiteral("Tossed — won't be suggested again"), QStringLiteral("Toss failed"));
}

QCoro::Task<> ClipLightboxModel::runSaveTrim()
{
    const auto draft = m_strip->draft();
    if (!draft || !m_clip)
        co_return;
    const QString succeeded = ClipPool::isSuggestion(*m_clip) ? QStringLiteral("Trimmed — it's your clip now")
                                                                : QStringLiteral("Trimmed");
    // On failure the draft stays for another try.
    co_await runChange(
        [draft](ClipsBrowserStore &store, PoolClip clip) { return store.retrim(std::move(clip), draft->start, draft->end); },
        succeeded, QStringLiteral("Trim failed"));
}

QCoro::Task<> ClipLightboxModel::runChange(Change change, QString succeeded, QString failed)
{
    QPointer<ClipLightboxModel> self(this);
    if (m_busy || !m_clip || !m_browser)
        co_return;
    // The clip in hand now: the pilot may move on while the server answers.
    const PoolClip clip = *m_clip;
    ClipsBrowserStore *store = m_browser->store();
    setBusy(true);
    const bool done = co_await change(*store, clip);
    if (!self)
        co_return;
    store->showToast(done ? succeeded : failed);
    if (done)
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
            // The same clip in the same place: it takes its new marks and bounds (a trim of its
            // end keeps its identity), and the playback goes on.
            m_clip = clips[i];
            m_strip->setClip(m_strip->source(), m_strip->ffmpegHeaders(), m_clip->start, m_clip->end);
            m_engine->setBounds(m_clip->start, m_clip->end);
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
