#pragma once

#include "VideoPlayer.h"

#include <QList>
#include <QMap>
#include <QPointer>
#include <QTimer>

#include <algorithm>

/// @brief A stand-in player for timing rules only: seeks take `seekDelayMs` to complete (on a
/// real timer), the playhead moves only when a test ticks it, and everything asked of it is
/// recorded. Real playback is tested with the real player.
class ScriptedPlayer : public VideoPlayer
{
public:
    struct Seek {
        double time, before, after;
    };

    int seekDelayMs = 0;
    QList<QUrl> loads;
    QList<Seek> seeks;
    int outstanding = 0;     ///< seeks sent and not yet completed
    int mostOutstanding = 0;

    void replaceItem(const QUrl &url, const QStringList &) override
    {
        loads.append(url);
        m_url = url;
        m_time = 0;
        m_duration = notKnown();
        Q_EMIT durationChanged();
    }
    [[nodiscard]] QUrl currentUrl() const override { return m_url; }
    void play() override { setPlaying(true); }
    void pause() override { setPlaying(false); }
    [[nodiscard]] bool isPlaying() const override { return m_playing; }
    void seek(double time, double before, double after, SeekDone done) override
    {
        seeks.append({time, before, after});
        mostOutstanding = std::max(mostOutstanding, ++outstanding);
        auto *timer = new QTimer(this);
        timer->setSingleShot(true);
        QObject::connect(timer, &QTimer::timeout, this, [this, timer, time, done] {
            timer->deleteLater();
            --outstanding;
            m_time = time;
            if (done)
                done(true);
        });
        timer->start(seekDelayMs);
    }
    [[nodiscard]] double currentTime() const override { return m_time; }
    [[nodiscard]] double duration() const override { return m_duration; }
    [[nodiscard]] bool isMuted() const override { return m_muted; }
    void setMuted(bool muted) override { m_muted = muted; }
    ObserverId addPeriodicTimeObserver(double, QObject *context, Observer observer) override
    {
        const ObserverId id = ++m_lastId;
        m_observers.insert(id, {QPointer<QObject>(context), std::move(observer)});
        return id;
    }
    void removeTimeObserver(ObserverId id) override { m_observers.remove(id); }

    // ---- What a test does ----

    /// The playhead is at `time`: every observer hears it.
    void tick(double time)
    {
        m_time = time;
        const auto observers = m_observers;
        for (const auto &entry : observers)
            if (entry.first)
                entry.second(time);
    }
    void setDuration(double seconds)
    {
        m_duration = seconds;
        Q_EMIT durationChanged();
    }
    [[nodiscard]] int observerCount() const { return int(m_observers.size()); }
    [[nodiscard]] double lastSeek() const { return seeks.isEmpty() ? notKnown() : seeks.last().time; }

private:
    void setPlaying(bool on)
    {
        if (on == m_playing)
            return;
        m_playing = on;
        Q_EMIT playingChanged();
    }

    QUrl m_url;
    bool m_playing = false;
    bool m_muted = false;
    double m_time = 0;
    double m_duration = notKnown();
    ObserverId m_lastId = 0;
    QMap<ObserverId, std::pair<QPointer<QObject>, Observer>> m_observers;
};
