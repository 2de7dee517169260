#pragma once

#include "ClipRecords.h"
#include "FlightRecords.h"
#include "StoryRecords.h"
#include "Units.h"
#include "VideoPlayer.h"

#include <QList>
#include <QObject>
#include <QPointF>
#include <QPointer>
#include <QVariant>
#include <QVariantList>

#include <QCoroTask>

#include <memory>
#include <optional>

class APIClient;
class CancelToken;
class Clock;
class PlayerClipRows;
class JogShuttleEngine;
class Ticker;
class Toast;

/// @brief Behind the flight player: plays one flight's proxy, follows the playhead, holds the
/// pending in and out marks and keeps the flight's clips in step with the library.
///
/// One per opened flight, dropped when the screen closes. Made paused at 0 with its 10 Hz time
/// observer running; `load()` fills the lists and starts playing. Every change to the clips
/// sends the whole list; a failed save keeps the local list, which goes with the next save.
/// Coordinates are `QPointF(longitude, latitude)`; optional times travel to QML as undefined.
class PlayerModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString flightId READ flightId CONSTANT FINAL)
    Q_PROPERTY(VideoPlayer *player READ player CONSTANT FINAL)
    Q_PROPERTY(QUrl videoUrl READ videoUrl CONSTANT FINAL)
    Q_PROPERTY(QUrl thumbnailURL READ thumbnailURL CONSTANT FINAL)
    Q_PROPERTY(QString subtitle READ subtitle CONSTANT FINAL)
    Q_PROPERTY(double duration READ duration NOTIFY trackChanged FINAL)
    Q_PROPERTY(double current READ current NOTIFY currentChanged FINAL)
    Q_PROPERTY(bool playing READ playing NOTIFY playingChanged FINAL)
    Q_PROPERTY(QVariant markIn READ markInValue NOTIFY marksChanged FINAL)
    Q_PROPERTY(QVariant markOut READ markOutValue NOTIFY marksChanged FINAL)
    Q_PROPERTY(bool hasRange READ hasRange NOTIFY marksChanged FINAL)
    Q_PROPERTY(QVariant pendingLength READ pendingLengthValue NOTIFY pendingChanged FINAL)
    Q_PROPERTY(QString pendingText READ pendingText NOTIFY pendingChanged FINAL)
    Q_PROPERTY(QString title READ title NOTIFY pendingChanged FINAL)
    Q_PROPERTY(QString clipName READ clipName WRITE setClipName NOTIFY clipNameChanged FINAL)
    Q_PROPERTY(PlayerClipRows *myClips READ myClipRows CONSTANT FINAL)
    Q_PROPERTY(PlayerClipRows *suggestedClips READ suggestedClipRows CONSTANT FINAL)
    Q_PROPERTY(QVariantList clipRanges READ clipRanges NOTIFY clipsChanged FINAL)
    Q_PROPERTY(QVariantList suggestedRanges READ suggestedRanges NOTIFY clipsChanged FINAL)
    Q_PROPERTY(QVariantList momentRanges READ momentRanges NOTIFY clipsChanged FINAL)
    Q_PROPERTY(QVariantList reels READ reelList NOTIFY reelsChanged FINAL)
    Q_PROPERTY(QList<QPointF> pathCoords READ pathCoords NOTIFY trackChanged FINAL)
    Q_PROPERTY(QList<QPointF> altPoints READ altPointList NOTIFY trackChanged FINAL)
    Q_PROPERTY(QList<QPointF> markedPath READ markedPath NOTIFY marksChanged FINAL)
    Q_PROPERTY(int maxAltitude READ maxAltitude NOTIFY trackChanged FINAL)
    Q_PROPERTY(int altitudeNow READ altitudeNow NOTIFY currentChanged FINAL)
    Q_PROPERTY(int speedNow READ speedNow NOTIFY currentChanged FINAL)
    Q_PROPERTY(QVariant coordNow READ coordNow NOTIFY currentChanged FINAL)
    Q_PROPERTY(double headingNow READ headingNow NOTIFY currentChanged FINAL)
    Q_PROPERTY(QString coordinateText READ coordinateText NOTIFY currentChanged FINAL)
    Q_PROPERTY(double distance READ distance NOTIFY unitsChanged FINAL)
    Q_PROPERTY(QString peakText READ peakText NOTIFY trackChanged FINAL)
    Q_PROPERTY(QString distanceText READ distanceText NOTIFY unitsChanged FINAL)
    Q_PROPERTY(QString altitudeText READ altitudeText NOTIFY currentChanged FINAL)
    Q_PROPERTY(QString speedText READ speedText NOTIFY currentChanged FINAL)
    Q_PROPERTY(QString clockText READ clockText NOTIFY currentChanged FINAL)
    Q_PROPERTY(QString curveUnit READ curveUnit NOTIFY trackChanged FINAL)
    Q_PROPERTY(QString mapScaleText READ mapScaleText NOTIFY unitsChanged FINAL)
    Q_PROPERTY(bool metric READ metric NOTIFY unitsChanged FINAL)
    Q_PROPERTY(bool saving READ saving NOTIFY savingChanged FINAL)
    Q_PROPERTY(QString toast READ toast NOTIFY toastChanged FINAL)
    Q_PROPERTY(bool isJogging READ isJogging NOTIFY isJoggingChanged FINAL)
    Q_PROPERTY(double shuttleSpeed READ shuttleSpeed NOTIFY isJoggingChanged FINAL)

