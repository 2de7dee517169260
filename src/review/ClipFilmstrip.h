#pragma once

#include "LightboxEngine.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QUrl>

#include <optional>

/// @brief The trimming strip under a clip: a row of frames over the clip with room on both
/// sides, two handles for the in and out points, and a playhead the pilot can drag.
///
/// A drag that starts within `handleReach` of a handle moves that handle; any other drag scrubs.
/// Handles move the `draft`, never the saved clip; the clip keeps at least `minClip` seconds.
/// While dragging the engine is paused and its seeks wait for each other; when a handle is let
/// go the engine loops the draft and `handleCommitted` tells the owner.
class ClipFilmstrip : public QObject
{
    Q_OBJECT
    Q_PROPERTY(double savedStart READ savedStart NOTIFY clipChanged FINAL)
    Q_PROPERTY(double savedEnd READ savedEnd NOTIFY clipChanged FINAL)
    Q_PROPERTY(QUrl source READ source NOTIFY clipChanged FINAL)
    Q_PROPERTY(bool hasDraft READ hasDraft NOTIFY draftChanged FINAL)
    Q_PROPERTY(double draftStart READ draftStart NOTIFY draftChanged FINAL)
    Q_PROPERTY(double draftEnd READ draftEnd NOTIFY draftChanged FINAL)
    Q_PROPERTY(double rangeStart READ rangeStart NOTIFY rangeChanged FINAL)
    Q_PROPERTY(double rangeEnd READ rangeEnd NOTIFY rangeChanged FINAL)
    Q_PROPERTY(double width READ width WRITE setWidth NOTIFY widthChanged FINAL)
    Q_PROPERTY(QString dragMode READ dragModeName NOTIFY dragModeChanged FINAL)
    Q_PROPERTY(LightboxEngine *engine READ engine CONSTANT FINAL)
public:
    enum class TrimPoint { inPoint, outPoint };
    /// A handle (with its point) or a scrub.
    struct DragMode {
        bool handle = false;
        TrimPoint point = TrimPoint::inPoint;
        bool operator==(const DragMode &) const = default;
    };
    struct Span {
        double start = 0;
        double end = 0;
        bool operator==(const Span &) const = default;
    };

    /// How near, in points, a drag must start to a handle to take it.
    static constexpr double handleReach = 18;
    /// A scrub stops this short of the out point, so the frame shown still belongs to the clip.
    static constexpr double scrubEndGap = 0.05;
    /// The frames' count never falls below this, however narrow the strip.
    static constexpr int minFrames = 6;

    ClipFilmstrip(LightboxEngine *engine, double minClip, QObject *parent = nullptr);

    [[nodiscard]] LightboxEngine *engine() const { return m_engine; }
    [[nodiscard]] double minClip() const { return m_minClip; }

    /// A new clip: `source` and `ffmpegHeaders` are where its frames come from. Drops the draft.
    void setClip(const QUrl &source, const QString &ffmpegHeaders, double start, double end);
    [[nodiscard]] QUrl source() const { return m_source; }
    [[nodiscard]] QString ffmpegHeaders() const { return m_headers; }
    [[nodiscard]] double savedStart() const { return m_saved.start; }
    [[nodiscard]] double savedEnd() const { return m_saved.end; }

    [[nodiscard]] const std::optional<Span> &draft() const { return m_draft; }
    [[nodiscard]] bool hasDraft() const { return m_draft.has_value(); }
    [[nodiscard]] double draftStart() const { return current().start; }
    [[nodiscard]] double draftEnd() const { return current().end; }
    void clearDraft();

    /// The times the strip spans: the clip with half its length on either side (at least two
    /// seconds), within the video.
    [[nodiscard]] double rangeStart() const { return range().start; }
    [[nodiscard]] double rangeEnd() const { return range().end; }
    [[nodiscard]] double width() const { return m_width; }
    void setWidth(double width);

    [[nodiscard]] Q_INVOKABLE double timeAt(double x) const;
    [[nodiscard]] Q_INVOKABLE double xOf(double time) const;

    /// How many frames fill a strip of `width` by `height`: enough 16:9 frames to cover it, at least six.
    [[nodiscard]] static int frameCount(double width, double height);
    /// The time each frame shows: the middle of its slice of the range. Empty for an empty strip.
    [[nodiscard]] QList<double> frameTimes(double width, double height) const;

    [[nodiscard]] const std::optional<DragMode> &dragMode() const { return m_dragMode; }

public Q_SLOTS:
    /// The drag that began at `startX` is now at `x` (points along the strip).
    void dragChanged(double startX, double x);
    void dragEnded();

Q_SIGNALS:
    void clipChanged();
    void draftChanged();
    void rangeChanged();
    void widthChanged();
    void dragModeChanged();
    /// A handle was let go with the draft at `start`..`end`.
    void handleCommitted(double start, double end);

private:
    /// The draft, or the saved clip without one.
    [[nodiscard]] Span current() const { return m_draft.value_or(m_saved); }
    [[nodiscard]] Span range() const;
    void setDraft(Span span);
    [[nodiscard]] QString dragModeName() const;

    LightboxEngine *m_engine;
    double m_minClip;
    QUrl m_source;
    QString m_headers;
    Span m_saved;
    std::optional<Span> m_draft;
    double m_width = 0;
    std::optional<DragMode> m_dragMode;
};
