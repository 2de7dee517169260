#include "StoryPlayer.h"

#include "APIClient.h"
#include "VideoPlayer.h"

#include <cmath>

StoryPlayer::StoryPlayer(VideoPlayer *player, QList<ClipPreview> clips, std::shared_ptr<APIClient> client, bool hq,
                         QObject *parent)
    : QObject(parent), m_player(player), m_clips(std::move(clips)), m_client(std::move(client)), m_hq(hq)
{
}

StoryPlayer::~StoryPlayer()
{
    teardown();
}

QString StoryPlayer::positionText() const
{
    return QStringLiteral("%1 / %2").arg(m_index + 1).arg(m_clips.size());
}

QString StoryPlayer::label() const
{
    if (m_index < 0 || m_index >= m_clips.size() || m_clips[m_index].label.isEmpty())
        return QStringLiteral("Untitled clip");
    return m_clips[m_index].label;
}

QString StoryPlayer::subtitle() const
{
    return m_index >= 0 && m_index < m_clips.size() ? m_clips[m_index].subtitle : QString();
}

void StoryPlayer::start()
{
    if (!m_player)
        return;
    if (!m_observer) {
        // The observer's context is this object: it never fires into a player that is gone.
        m_observer = m_player->addPeriodicTimeObserver(tickSeconds, this, [this](double t) { tick(t); });
    }
    load(0, true);
}

void StoryPlayer::load(int i, bool play)
{
    if (i != m_index) {
        m_index = i;
        Q_EMIT indexChanged();
    }
    if (i < 0 || i >= m_clips.size() || !m_player || !m_client)
        return;
    const ClipPreview &clip = m_clips[i];
    if (m_loadedFlight != clip.flightId) {
        const QUrl url = m_client->proxyURL(clip.flightId, clip.p480.value_or(false), m_hq);
        m_player->replaceItem(url, m_client->mediaHeaders());
        m_loadedFlight = clip.flightId;
        Q_EMIT fileLoaded(clip.flightId);
    }
    seekToStart(play);
}

void StoryPlayer::seekToStart(bool play)
{
    m_seeking = true;
    QPointer<StoryPlayer> self(this);
    m_player->seekExactly(m_clips[m_index].start, [self, play](bool finished) {
        // A seek that a later seek or file replaced leaves the word to that one.
        if (!self || !finished)
            return;
        self->m_seeking = false;
        if (play && self->m_player)
            self->m_player->play();
    });
}

void StoryPlayer::tick(double time)
{
    if (m_seeking || m_index < 0 || m_index >= m_clips.size() || !m_player || std::isnan(time))
        return;
    const ClipPreview &clip = m_clips[m_index];
    if (time < clip.start - earlyMargin) {
        seekToStart(false);
    } else if (time >= clip.end) {
        if (m_index + 1 < m_clips.size()) {
            load(m_index + 1, true);
        } else {
            m_player->pause();
            load(0, false);
        }
    }
}

void StoryPlayer::previous()
{
    if (canGoBack())
        load(m_index - 1, true);
}

void StoryPlayer::next()
{
    if (canGoForward())
        load(m_index + 1, true);
}

void StoryPlayer::teardown()
{
    if (!m_player) {
        m_observer.reset();
        return;
    }
    m_player->pause();
    if (m_observer)
        m_player->removeTimeObserver(*m_observer);
    m_observer.reset();
}

void StoryPlayer::close()
{
    teardown();
    deleteLater();
}
