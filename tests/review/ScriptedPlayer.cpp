#include "ScriptedPlayer.h"

#include <algorithm>

ScriptedPlayer::ScriptedPlayer(ManualClock &clock, double duration, std::chrono::milliseconds seekLatency)
    : m_clock(clock), m_duration(duration), m_latency(seekLatency), m_seekTimer(clock.makeTicker(this))
{
    connect(m_seekTimer, &Ticker::timeout, this, [this] {
        m_position = m_pendingTime;
        m_since = m_clock.now();
        --outstanding;
        if (auto done = std::exchange(m_pendingDone, {}))
            done(true);
    });
}

void ScriptedPlayer::replaceItem(const QUrl &url, const QStringList &h)
{
    m_url = url;
    headers = h;
    jumpTo(0);
}

void ScriptedPlayer::anchor()
{
    m_position = currentTime();
    m_since = m_clock.now();
}

void ScriptedPlayer::play()
{
    if (m_playing)
        return;
    anchor();
    m_playing = true;
    Q_EMIT playingChanged();
}

void ScriptedPlayer::pause()
{
    if (!m_playing)
        return;
    anchor();
    m_playing = false;
    Q_EMIT playingChanged();
}

void ScriptedPlayer::seek(double time, double before, double after, SeekDone done)
{
    // Like the real one: a newer seek completes the older one unfinished.
    if (m_seekTimer->isActive()) {
        m_seekTimer->stop();
        --outstanding;
        if (auto older = std::exchange(m_pendingDone, {}))
            older(false);
    }
    anchor();
    seeks.append({time, before, after, m_clock.now()});
    m_pendingTime = time;
    m_pendingDone = std::move(done);
    ++outstanding;
    mostOutstanding = std::max(mostOutstanding, outstanding);
    m_seekTimer->start(m_latency, false);
}

double ScriptedPlayer::currentTime() const
{
    if (!m_playing)
        return m_position;
    const double elapsed = double((m_clock.now() - m_since).count()) / 1e6;
    return std::min(m_position + elapsed, m_duration);
}

ScriptedPlayer::ObserverId ScriptedPlayer::addPeriodicTimeObserver(double intervalSeconds, QObject *context,
                                                                   Observer observer)
{
    Ticker *ticker = m_clock.makeTicker(this);
    const ObserverId id = m_next++;
    connect(ticker, &Ticker::timeout, context, [this, observer = std::move(observer)] { observer(currentTime()); });
    ticker->start(std::chrono::microseconds(qint64(intervalSeconds * 1e6)), true);
    m_observers[id] = ticker;
    ++observersAdded;
    return id;
}

void ScriptedPlayer::removeTimeObserver(ObserverId id)
{
    const auto it = m_observers.find(id);
    if (it == m_observers.end())
        return;
    delete it->second;
    m_observers.erase(it);
}

void ScriptedPlayer::jumpTo(double time)
{
    m_position = time;
    m_since = m_clock.now();
}