public:
    /// @brief What a player is opened with besides its flight, client and video player.
    struct Setup {
        bool hq = false;          ///< the high-quality playback preference
        bool metric = false;      ///< the units preference
        bool spikeMarks = false;  ///< development aid: marks at 11 % and 16 % after loading
        Clock *clock = nullptr;   ///< null: the event loop's
    };

    static constexpr double observerInterval = 0.1;
    static constexpr double seekTolerance = 0.05;

    /// Takes `player` over and loads the flight's video into it at once.
    PlayerModel(Flight flight, std::shared_ptr<APIClient> client, VideoPlayer *player, Setup setup,
                QObject *parent = nullptr);
    ~PlayerModel() override;

    [[nodiscard]] const Flight &flight() const { return m_flight; }
    [[nodiscard]] QString flightId() const { return m_flight.id; }
    [[nodiscard]] VideoPlayer *player() const { return m_player; }
    [[nodiscard]] QUrl videoUrl() const { return m_videoUrl; }
    [[nodiscard]] QUrl thumbnailURL() const;
    [[nodiscard]] QString subtitle() const;

    [[nodiscard]] double duration() const;
    [[nodiscard]] double current() const { return m_current; }
    [[nodiscard]] bool playing() const;
    [[nodiscard]] std::optional<double> markIn() const { return m_markIn; }
    [[nodiscard]] std::optional<double> markOut() const { return m_markOut; }
    [[nodiscard]] bool hasRange() const { return m_markIn && m_markOut; }
    [[nodiscard]] std::optional<double> pendingLength() const;
    [[nodiscard]] QString pendingText() const;
    [[nodiscard]] QString title() const;
    [[nodiscard]] QString clipName() const { return m_clipName; }
    void setClipName(const QString &name);

    [[nodiscard]] const QList<Clip> &clips() const { return m_clips; }
    [[nodiscard]] QList<Clip> myClips() const;
    [[nodiscard]] QList<Clip> suggestedClips() const;
    [[nodiscard]] const QList<Moment> &moments() const { return m_moments; }
    [[nodiscard]] const QList<ProjectSummary> &reels() const { return m_reels; }
    [[nodiscard]] const QList<TrackSample> &track() const { return m_track; }
    [[nodiscard]] const QList<AltPoint> &altPoints() const { return m_altPoints; }
    [[nodiscard]] const QList<QPointF> &pathCoords() const { return m_pathCoords; }
    [[nodiscard]] QList<QPointF> markedPath() const;
    [[nodiscard]] PlayerClipRows *myClipRows() const { return m_myRows; }
    [[nodiscard]] PlayerClipRows *suggestedClipRows() const { return m_suggestedRows; }
    [[nodiscard]] QVariantList clipRanges() const;
    [[nodiscard]] QVariantList suggestedRanges() const;
    [[nodiscard]] QVariantList momentRanges() const;
    [[nodiscard]] QVariantList reelList() const;
    [[nodiscard]] QList<QPointF> altPointList() const;

    [[nodiscard]] int maxAltitude() const;
    [[nodiscard]] int altitudeNow() const;
    [[nodiscard]] int speedNow() const;
    [[nodiscard]] QVariant coordNow() const;
    [[nodiscard]] double headingNow() const;
    [[nodiscard]] QString coordinateText() const;
    /// The flight's path length in miles, or kilometres when metric.
    [[nodiscard]] double distance() const;
    [[nodiscard]] bool metric() const { return m_metric; }
    /// The readouts with their units: "312 ft", "1.2 mi", "24 mph"; the clock "1:02 / 4:10".
    [[nodiscard]] QString peakText() const;
    [[nodiscard]] QString distanceText() const;
    [[nodiscard]] QString altitudeText() const;
    [[nodiscard]] QString speedText() const;
    [[nodiscard]] QString clockText() const;
    /// The unit of the altitude curve: the one that stood when it was built.
    [[nodiscard]] QString curveUnit() const { return Units::altitudeUnit(m_curveMetric); }
    /// The words of the map's scale bar, a fixed drawing.
    [[nodiscard]] QString mapScaleText() const;
    /// Follows the units preference; the altitude curve keeps the units it was built with.
    void setMetric(bool metric);

    [[nodiscard]] bool saving() const { return m_saving; }
    [[nodiscard]] QString toast() const;
    [[nodiscard]] bool isJogging() const { return m_isJogging; }
    [[nodiscard]] double shuttleSpeed() const;
    [[nodiscard]] const JogShuttleEngine &jog() const { return *m_jog; }
    [[nodiscard]] std::optional<double> segmentEnd() const { return m_segmentEnd; }

    /// The telemetry sample at `t`: the latest not after it; absent with an empty track.
    [[nodiscard]] std::optional<TrackSample> sample(double t) const;

    // Awaitable forms of the operations, for tests; the screen calls the slots below.
    QCoro::Task<> loadAsync();
    QCoro::Task<> saveClipAsync(QString label);
    QCoro::Task<> deleteClipAsync(QString clipId);
    QCoro::Task<> keepClipAsync(QString clipId);
    QCoro::Task<> tossClipAsync(QString clipId);
    QCoro::Task<> addToStoryAsync(QString clipId, QString reelId);

    /// The confirmation of deleting or tossing a clip, as {title, message, confirm, cancel}.
    [[nodiscard]] Q_INVOKABLE QVariantMap deleteConfirmation(const QString &clipId) const;
    [[nodiscard]] Q_INVOKABLE QVariantMap tossConfirmation(const QString &clipId) const;
    /// The clip's menu as {action, text, reelId, submenu} lines; action is "play", "keep",
    /// "toss", "addToStory", "noStories" or "delete".
    [[nodiscard]] Q_INVOKABLE QVariantList clipMenu(const QString &clipId) const;

