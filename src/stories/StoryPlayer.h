#pragma once

#include "ClipPreview.h"
#include "VideoPlayer.h"

#include <QList>
#include <QObject>
#include <QPointer>

#include <memory>
#include <optional>

class APIClient;

/// @brief Plays a story's clips as one film on one player: it seeks from range to range and
/// swaps the file only when the flight changes, so two clips of one flight in a row cost a seek,
/// not a reload.
///
/// Time ticks come every 0.1 s; a clip may overrun its end by up to that, which is accepted.
/// After the last clip it pauses on the first frame of clip 0, ready to run again. A proxy that
/// can't be loaded leaves the player empty, without ticks and without a message.
class StoryPlayer : public QObject
{
    Q_OBJECT
    /// What the preview's video item shows.
    Q_PROPERTY(VideoPlayer *player READ player CONSTANT FINAL)
    Q_PROPERTY(int index READ index NOTIFY indexChanged FINAL)
    Q_PROPERTY(int count READ count CONSTANT FINAL)
    Q_PROPERTY(bool canGoBack READ canGoBack NOTIFY indexChanged FINAL)
    Q_PROPERTY(bool canGoForward READ canGoForward NOTIFY indexChanged FINAL)
    Q_PROPERTY(QString positionText READ positionText NOTIFY indexChanged FINAL)
    Q_PROPERTY(QString label READ label NOTIFY indexChanged FINAL)
    Q_PROPERTY(QString subtitle READ subtitle NOTIFY indexChanged FINAL)
public:
    /// A tick this far before the clip's start means the player is somewhere else (a late
    /// file, a stray seek); closer than this is a seek that landed on the nearest frame before.
    static constexpr double earlyMargin = 0.3;
    static constexpr double tickSeconds = 0.1;

    /// Nothing happens until `start()`. `hq` picks the full proxy over the 480-line one.
    StoryPlayer(VideoPlayer *player, QList<ClipPreview> clips, std::shared_ptr<APIClient> client, bool hq,
                QObject *parent = nullptr);
    ~StoryPlayer() override;

    [[nodiscard]] VideoPlayer *player() const { return m_player; }
    [[nodiscard]] int index() const { return m_index; }
    [[nodiscard]] int count() const { return int(m_clips.size()); }
    [[nodiscard]] bool canGoBack() const { return m_index > 0; }
    [[nodiscard]] bool canGoForward() const { return m_index + 1 < m_clips.size(); }
    /// "2 / 5"
    [[nodiscard]] QString positionText() const;
    /// The clip's label, or "Untitled clip".
    [[nodiscard]] QString label() const;
    [[nodiscard]] QString subtitle() const;
    [[nodiscard]] const QList<ClipPreview> &clips() const { return m_clips; }
    [[nodiscard]] std::optional<QString> loadedFlight() const { return m_loadedFlight; }
    [[nodiscard]] bool seeking() const { return m_seeking; }

    /// Observes the player's time and plays from clip 0.
    void start();
    /// Jumps to clip `i`; an index outside the story only moves `index`.
    void load(int i, bool play);
    /// Pauses and stops observing; safe to call twice. Runs by itself on destruction.
    void teardown();

    /// One time tick (public so tests can put the player anywhere).
    void tick(double time);

public Q_SLOTS:
    void previous();
    void next();
    /// Tears down and frees this player: the preview calls it when it goes.
    void close();

Q_SIGNALS:
    void indexChanged();
    /// The player was handed a new file (the flight changed).
    void fileLoaded(const QString &flightId);

private:
    void seekToStart(bool play);

    QPointer<VideoPlayer> m_player;
    QList<ClipPreview> m_clips;
    std::shared_ptr<APIClient> m_client;
    bool m_hq = false;
    int m_index = 0;
    std::optional<int> m_observer;
    std::optional<QString> m_loadedFlight;
    bool m_seeking = false;
};
