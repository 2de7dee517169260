#include "ClockedPlayer.h"

#include <algorithm>

ClockedPlayer::ClockedPlayer(ManualClock &clock, double duration, std::chrono::milliseconds seekLatency)
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

void ClockedPlayer::replaceItem(const QUrl &url, const QStringList &h)
{
    m_url = url;
    headers = h;
    jumpTo(0);
}

void ClockedPlayer::anchor()
{
    m_position = currentTime();
    m_since = m_clock.now();
}

void ClockedPlayer::play()
{
    if (m_playing)
        return;
    anchor();
    m_playing = true;
    Q_EMIT playingChanged();
}

void ClockedPlayer::pause()
{
    if (!m_playing)
        return;
    anchor();
    m_playing = false;
    Q_EMIT playingChanged();
}

void ClockedPlayer::seek(double time, double before, double after, SeekDone done)
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

double ClockedPlayer::currentTime() const
{
    if (!m_playing)
        return m_position;
    const double elapsed = double((m_clock.now() - m_since).count()) / 1e6;
    return std::min(m_position + elapsed, m_duration);
}

ClockedPlayer::ObserverId ClockedPlayer::addPeriodicTimeObserver(double intervalSeconds, QObject *context,
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

void ClockedPlayer::removeTimeObserver(ObserverId id)
{
    const auto it = m_observers.find(id);
    if (it == m_observers.end())
        return;
    delete it->second;
    m_observers.erase(it);
}

void ClockedPlayer::jumpTo(double time)
{
    m_position = time;
    m_since = m_clock.now();
}
