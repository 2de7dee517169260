#pragma once

#include "VideoPlayer.h"

#include <QObject>
#include <QStringList>
#include <QUrl>

#include <functional>
#include <memory>

/// @brief Plays a stretch of a flight's video over and over, or until its end when told what
/// to do then. Shared by the clip lightbox and the trim sheet, whose filmstrip takes the
/// playhead while the pilot drags (`scrubbing`).
///
/// The player is made on first use and stays muted; a new stretch of the file already loaded
/// only seeks. The engine's own seeks are exact and one at a time: `seekIfFree` refuses while
/// one is in flight, so a drag never queues seeks behind a slow decoder.
class LightboxEngine : public QObject
{
    Q_OBJECT
    Q_PROPERTY(VideoPlayer *player READ player NOTIFY playerChanged FINAL)
    Q_PROPERTY(double current READ current NOTIFY currentChanged FINAL)
    Q_PROPERTY(double assetDuration READ assetDuration NOTIFY assetDurationChanged FINAL)
    Q_PROPERTY(double boundsStart READ boundsStart NOTIFY boundsChanged FINAL)
    Q_PROPERTY(double boundsEnd READ boundsEnd NOTIFY boundsChanged FINAL)
    Q_PROPERTY(bool seeking READ seeking NOTIFY seekingChanged FINAL)
    Q_PROPERTY(bool scrubbing READ scrubbing NOTIFY scrubbingChanged FINAL)
public:
    using PlayerFactory = std::function<std::unique_ptr<VideoPlayer>()>;
    using SegmentEnd = std::function<void()>;

    /// How often the playhead is read, in seconds.
    static constexpr double observeInterval = 0.1;
    /// A playhead this far before the stretch still counts as inside it: an exact seek can land
    /// a little early.
    static constexpr double earlySlack = 1.5;

    explicit LightboxEngine(PlayerFactory makePlayer, QObject *parent = nullptr);
    ~LightboxEngine() override;

    /// Null until the first `load`.
    [[nodiscard]] VideoPlayer *player() const { return m_player.get(); }
    [[nodiscard]] double current() const { return m_current; }
    /// NaN while the loaded video's length is unknown (or it failed to load).
    [[nodiscard]] double assetDuration() const { return m_assetDuration; }
    [[nodiscard]] double boundsStart() const { return m_start; }
    [[nodiscard]] double boundsEnd() const { return m_end; }
    [[nodiscard]] bool seeking() const { return m_seeking; }
    [[nodiscard]] bool scrubbing() const { return m_scrubbing; }
    [[nodiscard]] QUrl loadedUrl() const { return m_loadedUrl; }

    /// Shows `start`..`end` of `url`: loads the file when it is another one, seeks exactly to
    /// `start` and plays. `onSegmentEnd` runs when playback leaves the stretch; without it the
    /// stretch loops.
    void load(const QUrl &url, const QStringList &headers, double start, double end, SegmentEnd onSegmentEnd = {});
    /// Starts reading the playhead, if it isn't read already.
    void startObserving();
    /// Pauses and stops reading the playhead; the file stays loaded.
    void stop();

    void setBounds(double start, double end);
    void setScrubbing(bool on);
    /// An exact seek to `time`, unless one of the engine's seeks is still in flight. True when sent.
    bool seekIfFree(double time);
    /// An exact seek to `time` whatever is in flight; the latest seek alone clears `seeking`.
    void seekExactly(double time);
    void play();
    void pause();

Q_SIGNALS:
    void playerChanged();
    void currentChanged();
    void assetDurationChanged();
    void boundsChanged();
    void seekingChanged();
    void scrubbingChanged();

private:
    VideoPlayer &ensurePlayer();
    void tick(double time);
    [[nodiscard]] bool stoppedAtEndOfFile(double time) const;
    void setCurrent(double time);
    void setAssetDuration(double seconds);
    void setSeeking(bool on);

    PlayerFactory m_makePlayer;
    std::unique_ptr<VideoPlayer> m_player;
    double m_current = 0;
    double m_assetDuration = 0;
    double m_start = 0;
    double m_end = 1;
    SegmentEnd m_onSegmentEnd;
    std::optional<VideoPlayer::ObserverId> m_observer;
    bool m_seeking = false;
    bool m_scrubbing = false;
    QUrl m_loadedUrl;
    quint64 m_seekGeneration = 0;
};
