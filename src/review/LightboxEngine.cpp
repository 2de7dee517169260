#include "LightboxEngine.h"

#include <QPointer>

#include <cmath>

LightboxEngine::LightboxEngine(PlayerFactory makePlayer, QObject *parent)
    : QObject(parent), m_makePlayer(std::move(makePlayer))
{
}

LightboxEngine::~LightboxEngine()
{
    stop();
    // The player goes while this engine is still whole; any seek it reports on its way out is stale.
    ++m_seekGeneration;
    m_player.reset();
}

VideoPlayer &LightboxEngine::ensurePlayer()
{
    if (!m_player) {
        m_player = m_makePlayer();
        m_player->setMuted(true);
        connect(m_player.get(), &VideoPlayer::durationChanged, this, [this] {
            // A file that never tells its length, or fails, leaves the length unknown.
            if (const double length = m_player->duration(); std::isfinite(length))
                setAssetDuration(length);
        });
        Q_EMIT playerChanged();
    }
    return *m_player;
}

void LightboxEngine::load(const QUrl &url, const QStringList &headers, double start, double end,
                          SegmentEnd onSegmentEnd)
{
    VideoPlayer &player = ensurePlayer();
    setBounds(start, end);
    m_onSegmentEnd = std::move(onSegmentEnd);
    if (url != m_loadedUrl) {
        m_loadedUrl = url;
        setAssetDuration(VideoPlayer::notKnown());
        player.replaceItem(url, headers);
    }
    seekExactly(start);
    player.play();
}

void LightboxEngine::startObserving()
{
    if (m_observer)
        return;
    m_observer = ensurePlayer().addPeriodicTimeObserver(observeInterval, this, [this](double time) { tick(time); });
}

void LightboxEngine::stop()
{
    if (!m_player)
        return;
    m_player->pause();
    if (m_observer) {
        m_player->removeTimeObserver(*m_observer);
        m_observer.reset();
    }
}

void LightboxEngine::tick(double time)
{
    if (!std::isfinite(time))
        return;
    setCurrent(time);
    if (m_seeking || m_scrubbing)
        return;
    const bool left = time > m_end || time < m_start - earlySlack || stoppedAtEndOfFile(time);
    if (!left)
        return;
    if (m_onSegmentEnd) {
        // The action may load another stretch, which replaces this very function.
        const SegmentEnd action = m_onSegmentEnd;
        action();
        return;
    }
    seekExactly(m_start);
    m_player->play();
}

bool LightboxEngine::stoppedAtEndOfFile(double time) const
{
    // A stretch that runs to the end of the file never sees a later time: the player stops on
    // the last frame instead.
    return std::isfinite(m_assetDuration) && time >= m_assetDuration - observeInterval && !m_player->isPlaying();
}

void LightboxEngine::setBounds(double start, double end)
{
    if (start == m_start && end == m_end)
        return;
    m_start = start;
    m_end = end;
    Q_EMIT boundsChanged();
}

void LightboxEngine::setScrubbing(bool on)
{
    if (on == m_scrubbing)
        return;
    m_scrubbing = on;
    Q_EMIT scrubbingChanged();
}

bool LightboxEngine::seekIfFree(double time)
{
    if (m_seeking)
        return false;
    seekExactly(time);
    return true;
}

void LightboxEngine::seekExactly(double time)
{
    VideoPlayer &player = ensurePlayer();
    const quint64 generation = ++m_seekGeneration;
    setSeeking(true);
    QPointer<LightboxEngine> self(this);
    player.seekExactly(time, [self, generation](bool) {
        // An older seek that a newer one replaced reports too; only the newest ends the wait.
        if (self && generation == self->m_seekGeneration)
            self->setSeeking(false);
    });
}

void LightboxEngine::play()
{
    ensurePlayer().play();
}

void LightboxEngine::pause()
{
    ensurePlayer().pause();
}

void LightboxEngine::setCurrent(double time)
{
    if (time == m_current)
        return;
    m_current = time;
    Q_EMIT currentChanged();
}

void LightboxEngine::setAssetDuration(double seconds)
{
    if (seconds == m_assetDuration || (std::isnan(seconds) && std::isnan(m_assetDuration)))
        return;
    m_assetDuration = seconds;
    Q_EMIT assetDurationChanged();
}

void LightboxEngine::setSeeking(bool on)
{
    if (on == m_seeking)
        return;
    m_seeking = on;
    Q_EMIT seekingChanged();
}
