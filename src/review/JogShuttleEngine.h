#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

#include <chrono>
#include <functional>

class Clock;
class Ticker;
class VideoPlayer;

/// @brief Runs the playhead at a shuttle speed: a 30 Hz tick moves the engine's own time and
/// seeks the player there, never with more than one seek outstanding. Ticks that come while a
/// seek is in flight only move the time; the next free tick seeks straight to wherever it then
/// stands, so positions are skipped, never queued, and the playhead shown never waits for video.
class JogShuttleEngine : public QObject
{
    Q_OBJECT
public:
    using Tick = std::function<void(double time)>;

    static constexpr double rate = 30;
    static constexpr std::chrono::microseconds tickInterval{1'000'000 / 30};
    /// Seeks of the jog may land this far either side of the asked time, for speed.
    static constexpr double seekTolerance = 0.05;

    /// Multiple of real time for a displacement of -1…1: a dead zone below 0.1, then ½, 1, 2
    /// and 4 from 0.1, 0.35, 0.6 and 0.85; the sign gives the direction.
    [[nodiscard]] static double speedFor(double displacement);
    /// "½×", "1×", "2×", "4×", or empty in the dead zone.
    [[nodiscard]] static QString labelFor(double displacement);
    /// A displacement that stands for `speed` (one of the table's), for shuttling from keys.
    [[nodiscard]] static double displacementFor(double speed);
    /// The table's next speed up from `speed` in its direction (4 stays 4).
    [[nodiscard]] static double nextSpeed(double speed);

    /// `clock` null: the event loop's.
    explicit JogShuttleEngine(Clock *clock = nullptr, QObject *parent = nullptr);

    /// Begins a jog from `startTime` within 0…`duration`; `onTick` gets each new time. The
    /// speed stays what it was (0 on a fresh engine) until `setDisplacement`.
    void start(VideoPlayer *player, double startTime, double duration, Tick onTick);
    void setDisplacement(double displacement);
    /// Stops ticking and sets the speed to 0. A seek in flight still completes.
    void stop();

    [[nodiscard]] bool isRunning() const;
    [[nodiscard]] double speed() const { return m_speed; }
    [[nodiscard]] double jogTime() const { return m_jogTime; }

private:
    void tick();

    Ticker *m_timer;
    QPointer<VideoPlayer> m_player;
    Tick m_onTick;
    bool m_seekInFlight = false;
    quint64 m_seekGeneration = 0;
    double m_speed = 0;
    double m_jogTime = 0;
    double m_duration = 0;
};
