// The player's playback: the time observer, seeks and frame steps, the marks, jog and shuttle.
#include "PlayerModel.h"

#include "Clock.h"
#include "JogShuttleEngine.h"

#include <QPointer>

#include <cmath>

namespace {
/// Frames are stepped at this length; proxies keep their source's rate, 30 fps for most aircraft.
constexpr double frameStep = 1.0 / 30;
} // namespace

void PlayerModel::onTick(double time)
{
    if (m_isJogging)
        return;
    if (std::isfinite(time))
        setCurrent(time);
    if (m_segmentEnd && *m_segmentEnd <= time) {
        m_player->pause();
        m_segmentEnd.reset();
        m_segmentTimer->stop();
        return;
    }
    armSegmentEnd(time);
}

void PlayerModel::armSegmentEnd(double now)
{
    if (!m_segmentEnd || !m_player->isPlaying() || !std::isfinite(now))
        return;
    const double left = *m_segmentEnd - now;
    if (left < observerInterval)
        m_segmentTimer->start(std::chrono::microseconds(std::llround(left * 1e6)), false);
}

void PlayerModel::setCurrent(double t)
{
    if (t == m_current)
        return;
    m_current = t;
    Q_EMIT currentChanged();
    if (m_markIn && !m_markOut)
        Q_EMIT pendingChanged();
}

double PlayerModel::playerTime() const
{
    const double t = m_player->currentTime();
    return std::isfinite(t) ? t : 0.0;
}

void PlayerModel::play()
{
    m_player->play();
}

void PlayerModel::pause()
{
    m_player->pause();
}

void PlayerModel::togglePlay()
{
    if (m_isJogging) {
        shuttleStop();
        return;
    }
    if (m_player->isPlaying())
        m_player->pause();
    else
        m_player->play();
}

void PlayerModel::seek(double t)
{
    m_jog->stop();
    setJogging(false);
    m_player->pause();
    const double target = std::clamp(t, 0.0, duration());
    QPointer<PlayerModel> self(this);
    m_player->seek(target, seekTolerance, seekTolerance, [self](bool finished) {
        // A paused player's observer may not tick again soon: show where the seek landed.
        if (self && finished && !self->m_isJogging && std::isfinite(self->m_player->currentTime()))
            self->setCurrent(self->m_player->currentTime());
    });
}

void PlayerModel::seekToSample(int index)
{
    if (index >= 0 && index < m_track.size())
        seek(m_track[index].t);
}

void PlayerModel::stepFrame(int direction)
{
    if (m_player->isPlaying() || m_isJogging || direction == 0)
        return;
    const double target = std::clamp(playerTime() + (direction < 0 ? -frameStep : frameStep), 0.0, duration());
    QPointer<PlayerModel> self(this);
    m_player->seekExactly(target, [self](bool finished) {
        if (self && finished && std::isfinite(self->m_player->currentTime()))
            self->setCurrent(self->m_player->currentTime());
    });
}

// ---- Marks ----

void PlayerModel::setMarks(std::optional<double> in, std::optional<double> out)
{
    if (in == m_markIn && out == m_markOut)
        return;
    m_markIn = in;
    m_markOut = out;
    Q_EMIT marksChanged();
    Q_EMIT pendingChanged();
}

void PlayerModel::setMarkIn()
{
    const double t = playerTime();
    std::optional<double> out = m_markOut;
    if (out && !(*out > t))
        out.reset();
    setMarks(t, out);
}

void PlayerModel::setMarkOut()
{
    if (!m_markIn)
        return;
    const double t = playerTime();
    if (!(t > *m_markIn))
        return;
    setMarks(m_markIn, t);
    m_player->pause();
}

void PlayerModel::clearMarks()
{
    setMarks(std::nullopt, std::nullopt);
    m_player->play();
    setClipName(QString());
}

void PlayerModel::playClip(const QString &clipId)
{
    const Clip *clip = clipWithId(clipId);
    if (!clip)
        return;
    m_jog->stop();
    setJogging(false);
    m_segmentEnd.reset();
    m_segmentTimer->stop();
    // The end counts once the playhead is inside the clip: until the seek lands the player may
    // still report a time past it.
    QPointer<PlayerModel> self(this);
    m_player->seekExactly(clip->start, [self, end = clip->end](bool finished) {
        if (self && finished)
            self->m_segmentEnd = end;
    });
    m_player->play();
}

// ---- Jog and shuttle ----

void PlayerModel::setJogging(bool jogging)
{
    if (!jogging)
        m_shuttleFromKeys = false;
    if (jogging == m_isJogging)
        return;
    m_isJogging = jogging;
    Q_EMIT isJoggingChanged();
}

void PlayerModel::beginJog()
{
    setJogging(true);
    m_jog->stop();
    m_player->pause();
    QPointer<PlayerModel> self(this);
    m_jog->start(m_player, m_current, duration(), [self](double t) {
        if (self)
            self->setCurrent(t);
    });
}

void PlayerModel::jogTo(double displacement)
{
    m_jog->setDisplacement(displacement);
    Q_EMIT isJoggingChanged();
}

void PlayerModel::endJog()
{
    if (!m_isJogging)
        return;
    m_jog->stop();
    setJogging(false);
    m_player->play();
}

void PlayerModel::shuttle(int direction)
{
    if (direction == 0)
        return;
    const double sign = direction < 0 ? -1 : 1;
    double speed = sign;
    if (m_isJogging && m_shuttleFromKeys && m_jog->speed() * sign > 0)
        speed = JogShuttleEngine::nextSpeed(m_jog->speed());
    if (!m_isJogging)
        beginJog();
    m_shuttleFromKeys = true;
    jogTo(JogShuttleEngine::displacementFor(speed));
}

void PlayerModel::shuttleStop()
{
    if (!m_isJogging) {
        m_player->pause();
        return;
    }
    // Stays where the pilot sees it, not where the last seek happened to land.
    seek(m_jog->jogTime());
}

void PlayerModel::stop()
{
    m_jog->stop();
    setJogging(false);
    m_player->pause();
    m_segmentTimer->stop();
    if (m_timeObserver) {
        m_player->removeTimeObserver(*m_timeObserver);
        m_timeObserver.reset();
    }
}

void PlayerModel::requestTheater()
{
    // The theater plays the flight with its own sound; the player waits where it was.
    if (m_isJogging)
        shuttleStop();
    pause();
    Q_EMIT theaterRequested(m_flight.id);
}
