#pragma once

#include "VideoPlayer.h"

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QUrl>

#include <optional>


/// @brief Loops one stretch of a video silently, for previewing a clip before it is added.
class SegmentPlayer : public QObject
{
    Q_OBJECT
    /// What the preview's video item shows.
    Q_PROPERTY(VideoPlayer *player READ player CONSTANT FINAL)
public:
    static constexpr double earlyMargin = 0.3;
    static constexpr double tickSeconds = 0.1;

    SegmentPlayer(VideoPlayer *player, QUrl url, QStringList headers, double start, double end,
                  QObject *parent = nullptr);
    ~SegmentPlayer() override;

    [[nodiscard]] VideoPlayer *player() const { return m_player; }
    [[nodiscard]] double start() const { return m_start; }
    [[nodiscard]] double end() const { return m_end; }

    /// Loads the file (unless the player holds it already), mutes, and plays from `start`.
    void begin();
    /// Pauses and stops observing; safe to call twice. Runs by itself on destruction.
    void stop();
    void tick(double time);

public Q_SLOTS:
    /// Stops and frees this player: the preview calls it when it goes.
    void close();

private:
    void seekToStart();

    QPointer<VideoPlayer> m_player;
    QUrl m_url;
    QStringList m_headers;
    double m_start = 0;
    double m_end = 0;
    std::optional<int> m_observer;
    /// A seek is under way: ticks meanwhile would only restart it.
    bool m_seeking = false;
};
