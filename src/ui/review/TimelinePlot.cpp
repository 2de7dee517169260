#include "TimelinePlot.h"

#include "Units.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

namespace {
std::optional<double> optionalNumber(const QVariant &value)
{
    bool ok = false;
    const double number = value.toDouble(&ok);
    if (!value.isValid() || value.isNull() || !ok)
        return std::nullopt;
    return number;
}

QColor withAlpha(QColor color, double alpha)
{
    color.setAlphaF(float(alpha));
    return color;
}
} // namespace

TimelinePlot::TimelinePlot(QQuickItem *parent) : QQuickPaintedItem(parent)
{
    setAntialiasing(true);
    setAcceptedMouseButtons(Qt::LeftButton);
    connect(this, &TimelinePlot::styleChanged, this, [this] { update(); });
}

void TimelinePlot::changed()
{
    Q_EMIT inputsChanged();
    update();
}

void TimelinePlot::setPoints(const QList<QPointF> &points)
{
    if (points == m_pointList)
        return;
    m_pointList = points;
    m_points.clear();
    m_points.reserve(points.size());
    for (const QPointF &p : points)
        m_points.append(AltPoint{int(m_points.size()), p.x(), p.y()});
    m_top = TimelineScale::scaleTop(m_points);
    changed();
}

void TimelinePlot::setDuration(double value)
{
    if (value == m_duration)
        return;
    m_duration = value;
    changed();
}

void TimelinePlot::setCurrent(double value)
{
    if (value == m_current)
        return;
    m_current = value;
    changed();
}

void TimelinePlot::setMarkIn(const QVariant &value)
{
    const auto mark = optionalNumber(value);
    if (mark == m_markIn)
        return;
    m_markIn = mark;
    changed();
}

void TimelinePlot::setMarkOut(const QVariant &value)
{
    const auto mark = optionalNumber(value);
    if (mark == m_markOut)
        return;
    m_markOut = mark;
    changed();
}

void TimelinePlot::setClipBands(const QVariantList &value)
{
    if (value == m_clipBands)
        return;
    m_clipBands = value;
    changed();
}

void TimelinePlot::setSuggestedBands(const QVariantList &value)
{
    if (value == m_suggestedBands)
        return;
    m_suggestedBands = value;
    changed();
}

void TimelinePlot::setMomentBands(const QVariantList &value)
{
    if (value == m_momentBands)
        return;
    m_momentBands = value;
    changed();
}

void TimelinePlot::setUnit(const QString &value)
{
    if (value == m_unit)
        return;
    m_unit = value;
    changed();
}

double TimelinePlot::span() const
{
    return TimelineScale::span(m_duration, m_points);
}

QRectF TimelinePlot::plotRect(const TimelineScale::Frame &frame) const
{
    return {frame.left, topInset, frame.width, std::max(height() - topInset - rulerHeight, 1.0)};
}

double TimelinePlot::timeAtX(double x) const
{
    return TimelineScale::Frame::of(width(), leftInset, rightInset, span()).timeAt(x);
}

double TimelinePlot::xOfTime(double t) const
{
    return TimelineScale::Frame::of(width(), leftInset, rightInset, span()).xOf(t);
}

void TimelinePlot::setScrubbing(bool on)
{
    if (on == m_scrubbing)
        return;
    m_scrubbing = on;
    Q_EMIT scrubbingChanged();
}

void TimelinePlot::scrubTo(double x)
{
    setScrubbing(true);
    Q_EMIT seekRequested(timeAtX(x));
}

void TimelinePlot::mousePressEvent(QMouseEvent *event)
{
    // No minimum distance: a plain press seeks once.
    scrubTo(event->position().x());
    event->accept();
}

void TimelinePlot::mouseMoveEvent(QMouseEvent *event)
{
    scrubTo(event->position().x());
    event->accept();
}

void TimelinePlot::mouseReleaseEvent(QMouseEvent *event)
{
    setScrubbing(false);
    Q_EMIT seekFinished();
    event->accept();
}

