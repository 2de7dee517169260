#pragma once

#include "VideoPlayer.h"

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QUrl>

#include <optional>

class APIClient;

/// @brief One made video on one player, with what its controls show: playing, muted, where it
/// stands. Owns the player; the player goes with it, which stops the video.
///
/// A new video on the same path gets a new address (see `stampedUrl`), so neither the player
/// nor the network stack can hand back the old one from a cache.
class RenderPlayback : public QObject
{
    Q_OBJECT
    /// What the video item shows.
    Q_PROPERTY(VideoPlayer *player READ player CONSTANT FINAL)
    Q_PROPERTY(QUrl source READ source NOTIFY sourceChanged FINAL)
    Q_PROPERTY(bool playing READ playing NOTIFY playingChanged FINAL)
    Q_PROPERTY(bool muted READ muted NOTIFY mutedChanged FINAL)
    /// 0 to 1 of the way through; 0 while the length isn't known.
    Q_PROPERTY(double fraction READ fraction NOTIFY positionChanged FINAL)
    /// "0:03 / 0:12", or empty while nothing is loaded.
    Q_PROPERTY(QString timeText READ timeText NOTIFY positionChanged FINAL)
public:
    static constexpr double tickSeconds = 0.25;

    /// Takes `player` (may be null: nothing is shown and the controls do nothing).
    explicit RenderPlayback(VideoPlayer *player, QObject *parent = nullptr);
    ~RenderPlayback() override;

    /// base + "/" + `path` + "?t=" + `stamp`, the stamp percent-encoded with only ASCII letters
    /// and digits left as they are.
    [[nodiscard]] static QUrl stampedUrl(const APIClient &client, const QString &path, const QString &stamp);

    [[nodiscard]] VideoPlayer *player() const { return m_player; }
    [[nodiscard]] QUrl source() const { return m_source; }
    [[nodiscard]] bool playing() const { return m_player && m_player->isPlaying(); }
    [[nodiscard]] bool muted() const { return m_player && m_player->isMuted(); }
    [[nodiscard]] double fraction() const;
    [[nodiscard]] QString timeText() const;

    /// Puts a new video on the player, paused at its start; the old one stops.
    void load(const QUrl &url, const QStringList &headers);
    /// Starts the video silently: a video that just finished shows itself without a sound.
    void playMuted();

public Q_SLOTS:
    void togglePlay();
    void toggleMute();
    void pause();
    /// Jumps to `fraction` (0 to 1) of the length, once the length is known.
    void seekTo(double fraction);

Q_SIGNALS:
    void sourceChanged();
    void playingChanged();
    void mutedChanged();
    void positionChanged();

private:
    void tick(double time);

    QPointer<VideoPlayer> m_player;
    QUrl m_source;
    double m_position = 0;
    std::optional<VideoPlayer::ObserverId> m_observer;
};
