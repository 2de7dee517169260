#pragma once

#include <QObject>
#include <QStringList>
#include <QUrl>

#include <cmath>
#include <functional>
#include <limits>

/// @brief What the screens need of a video player: one file at a time, play and pause, seeks
/// with tolerances and a completion, the current time, and periodic time observers on the GUI
/// thread. The player model, the jog engine, the lightbox, the story preview and the video
/// pages all talk to this; `MpvPlayer` is the real one, tests may script their own.
///
/// Everything is called and calls back on the GUI thread. Times are seconds.
class VideoPlayer : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool playing READ isPlaying NOTIFY playingChanged FINAL)
    Q_PROPERTY(double duration READ duration NOTIFY durationChanged FINAL)
    Q_PROPERTY(bool muted READ isMuted WRITE setMuted NOTIFY mutedChanged FINAL)
public:
    using QObject::QObject;

    /// Called when a seek ends: true when it landed, false when a later seek or a new file
    /// replaced it first. Never called after the player is gone.
    using SeekDone = std::function<void(bool finished)>;
    using Observer = std::function<void(double time)>;
    using ObserverId = int;

    /// Replaces the current file with `url`, sending `headers` ("Name: value" lines, for the
    /// library's authorisation) with every request for it. Paused at 0 until `play()`.
    virtual void replaceItem(const QUrl &url, const QStringList &headers) = 0;
    /// The file now loaded (empty before the first `replaceItem`).
    [[nodiscard]] virtual QUrl currentUrl() const = 0;

    virtual void play() = 0;
    virtual void pause() = 0;
    [[nodiscard]] virtual bool isPlaying() const = 0;

    /// Moves to `time`, allowing the landing frame to lie up to `before` earlier or `after`
    /// later (zero both ways: exactly). `done` runs once the seek has completed or was replaced.
    virtual void seek(double time, double before, double after, SeekDone done = {}) = 0;
    void seekExactly(double time, SeekDone done = {}) { seek(time, 0, 0, std::move(done)); }

    /// Where the playhead is now; NaN while nothing is loaded.
    [[nodiscard]] virtual double currentTime() const = 0;
    /// The loaded file's length; NaN until it is known.
    [[nodiscard]] virtual double duration() const = 0;

    [[nodiscard]] virtual bool isMuted() const = 0;
    virtual void setMuted(bool muted) = 0;

    /// Calls `observer` with the current time every `intervalSeconds` while it is registered,
    /// on the GUI thread. It is never called after `removeTimeObserver`, nor after `context`
    /// (which should be the observing object) is destroyed.
    virtual ObserverId addPeriodicTimeObserver(double intervalSeconds, QObject *context, Observer observer) = 0;
    virtual void removeTimeObserver(ObserverId id) = 0;

    [[nodiscard]] static double notKnown() { return std::numeric_limits<double>::quiet_NaN(); }

Q_SIGNALS:
    void playingChanged();
    void durationChanged();
    void mutedChanged();
    /// The first frame of the current file has been decoded.
    void firstFrameReady();
    /// The current file could not be opened or played; `reason` is the player's own words.
    void loadFailed(const QString &reason);
};
