// What the pilot does in the clips section: pick clips, make a story of them, open the lightbox.
#include "ClipsBrowserModel.h"

#include "APIClient.h"

#include <QPointer>

void ClipsBrowserModel::press(const QString &identity)
{
    if (m_selecting) {
        if (!m_picked.remove(identity))
            m_picked.insert(identity);
        Q_EMIT selectionChanged();
        m_rows->refreshCards();
        return;
    }
    if (const int index = m_visibleIndex.value(identity, -1); index >= 0)
        openLightbox(index, false);
}

void ClipsBrowserModel::setSelecting(bool on)
{
    if (on == m_selecting)
        return;
    m_selecting = on;
    m_picked.clear();
    Q_EMIT selectionChanged();
    m_rows->refreshCards();
}

void ClipsBrowserModel::toggleSelecting()
{
    setSelecting(!m_selecting);
}

void ClipsBrowserModel::cancelSelecting()
{
    setSelecting(false);
}

void ClipsBrowserModel::makeStory()
{
    runMakeStory();
}

QCoro::Task<> ClipsBrowserModel::runMakeStory()
{
    QPointer<ClipsBrowserModel> self(this);
    const QList<PoolClip> chosen = picks();
    const std::shared_ptr<APIClient> client = m_store->client();
    if (chosen.isEmpty() || !client || m_makingStory)
        co_return;
    m_makingStory = true;
    Q_EMIT selectionChanged();

    QList<ReelItem> items;
    for (const PoolClip &clip : chosen) {
        ReelItem item;
        item.flightId = clip.flightId;
        item.clipId = clip.clipId;
        item.start = clip.start;
        item.end = clip.end;
        item.label = clip.label;
        items.append(item);
    }
    const auto project = co_await client->createProject(ClipPool::storyTitle(chosen), items);
    if (!self)
        co_return;
    m_makingStory = false;
    if (project) {
        m_selecting = false;
        m_picked.clear();
        m_rows->refreshCards();
        m_store->showToast(QStringLiteral("Story created"));
        Q_EMIT selectionChanged();
        Q_EMIT storyCreated(project->id);
    } else {
        // The picks stay, so the pilot can try again.
        m_store->showToast(QStringLiteral("Couldn't create the story"));
        Q_EMIT selectionChanged();
    }
}

void ClipsBrowserModel::playAllClips()
{
    if (!m_visible.isEmpty())
        openLightbox(0, true);
}

void ClipsBrowserModel::openLightbox(int index, bool playAll)
{
    if (index < 0 || index >= m_visible.size())
        return;
    m_lightboxIndex = index;
    m_playAll = playAll;
    m_lightboxOpen = true;
    Q_EMIT lightboxChanged();
}

void ClipsBrowserModel::setLightboxIndex(int index)
{
    if (index == m_lightboxIndex)
        return;
    m_lightboxIndex = index;
    Q_EMIT lightboxChanged();
}

void ClipsBrowserModel::closeLightbox()
{
    if (!m_lightboxOpen)
        return;
    m_lightboxOpen = false;
    m_playAll = false;
    Q_EMIT lightboxChanged();
}
