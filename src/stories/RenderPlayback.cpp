#include "RenderPlayback.h"

#include "APIClient.h"
#include "Units.h"

#include <algorithm>
#include <cmath>

RenderPlayback::RenderPlayback(VideoPlayer *player, QObject *parent) : QObject(parent), m_player(player)
{
    if (!m_player)
        return;
    m_player->setParent(this);
    connect(m_player, &VideoPlayer::playingChanged, this, &RenderPlayback::playingChanged);
    connect(m_player, &VideoPlayer::mutedChanged, this, &RenderPlayback::mutedChanged);
    connect(m_player, &VideoPlayer::durationChanged, this, &RenderPlayback::positionChanged);
    m_observer = m_player->addPeriodicTimeObserver(tickSeconds, this, [this](double t) { tick(t); });
}

RenderPlayback::~RenderPlayback()
{
    if (m_player) {
        m_player->pause();
        if (m_observer)
            m_player->removeTimeObserver(*m_observer);
    }
}

QUrl RenderPlayback::stampedUrl(const APIClient &client, const QString &path, const QString &stamp)
{
    // Everything but letters and digits is escaped. (QUrl writes "-", ".", "_" and "~" back
    // plain, which RFC 3986 makes the same address.)
    const QByteArray encoded = QUrl::toPercentEncoding(stamp, QByteArray(), QByteArrayLiteral("-._~"));
    return QUrl(client.baseString() + QLatin1Char('/') + path + QStringLiteral("?t=") + QString::fromLatin1(encoded));
}

double RenderPlayback::fraction() const
{
    const double length = m_player ? m_player->duration() : VideoPlayer::notKnown();
    if (!std::isfinite(length) || length <= 0)
        return 0;
    return std::clamp(m_position / length, 0.0, 1.0);
}

QString RenderPlayback::timeText() const
{
    if (!m_player || m_source.isEmpty())
        return {};
    const double length = m_player->duration();
    return Units::wholeTime(m_position) + QStringLiteral(" / ") + Units::wholeTime(std::isfinite(length) ? length : 0);
}

void RenderPlayback::load(const QUrl &url, const QStringList &headers)
{
    if (!m_player)
        return;
    m_player->pause();
    m_player->replaceItem(url, headers);
    m_position = 0;
    if (url != m_source) {
        m_source = url;
        Q_EMIT sourceChanged();
    }
    Q_EMIT positionChanged();
}

void RenderPlayback::playMuted()
{
    if (!m_player)
        return;
    m_player->setMuted(true);
    m_player->play();
}

void RenderPlayback::togglePlay()
{
    if (!m_player || m_source.isEmpty())
        return;
    if (m_player->isPlaying()) {
        m_player->pause();
        return;
    }
    // The player rests on the last frame at the end: play again from the start.
    const double length = m_player->duration();
    if (std::isfinite(length) && m_position >= length - tickSeconds)
        m_player->seek(0, 0, 0);
    m_player->play();
}

void RenderPlayback::toggleMute()
{
    if (m_player)
        m_player->setMuted(!m_player->isMuted());
}

void RenderPlayback::pause()
{
    if (m_player)
        m_player->pause();
}

void RenderPlayback::seekTo(double fraction)
{
    const double length = m_player ? m_player->duration() : VideoPlayer::notKnown();
    if (!std::isfinite(length) || length <= 0)
        return;
    m_position = std::clamp(fraction, 0.0, 1.0) * length;
    m_player->seek(m_position, 0, 0);
    Q_EMIT positionChanged();
}

void RenderPlayback::tick(double time)
{
    if (std::isnan(time) || time == m_position)
        return;
    m_position = time;
    Q_EMIT positionChanged();
}
