#pragma once

#include "RenderRecords.h"

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QVariantList>

#include <QCoroTask>

#include <chrono>
#include <memory>
#include <optional>

class APIClient;
class CancelToken;
class ReelsStore;
class RenderPlayback;

/// @brief The screen that makes a story's video: its settings, the start, the job followed by
/// polling while it runs, the finished video on a player, and the download.
///
/// Made by the screen (`RenderPreviewModel { store: …; storyId: … }`) and started by its
/// explicit `appear()`: the music list, one status, then a status every `pollInterval` while a
/// job runs, for as long as the screen is open. A failed poll changes nothing; the next one
/// tries again. Going away ends the polling and leaves the job on the server alone.
///
/// A job that finishes while the screen watches it sets `progressDone` ("Created.") before
/// anything else, then puts the video on the player and starts it muted; a video that was
/// already there when the screen opened waits, paused.
class RenderPreviewModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QObject *store READ storeObject WRITE setStoreObject NOTIFY givenChanged FINAL)
    Q_PROPERTY(QString storyId READ storyId WRITE setStoryId NOTIFY givenChanged FINAL)
    Q_PROPERTY(QString storyTitle READ storyTitle WRITE setStoryTitle NOTIFY givenChanged FINAL)
    /// Most of the story's clips are vertical: the video is vertical whatever the picker says.
    Q_PROPERTY(bool storyVertical READ storyVertical WRITE setStoryVertical NOTIFY givenChanged FINAL)
    /// A development aid: the screen acts as if it had started the job itself, so a first
    /// answer "done" runs the finish ("Created.", the muted start).
    Q_PROPERTY(bool assumeRendering READ assumeRendering WRITE setAssumeRendering NOTIFY givenChanged FINAL)

    Q_PROPERTY(QVariantList trackChoices READ trackChoices NOTIFY tracksChanged FINAL)
    Q_PROPERTY(QVariantList syncChoices READ syncChoices CONSTANT FINAL)
    Q_PROPERTY(QVariantList aspectChoices READ aspectChoices CONSTANT FINAL)
    Q_PROPERTY(QString track READ track WRITE setTrack NOTIFY settingsChanged FINAL)
    Q_PROPERTY(QString sync READ sync WRITE setSync NOTIFY settingsChanged FINAL)
    Q_PROPERTY(bool hud READ hud WRITE setHud NOTIFY settingsChanged FINAL)
    Q_PROPERTY(QString aspect READ aspect WRITE setAspect NOTIFY settingsChanged FINAL)
    /// The aspect the picker shows: "vertical" for a vertical story, else `aspect`.
    Q_PROPERTY(QString shownAspect READ shownAspect NOTIFY settingsChanged FINAL)
    Q_PROPERTY(QString hudCaption READ hudCaption NOTIFY settingsChanged FINAL)
    /// Whether the words on what vertical costs stand under the settings.
    Q_PROPERTY(bool verticalNote READ verticalNote NOTIFY settingsChanged FINAL)

    Q_PROPERTY(bool rendering READ rendering NOTIFY jobChanged FINAL)
    Q_PROPERTY(bool starting READ starting NOTIFY jobChanged FINAL)
    Q_PROPERTY(double progress READ progress NOTIFY jobChanged FINAL)
    Q_PROPERTY(bool progressDone READ progressDone NOTIFY jobChanged FINAL)
    /// "Create", or "Creating" while a job runs.
    Q_PROPERTY(QString buttonText READ buttonText NOTIFY jobChanged FINAL)
    /// "Creating… 42%" while a job runs, "Created." once it finished here, else empty.
    Q_PROPERTY(QString barText READ barText NOTIFY jobChanged FINAL)
    Q_PROPERTY(QString note READ note NOTIFY noteChanged FINAL)

    Q_PROPERTY(RenderPlayback *playback READ playback NOTIFY playbackChanged FINAL)
    Q_PROPERTY(bool videoVertical READ videoVertical NOTIFY statusChanged FINAL)
    Q_PROPERTY(bool canDownload READ canDownload NOTIFY statusChanged FINAL)
    Q_PROPERTY(QString staleLine READ staleLine NOTIFY statusChanged FINAL)
    Q_PROPERTY(QString errorLine READ errorLine NOTIFY statusChanged FINAL)
    Q_PROPERTY(QStringList tags READ tags NOTIFY statusChanged FINAL)
    Q_PROPERTY(QString musicText READ musicText NOTIFY statusChanged FINAL)
    Q_PROPERTY(bool downloading READ downloading NOTIFY downloadingChanged FINAL)
    /// A downloaded video waiting to be handed to the desktop; empty when none.
    Q_PROPERTY(QString sharedFile READ sharedFile NOTIFY sharedFileChanged FINAL)
