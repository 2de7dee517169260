#include "TimelineScale.h"

#include "Units.h"

#include <algorithm>
#include <cmath>

namespace TimelineScale {

double span(double duration, const QList<AltPoint> &points)
{
    const double last = points.isEmpty() ? 0.0 : points.last().t;
    return std::max({duration, last, 1.0});
}

Frame Frame::of(double viewWidth, double leftInset, double rightInset, double span)
{
    return Frame{leftInset, std::max(viewWidth - leftInset - rightInset, 1.0), std::max(span, 1.0)};
}

double Frame::timeAt(double x) const
{
    return std::clamp(span * ((x - left) / width), 0.0, span);
}

double scaleTop(const QList<AltPoint> &points)
{
    if (points.isEmpty())
        return 100;
    double highest = points.first().alt;
    for (const AltPoint &p : points)
        highest = std::max(highest, p.alt);
    return std::max(std::ceil(highest / 100.0) * 100.0, 100.0);
}

double altitudeAt(const QList<AltPoint> &points, double t)
{
    if (points.isEmpty())
        return 0;
    if (t <= points.first().t)
        return points.first().alt;
    if (t >= points.last().t)
        return points.last().alt;
    qsizetype lo = 0;
    qsizetype hi = points.size() - 1;
    while (hi - lo > 1) {
        const qsizetype mid = (lo + hi) / 2;
        if (points[mid].t <= t)
            lo = mid;
        else
            hi = mid;
    }
    const AltPoint &a = points[lo];
    const AltPoint &b = points[hi];
    const double gap = std::max(b.t - a.t, 0.000001);
    return a.alt + (b.alt - a.alt) * ((t - a.t) / gap);
}

namespace {
double placed(const Frame &frame, double x, bool preferRight)
{
    const double offset = labelGap + labelHalfWidth;
    if (preferRight)
        return x + offset + labelHalfWidth > frame.right() ? x - offset : x + offset;
    return x - offset - labelHalfWidth < frame.left ? x + offset : x - offset;
}
} // namespace

QList<Label> rulerLabels(const Frame &frame, double current, std::optional<double> markIn,
                         std::optional<double> markOut)
{
    QList<Label> labels;
    const auto add = [&](Label::Kind kind, double t, bool preferRight) {
        Label label{kind, placed(frame, frame.xOf(t), preferRight), 0, Units::wholeTime(t)};
        for (const Label &other : std::as_const(labels)) {
            if (other.row == 0 && std::fabs(other.centerX - label.centerX) < labelClearance)
                label.row = 1;
        }
        labels.append(label);
    };
    add(Label::Playhead, current, true);
    if (markIn)
        add(Label::In, *markIn, false);
    if (markOut)
        add(Label::Out, *markOut, false);
    return labels;
}

std::optional<std::pair<double, double>> pendingBand(std::optional<double> markIn, std::optional<double> markOut,
                                                     double current)
{
    if (!markIn)
        return std::nullopt;
    const double end = markOut.value_or(current);
    return std::pair{*markIn, std::max(end, *markIn)};
}

} // namespace TimelineScale