public Q_SLOTS:
    void load();
    /// Pauses and moves the playhead (clamped to the flight), ending any jog first.
    void seek(double t);
    /// Seeks to the time of the track sample at `index` (a press on the path).
    void seekToSample(int index);
    void play();
    void pause();
    /// Space: plays or pauses; during a shuttle it stops the shuttle.
    void togglePlay();
    /// One frame back (-1) or on (+1), only while paused.
    void stepFrame(int direction);
    void setMarkIn();
    void setMarkOut();
    void clearMarks();
    void saveClip(const QString &label);
    void playClip(const QString &clipId);
    void deleteClip(const QString &clipId);
    void keepClip(const QString &clipId);
    void tossClip(const QString &clipId);
    void addToStory(const QString &clipId, const QString &reelId);
    void showToast(const QString &text);
    /// The screen goes away: ends any jog, pauses, removes the time observer.
    void stop();

    // The jog bar: `beginJog` at the first movement of a drag, `jogTo` with its displacement,
    // `endJog` when it is let go (playback resumes from wherever the player stands).
    void beginJog();
    void jogTo(double displacement);
    void endJog();
    /// The keys' shuttle: J (-1) and L (+1) run the jog engine from 1× and step its speed up
    /// on each further press in the same direction; K (`shuttleStop`) stops it, paused.
    void shuttle(int direction);
    void shuttleStop();

    /// Asks for the 3D view of this flight.
    void requestTheater();

Q_SIGNALS:
    void currentChanged();
    void playingChanged();
    void marksChanged();
    void pendingChanged();
    void clipNameChanged();
    void clipsChanged();
    void reelsChanged();
    void trackChanged();
    void unitsChanged();
    void savingChanged();
    void toastChanged();
    void isJoggingChanged();
    /// A clip was saved from the marks: the name field lets go of its focus.
    void clipSaved();
    void theaterRequested(const QString &flightId);

private:
    void onTick(double time);
    void setCurrent(double t);
    void setMarks(std::optional<double> in, std::optional<double> out);
    void setJogging(bool jogging);
    void setClips(QList<Clip> clips);
    /// Takes the clips with `clipId` out of the list (not yet saved).
    void removeClips(const QString &clipId);
    void armSegmentEnd(double now);
    /// The player's own time; NaN counts as 0.
    [[nodiscard]] double playerTime() const;
    [[nodiscard]] const Clip *clipWithId(const QString &id) const;
    /// Sends the whole clip list, saying `success` or the failure as a toast.
    QCoro::Task<> saveList(QString success);
    void setSaving(bool saving);
    [[nodiscard]] QVariant markInValue() const { return m_markIn ? QVariant(*m_markIn) : QVariant(); }
    [[nodiscard]] QVariant markOutValue() const { return m_markOut ? QVariant(*m_markOut) : QVariant(); }
    [[nodiscard]] QVariant pendingLengthValue() const;

    Flight m_flight;
    std::shared_ptr<APIClient> m_client;
    VideoPlayer *m_player;
    Setup m_setup;
    bool m_metric;
    bool m_curveMetric;
    QUrl m_videoUrl;
    double m_current = 0;
    std::optional<double> m_markIn;
    std::optional<double> m_markOut;
    QString m_clipName;
    QList<Clip> m_clips;
    QList<Moment> m_moments;
    QList<ProjectSummary> m_reels;
    QList<TrackSample> m_track;
    QList<QPointF> m_pathCoords;
    QList<AltPoint> m_altPoints;
    bool m_saving = false;
    bool m_isJogging = false;
    bool m_shuttleFromKeys = false;
    std::optional<VideoPlayer::ObserverId> m_timeObserver;
    std::optional<double> m_segmentEnd;
    JogShuttleEngine *m_jog;
    Toast *m_toast;
    Ticker *m_segmentTimer;
    CancelToken *m_loadCancel;
    PlayerClipRows *m_myRows;
    PlayerClipRows *m_suggestedRows;
};