void TimelinePlot::paint(QPainter *painter)
{
    painter->setRenderHint(QPainter::Antialiasing, true);
    const auto frame = TimelineScale::Frame::of(width(), leftInset, rightInset, span());
    const QRectF plot = plotRect(frame);
    const QList<AltPoint> &points = m_points;
    const double top = m_top;
    const auto yOf = [&](double alt) { return plot.bottom() - std::clamp(alt / top, 0.0, 1.0) * plot.height(); };

    QFont font = painter->font();
    font.setPixelSize(10);
    painter->setFont(font);

    // Gridlines at quarters of the scale, labelled in the pilot's units.
    for (int i = 0; i <= 4; ++i) {
        const double alt = top * i / 4;
        const double y = yOf(alt);
        painter->setPen(QPen(withAlpha(m_gridColor, i == 0 ? 1.0 : 0.6), 1));
        painter->drawLine(QPointF(plot.left(), y), QPointF(plot.right(), y));
        painter->setPen(m_labelColor);
        painter->drawText(QRectF(0, y - 7, leftInset - 6, 14), Qt::AlignRight | Qt::AlignVCenter,
                          QStringLiteral("%1 %2").arg(int(alt)).arg(m_unit));
    }

    const auto band = [&](const QVariantList &bands, const QColor &color, double alpha) {
        for (const QVariant &entry : bands) {
            const QVariantMap range = entry.toMap();
            const double x1 = frame.xOf(range.value(QStringLiteral("start")).toDouble());
            const double x2 = frame.xOf(range.value(QStringLiteral("end")).toDouble());
            painter->fillRect(QRectF(QPointF(x1, plot.top()), QPointF(x2, plot.bottom())), withAlpha(color, alpha));
            painter->fillRect(QRectF(x1, plot.bottom() - 3, x2 - x1, 3), withAlpha(color, 0.9));
        }
    };
    band(m_momentBands, m_momentColor, 0.16);
    band(m_suggestedBands, m_suggestedColor, 0.2);
    band(m_clipBands, m_accentColor, 0.26);

    // The curve, closed down to the base line.
    if (!points.isEmpty()) {
        QPainterPath line;
        line.moveTo(frame.xOf(points.first().t), yOf(points.first().alt));
        for (const AltPoint &p : std::as_const(points))
            line.lineTo(frame.xOf(p.t), yOf(p.alt));
        QPainterPath area = line;
        area.lineTo(frame.xOf(points.last().t), plot.bottom());
        area.lineTo(frame.xOf(points.first().t), plot.bottom());
        area.closeSubpath();
        QLinearGradient fill(0, plot.top(), 0, plot.bottom());
        fill.setColorAt(0, withAlpha(m_curveColor, 0.45));
        fill.setColorAt(1, withAlpha(m_curveColor, 0.05));
        painter->fillPath(area, fill);
        painter->setPen(QPen(m_curveColor, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter->setBrush(Qt::NoBrush);
        painter->drawPath(line);
    }

    // The pending range, and its marks.
    if (const auto pending = TimelineScale::pendingBand(m_markIn, m_markOut, m_current)) {
        const double x1 = frame.xOf(pending->first);
        const double x2 = frame.xOf(pending->second);
        painter->fillRect(QRectF(QPointF(x1, plot.top()), QPointF(x2, plot.bottom())), withAlpha(m_markColor, 0.18));
        painter->setPen(QPen(m_markColor, 2));
        painter->drawLine(QPointF(x1, plot.top()), QPointF(x1, plot.bottom()));
        if (m_markOut)
            painter->drawLine(QPointF(x2, plot.top()), QPointF(x2, plot.bottom()));
    }

    // The playhead, with its marker riding the curve.
    const double px = frame.xOf(std::clamp(m_current, 0.0, frame.span));
    painter->setPen(QPen(m_textColor, 1.5));
    painter->drawLine(QPointF(px, plot.top()), QPointF(px, plot.bottom()));
    const double py = yOf(TimelineScale::altitudeAt(points, m_current));
    painter->setPen(QPen(m_textColor, 2));
    painter->setBrush(m_curveColor);
    painter->drawEllipse(QPointF(px, py), 4.5, 4.5);

    // The ruler: the labels keep clear of one another.
    font.setPixelSize(11);
    painter->setFont(font);
    for (const TimelineScale::Label &label : TimelineScale::rulerLabels(frame, m_current, m_markIn, m_markOut)) {
        const QRectF box(label.centerX - TimelineScale::labelHalfWidth, plot.bottom() + 4 + label.row * 17,
                         2 * TimelineScale::labelHalfWidth, 15);
        const bool playhead = label.kind == TimelineScale::Label::Playhead;
        painter->setPen(Qt::NoPen);
        painter->setBrush(playhead ? withAlpha(m_textColor, 0.14) : withAlpha(m_markColor, 0.22));
        painter->drawRoundedRect(box, 4, 4);
        painter->setPen(playhead ? m_textColor : m_markColor);
        const QString prefix = label.kind == TimelineScale::Label::In    ? QStringLiteral("IN ")
                               : label.kind == TimelineScale::Label::Out ? QStringLiteral("OUT ")
                                                                         : QString();
        painter->drawText(box, Qt::AlignCenter, prefix + label.text);
    }
}
