#pragma once

#include "TimeObservers.h"
#include "VideoPlayer.h"

#include <QString>

#include <atomic>
#include <cstdint>
#include <optional>

struct mpv_handle;
struct mpv_event;

/// @brief The `VideoPlayer` on libmpv: owns one mpv core and turns its events into signals and
/// completions on the GUI thread.
///
///   MpvPlayer player(MpvPlayer::Output::Headless);   // logic tests, benchmarks: no video, no sound
///   MpvPlayer player;                                // video for an MpvVideoItem (Aeroloom.Review)
///
/// With `Output::Render` nothing is loaded until an `MpvVideoItem` shows the player: mpv
/// gives up on the video of a file that starts without a render context. A headless player
/// loads at once.
///
/// Seeks are exact whatever their tolerance (see `seekFlags` for why). The completion
/// comes with mpv's `playback-restart` after the seek, on the GUI thread. Only the latest seek
/// is owed a completion: a newer seek or `replaceItem` completes the older one with false.
/// `time-pos` is read when asked for (`currentTime`, observer ticks), never observed, so a
/// playing file costs no event per frame.
class MpvPlayer : public VideoPlayer
{
    Q_OBJECT
public:
    enum class Output { Render, Headless };
    Q_ENUM(Output)

    explicit MpvPlayer(Output output = Output::Render, QObject *parent = nullptr);
    ~MpvPlayer() override;

    void replaceItem(const QUrl &url, const QStringList &headers) override;
    [[nodiscard]] QUrl currentUrl() const override { return m_url; }
    void play() override;
    void pause() override;
    [[nodiscard]] bool isPlaying() const override { return m_playing; }
    void seek(double time, double before, double after, SeekDone done = {}) override;
    [[nodiscard]] double currentTime() const override;
    [[nodiscard]] double duration() const override { return m_duration; }
    [[nodiscard]] bool isMuted() const override { return m_muted; }
    void setMuted(bool muted) override;
    ObserverId addPeriodicTimeObserver(double intervalSeconds, QObject *context, Observer observer) override;
    void removeTimeObserver(ObserverId id) override;

    [[nodiscard]] Output output() const { return m_output; }
    /// The mpv flags of a seek with these tolerances (from `MpvProperties`).
    [[nodiscard]] static const char *seekFlags(double before, double after);

    // ---- For the render item (src/ui/review) ----

    /// A new handle on this player's core for a render context; the core lives until every
    /// such handle is gone (`mpv_destroy`), so the render thread may outlive the player.
    /// Null when the core did not start. Thread-safe.
    [[nodiscard]] mpv_handle *createRenderClient() const;
    /// The render item has made its render context: a file waiting for video loads now, and
    /// one whose video went with an earlier item's context gets it back.
    void attachRenderer();
    /// The render item that attached is letting go. mpv ends a file whose video output goes
    /// away; the player notes where it stood and opens it there again for the next item.
    void detachRenderer();

private:
    /// The one seek still owed a completion, and how far mpv has got with it: waiting for the
    /// file to open, sent, replied to; then done at the next `playback-restart`.
    enum class SeekStage { WaitingForFile, Sent, Acknowledged };
    struct PendingSeek {
        std::uint64_t tag = 0;
        double time = 0;
        const char *flags = nullptr;
        SeekDone done;
        SeekStage stage = SeekStage::WaitingForFile;
    };

    void sendLoad();
    void sendSeek();
    void finishSeek(bool finished);
    void setPausedLocally(bool paused);
    void fail(const QString &reason);
    void waitForRenderer();
    void setDuration(double seconds);
    void updatePlaying();

    void wakeup();
    void drainEvents();
    void handleEvent(const mpv_event &event);
    void handleReply(const mpv_event &event);
    void handlePropertyChange(const mpv_event &event);
    void handleFileLoaded();
    void handleEndFile(const mpv_event &event);
    void handlePlaybackRestart();

    const Output m_output;
    TimeObservers m_observers;
    mpv_handle *m_mpv = nullptr;
    QString m_startError;
    std::atomic<bool> m_wakeupQueued{false};
    bool m_draining = false;

    QUrl m_url;
    QStringList m_headers;
    bool m_hasItem = false;      ///< replaceItem has been called and the file has not failed
    bool m_loadSent = false;     ///< loadfile went to mpv (a Render player waits for its item)
    bool m_rendererAttached = false;
    std::uint64_t m_loadTag = 0; ///< the request of the latest loadfile
    std::int64_t m_entry = -1;   ///< mpv's playlist entry of the latest loadfile, once replied
    std::int64_t m_startedEntry = -1;
    bool m_loaded = false;       ///< the latest file is open and seekable
    bool m_firstFrameSeen = false;
    QString m_lastError;         ///< mpv's latest error message for the latest file
    double m_resumeAt = notKnown(); ///< where a file reopened for a new render item starts
    bool m_videoGoing = false;   ///< the render item let go; mpv will end the file for it

    bool m_paused = true;
    bool m_playing = false;
    int m_pauseSetsInFlight = 0;
    bool m_muted = false;
    double m_duration = notKnown();

    std::optional<PendingSeek> m_seek;
    std::uint64_t m_nextRequest = 1;
};
