#pragma once

#include "FlightRecords.h"
#include "TimelineScale.h"

#include <QColor>
#include <QList>
#include <QPointF>
#include <QQuickPaintedItem>
#include <QVariant>
#include <QVariantList>

#include <optional>

/// @brief The flight timeline's plot: the altitude profile as a filled curve over time, the
/// bands of clips, suggestions and moments, the pending range, the playhead with its marker on
/// the curve, and the time ruler underneath. A press or drag on it asks for seeks.
///
/// Owns nothing: the player gives it everything at each change. `points` are (time, altitude);
/// bands are {start, end} maps; the marks are numbers or undefined.
class TimelinePlot : public QQuickPaintedItem
{
    Q_OBJECT
    Q_PROPERTY(QList<QPointF> points READ points WRITE setPoints NOTIFY inputsChanged FINAL)
    Q_PROPERTY(double duration READ duration WRITE setDuration NOTIFY inputsChanged FINAL)
    Q_PROPERTY(double current READ current WRITE setCurrent NOTIFY inputsChanged FINAL)
    Q_PROPERTY(QVariant markIn READ markIn WRITE setMarkIn NOTIFY inputsChanged FINAL)
    Q_PROPERTY(QVariant markOut READ markOut WRITE setMarkOut NOTIFY inputsChanged FINAL)
    Q_PROPERTY(QVariantList clipBands READ clipBands WRITE setClipBands NOTIFY inputsChanged FINAL)
    Q_PROPERTY(QVariantList suggestedBands READ suggestedBands WRITE setSuggestedBands NOTIFY inputsChanged FINAL)
    Q_PROPERTY(QVariantList momentBands READ momentBands WRITE setMomentBands NOTIFY inputsChanged FINAL)
    Q_PROPERTY(QString unit READ unit WRITE setUnit NOTIFY inputsChanged FINAL)
    Q_PROPERTY(QColor curveColor MEMBER m_curveColor NOTIFY styleChanged FINAL)
    Q_PROPERTY(QColor accentColor MEMBER m_accentColor NOTIFY styleChanged FINAL)
    Q_PROPERTY(QColor suggestedColor MEMBER m_suggestedColor NOTIFY styleChanged FINAL)
    Q_PROPERTY(QColor momentColor MEMBER m_momentColor NOTIFY styleChanged FINAL)
    Q_PROPERTY(QColor markColor MEMBER m_markColor NOTIFY styleChanged FINAL)
    Q_PROPERTY(QColor gridColor MEMBER m_gridColor NOTIFY styleChanged FINAL)
    Q_PROPERTY(QColor textColor MEMBER m_textColor NOTIFY styleChanged FINAL)
    Q_PROPERTY(QColor labelColor MEMBER m_labelColor NOTIFY styleChanged FINAL)
    Q_PROPERTY(bool scrubbing READ scrubbing NOTIFY scrubbingChanged FINAL)
public:
    static constexpr double leftInset = 48;
    static constexpr double rightInset = 14;
    static constexpr double topInset = 10;
    static constexpr double rulerHeight = 38;

    explicit TimelinePlot(QQuickItem *parent = nullptr);

    [[nodiscard]] QList<QPointF> points() const { return m_pointList; }
    void setPoints(const QList<QPointF> &points);
    [[nodiscard]] double duration() const { return m_duration; }
    void setDuration(double value);
    [[nodiscard]] double current() const { return m_current; }
    void setCurrent(double value);
    [[nodiscard]] QVariant markIn() const { return m_markIn ? QVariant(*m_markIn) : QVariant(); }
    void setMarkIn(const QVariant &value);
    [[nodiscard]] QVariant markOut() const { return m_markOut ? QVariant(*m_markOut) : QVariant(); }
    void setMarkOut(const QVariant &value);
    [[nodiscard]] QVariantList clipBands() const { return m_clipBands; }
    void setClipBands(const QVariantList &value);
    [[nodiscard]] QVariantList suggestedBands() const { return m_suggestedBands; }
    void setSuggestedBands(const QVariantList &value);
    [[nodiscard]] QVariantList momentBands() const { return m_momentBands; }
    void setMomentBands(const QVariantList &value);
    [[nodiscard]] QString unit() const { return m_unit; }
    void setUnit(const QString &value);
    [[nodiscard]] bool scrubbing() const { return m_scrubbing; }

    /// The time a press at `x` seeks to.
    [[nodiscard]] Q_INVOKABLE double timeAtX(double x) const;
    /// Where `t` lies across the plot.
    [[nodiscard]] Q_INVOKABLE double xOfTime(double t) const;

    void paint(QPainter *painter) override;

Q_SIGNALS:
    void inputsChanged();
    void styleChanged();
    void scrubbingChanged();
    /// A press or drag asks for the playhead at `time`.
    void seekRequested(double time);
    /// The drag that seeked has ended.
    void seekFinished();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    void changed();
    void setScrubbing(bool on);
    void scrubTo(double x);
    [[nodiscard]] double span() const;
    [[nodiscard]] QRectF plotRect(const TimelineScale::Frame &frame) const;

    QList<QPointF> m_pointList;
    QList<AltPoint> m_points;  ///< the same, as the timeline's arithmetic takes them
    double m_top = 1;          ///< the altitude at the top of the scale
    double m_duration = 0;
    double m_current = 0;
    std::optional<double> m_markIn;
    std::optional<double> m_markOut;
    QVariantList m_clipBands;
    QVariantList m_suggestedBands;
    QVariantList m_momentBands;
    QString m_unit = QStringLiteral("ft");
    QColor m_curveColor{QStringLiteral("#46B8FF")};
    QColor m_accentColor{QStringLiteral("#46B8FF")};
    QColor m_suggestedColor{QStringLiteral("#FFA04D")};
    QColor m_momentColor{QStringLiteral("#3DD6A0")};
    QColor m_markColor{QStringLiteral("#FFFFFF")};
    QColor m_gridColor{QStringLiteral("#27335A")};
    QColor m_textColor{QStringLiteral("#E9EEF8")};
    QColor m_labelColor{QStringLiteral("#8E9BB8")};
    bool m_scrubbing = false;
};
