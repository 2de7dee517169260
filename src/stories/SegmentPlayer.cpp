#include "SegmentPlayer.h"

#include "VideoPlayer.h"

#include <cmath>

SegmentPlayer::SegmentPlayer(VideoPlayer *player, QUrl url, QStringList headers, double start, double end,
                             QObject *parent)
    : QObject(parent), m_player(player), m_url(std::move(url)), m_headers(std::move(headers)), m_start(start), m_end(end)
{
}

SegmentPlayer::~SegmentPlayer()
{
    stop();
}

void SegmentPlayer::begin()
{
    if (!m_player)
        return;
    if (m_player->currentUrl() != m_url)
        m_player->replaceItem(m_url, m_headers);
    m_player->setMuted(true);
    seekToStart();
    if (!m_observer)
        m_observer = m_player->addPeriodicTimeObserver(tickSeconds, this, [this](double t) { tick(t); });
    m_player->play();
}

void SegmentPlayer::seekToStart()
{
    m_seeking = true;
    QPointer<SegmentPlayer> self(this);
    m_player->seekExactly(m_start, [self](bool finished) {
        if (self && finished)
            self->m_seeking = false;
    });
}

void SegmentPlayer::tick(double time)
{
    if (m_seeking || !m_player || std::isnan(time))
        return;
    if (time >= m_end || time < m_start - earlyMargin)
        seekToStart();
}

void SegmentPlayer::stop()
{
    if (m_player) {
        m_player->pause();
        if (m_observer)
            m_player->removeTimeObserver(*m_observer);
    }
    m_observer.reset();
}

void SegmentPlayer::close()
{
    stop();
    deleteLater();
}
