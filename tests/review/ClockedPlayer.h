#pragma once

#include "ManualClock.h"
#include "VideoPlayer.h"

#include <QList>

#include <map>

/// @brief A stand-in player on a hand-moved clock, for the timing rules of the jog engine and
/// the player model: seeks take `seekLatency`, playing time runs with the clock, observers tick
/// on it. It records every seek and how many were outstanding at once.
class ClockedPlayer final : public VideoPlayer
{
public:
    struct Seek {
        double time;
        double before;
        double after;
        std::chrono::microseconds issuedAt;
    };

    explicit ClockedPlayer(ManualClock &clock, double duration = 60,
                            std::chrono::milliseconds seekLatency = std::chrono::milliseconds(200));

    void replaceItem(const QUrl &url, const QStringList &headers) override;
    [[nodiscard]] QUrl currentUrl() const override { return m_url; }
    void play() override;
    void pause() override;
    [[nodiscard]] bool isPlaying() const override { return m_playing; }
    void seek(double time, double before, double after, SeekDone done = {}) override;
    [[nodiscard]] double currentTime() const override;
    [[nodiscard]] double duration() const override { return m_duration; }
    [[nodiscard]] bool isMuted() const override { return false; }
    void setMuted(bool) override {}
    ObserverId addPeriodicTimeObserver(double intervalSeconds, QObject *context, Observer observer) override;
    void removeTimeObserver(ObserverId id) override;

    /// Moves the playhead at once, as if the file had played there.
    void jumpTo(double time);

    QStringList headers;
    QList<Seek> seeks;
    int outstanding = 0;
    int mostOutstanding = 0;
    int observersAdded = 0;
    [[nodiscard]] int observerCount() const { return int(m_observers.size()); }

private:
    void anchor();

    ManualClock &m_clock;
    double m_duration;
    std::chrono::milliseconds m_latency;
    QUrl m_url;
    bool m_playing = false;
    double m_position = 0;
    std::chrono::microseconds m_since{0};
    Ticker *m_seekTimer;
    SeekDone m_pendingDone;
    double m_pendingTime = 0;
    std::map<ObserverId, Ticker *> m_observers;
    ObserverId m_next = 1;
};