public:
    static constexpr std::chrono::milliseconds pollEvery{1500};
    /// Seconds of cross-fade between clips; the screen has no setting for it.
    static constexpr double crossFade = 0.2;

    explicit RenderPreviewModel(QObject *parent = nullptr);
    ~RenderPreviewModel() override;

    [[nodiscard]] QObject *storeObject() const;
    void setStoreObject(QObject *store);
    void setStore(ReelsStore *store);
    [[nodiscard]] QString storyId() const { return m_storyId; }
    void setStoryId(const QString &id);
    [[nodiscard]] QString storyTitle() const { return m_storyTitle; }
    void setStoryTitle(const QString &title);
    [[nodiscard]] bool storyVertical() const { return m_storyVertical; }
    void setStoryVertical(bool vertical);
    [[nodiscard]] bool assumeRendering() const { return m_assumeRendering; }
    void setAssumeRendering(bool assume);
    /// Tests poll in milliseconds.
    void setPollInterval(std::chrono::milliseconds interval) { m_pollInterval = interval; }

    [[nodiscard]] const QStringList &tracks() const { return m_tracks; }
    [[nodiscard]] QVariantList trackChoices() const;
    [[nodiscard]] static QVariantList syncChoices();
    [[nodiscard]] static QVariantList aspectChoices();
    [[nodiscard]] QString track() const { return m_track; }
    void setTrack(const QString &track);
    [[nodiscard]] QString sync() const { return m_sync; }
    void setSync(const QString &sync);
    [[nodiscard]] bool hud() const { return m_hud; }
    void setHud(bool hud);
    [[nodiscard]] QString aspect() const { return m_aspect; }
    void setAspect(const QString &aspect);
    [[nodiscard]] QString shownAspect() const;
    [[nodiscard]] QString hudCaption() const;
    [[nodiscard]] bool verticalNote() const;
    /// The body "Create" sends with the settings as they stand.
    [[nodiscard]] RenderRequest request() const;

    [[nodiscard]] bool rendering() const { return m_rendering; }
    [[nodiscard]] bool starting() const { return m_starting; }
    [[nodiscard]] double progress() const { return m_progress; }
    [[nodiscard]] bool progressDone() const { return m_progressDone; }
    [[nodiscard]] QString buttonText() const;
    [[nodiscard]] QString barText() const;
    [[nodiscard]] QString note() const { return m_note; }

    [[nodiscard]] const std::optional<RenderStatus> &status() const { return m_status; }
    [[nodiscard]] RenderPlayback *playback() const { return m_playback; }
    /// The `rendered` value of the video on the player.
    [[nodiscard]] const std::optional<QString> &playerStamp() const { return m_playerStamp; }
    [[nodiscard]] bool videoVertical() const;
    [[nodiscard]] bool canDownload() const { return m_status && m_status->url; }
    [[nodiscard]] QString staleLine() const;
    [[nodiscard]] QString errorLine() const;
    [[nodiscard]] QStringList tags() const;
    [[nodiscard]] QString musicText() const;
    [[nodiscard]] bool downloading() const { return m_downloading; }
    [[nodiscard]] QString sharedFile() const { return m_sharedFile; }

    // The screen's work, awaitable by tests; the slots start them.
    QCoro::Task<> run();
    QCoro::Task<> refresh();
    QCoro::Task<> start();
    QCoro::Task<> save();

    /// Takes one status answer (public so tests can hand it answers in any order).
    void apply(const RenderStatus &status);

public Q_SLOTS:
    /// The screen came on: starts the polling, once.
    void appear();
    /// "Create"
    void create();
    /// "Save": downloads the video, then offers it to the desktop.
    void download();
    /// The desktop has had the downloaded file, or the pilot let it be.
    void shareDismissed();
    /// Ends the polling; the screen is going.
    void stop();

Q_SIGNALS:
    void givenChanged();
    void tracksChanged();
    void settingsChanged();
    void jobChanged();
    void noteChanged();
    void statusChanged();
    void playbackChanged();
    void downloadingChanged();
    void sharedFileChanged();

private:
    void setRendering(bool rendering);
    void setProgress(double progress);
    void setProgressDone(bool done);
    void setNote(const QString &note);
    void showVideo(const QString &path, const QString &stamp);

    QPointer<ReelsStore> m_store;
    QString m_storyId;
    QString m_storyTitle;
    bool m_storyVertical = false;
    bool m_assumeRendering = false;
    std::chrono::milliseconds m_pollInterval = pollEvery;

    QStringList m_tracks;
    QString m_track = QStringLiteral("random");
    QString m_sync = QStringLiteral("bar");
    bool m_hud = false;
    QString m_aspect = QStringLiteral("landscape");

    bool m_rendering = false;
    bool m_starting = false;
    double m_progress = 0;
    bool m_progressDone = false;
    QString m_note;
    std::optional<RenderStatus> m_status;
    RenderPlayback *m_playback = nullptr;
    std::optional<QString> m_playerStamp;
    bool m_downloading = false;
    QString m_sharedFile;

    bool m_appeared = false;
    CancelToken *m_cancel = nullptr;
};
