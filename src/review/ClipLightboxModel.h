#pragma once

#include "ClipFilmstrip.h"
#include "ClipRecords.h"
#include "FlightRecords.h"
#include "LightboxEngine.h"

#include <QObject>
#include <QPointer>

#include <QCoroTask>

#include <functional>
#include <optional>

class ClipsBrowserModel;
class ClipsBrowserStore;

/// @brief The clips section's full-window viewer: one visible clip at a time, looping (or
/// moving on by itself in "play all"), with its telemetry, keep and toss for suggestions, and
/// a trim on the filmstrip that is saved with "Save trim & keep".
///
/// Which clip shows, whether play-all runs and whether the viewer is open belong to the clips
/// section (`ClipsBrowserModel`); this follows them and moves them. After an action the list
/// of visible clips is read again, since the action can take the clip out of the filter.
class ClipLightboxModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(LightboxEngine *engine READ engine CONSTANT FINAL)
    Q_PROPERTY(ClipFilmstrip *strip READ strip CONSTANT FINAL)
    Q_PROPERTY(bool open READ open NOTIFY openChanged FINAL)
    Q_PROPERTY(bool hasClip READ hasClip NOTIFY clipChanged FINAL)
    Q_PROPERTY(QString label READ label NOTIFY clipChanged FINAL)
    Q_PROPERTY(QString placeText READ placeText NOTIFY clipChanged FINAL)
    Q_PROPERTY(QString lengthText READ lengthText NOTIFY clipChanged FINAL)
    Q_PROPERTY(QString positionText READ positionText NOTIFY clipChanged FINAL)
    Q_PROPERTY(bool suggested READ suggested NOTIFY clipChanged FINAL)
    Q_PROPERTY(QString why READ why NOTIFY clipChanged FINAL)
    Q_PROPERTY(bool playAll READ playAll NOTIFY clipChanged FINAL)
    Q_PROPERTY(QString altitudeText READ altitudeText NOTIFY telemetryChanged FINAL)
    Q_PROPERTY(QString speedText READ speedText NOTIFY telemetryChanged FINAL)
    Q_PROPERTY(QString headingText READ headingText NOTIFY telemetryChanged FINAL)
    Q_PROPERTY(bool dirty READ dirty NOTIFY dirtyChanged FINAL)
    Q_PROPERTY(bool busy READ busy NOTIFY busyChanged FINAL)
    Q_PROPERTY(bool metric READ metric WRITE setMetric NOTIFY telemetryChanged FINAL)
    Q_PROPERTY(bool hq READ hq WRITE setHq NOTIFY hqChanged FINAL)
public:
    /// The lightbox's handles keep a clip at least this long.
    static constexpr double minClip = 2.0;
    /// A draft closer than this to the clip at both ends is no change.
    static constexpr double dirtyThreshold = 0.05;

    ClipLightboxModel(ClipsBrowserModel *browser, LightboxEngine::PlayerFactory makePlayer, QObject *parent = nullptr);
    ~ClipLightboxModel() override;

    [[nodiscard]] LightboxEngine *engine() const { return m_engine; }
    [[nodiscard]] ClipFilmstrip *strip() const { return m_strip; }
    [[nodiscard]] bool open() const { return m_open; }
    /// False while the index points outside the visible clips (the view shows a spinner).
    [[nodiscard]] bool hasClip() const { return m_clip.has_value(); }
    [[nodiscard]] const std::optional<PoolClip> &clip() const { return m_clip; }
    [[nodiscard]] QString label() const;
    [[nodiscard]] QString placeText() const;
    [[nodiscard]] QString lengthText() const;
    [[nodiscard]] QString positionText() const;
    [[nodiscard]] bool suggested() const;
    [[nodiscard]] QString why() const;
    [[nodiscard]] bool playAll() const;
    [[nodiscard]] const QList<TrackSample> &track() const { return m_track; }
    [[nodiscard]] QString altitudeText() const;
    [[nodiscard]] QString speedText() const;
    [[nodiscard]] QString headingText() const;
    [[nodiscard]] bool dirty() const;
    [[nodiscard]] bool busy() const { return m_busy; }
    [[nodiscard]] bool metric() const { return m_metric; }
    void setMetric(bool metric);
    [[nodiscard]] bool hq() const { return m_hq; }
    void setHq(bool hq);

    // The actions, awaitable by tests.
    QCoro::Task<> runKeep();
    QCoro::Task<> runToss();
    QCoro::Task<> runSaveTrim();

public Q_SLOTS:
    void keep();
    void toss();
    void saveTrim();
    /// Drops the draft and plays the clip as saved from its start.
    void cancelTrim();
    void next();
    void previous();
    void close();

Q_SIGNALS:
    void openChanged();
    void clipChanged();
    void telemetryChanged();
    void dirtyChanged();
    void busyChanged();
    void hqChanged();

private:
    using Change = std::function<QCoro::Task<bool>(ClipsBrowserStore &, PoolClip)>;

    /// Runs one change of the clip in hand through the store, says how it went, and settles.
    QCoro::Task<> runChange(Change change, QString succeeded, QString failed);
    void follow();
    void showClip();
    void moveTo(int index);
    /// After a successful action: back to the same clip if it is still shown, else the one now
    /// at this place, or closed when nothing is left.
    void settleAfter(const QString &identity);
    QCoro::Task<> fetchTrack(QString flightId);
    void setBusy(bool busy);
    [[nodiscard]] std::optional<TrackSample> sampleNow() const;

    QPointer<ClipsBrowserModel> m_browser;
    LightboxEngine *m_engine;
    ClipFilmstrip *m_strip;
    bool m_open = false;
    int m_shownIndex = -1;
    bool m_shownPlayAll = false;
    std::optional<PoolClip> m_clip;
    QList<TrackSample> m_track;
    bool m_busy = false;
    bool m_metric = false;
    bool m_hq = false;
};
