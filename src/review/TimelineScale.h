#pragma once

#include "FlightRecords.h"

#include <QList>
#include <QString>

#include <optional>

/// @brief The geometry of the flight timeline: the time span and where a time falls, the top
/// of the altitude scale, the altitude under the playhead, and where the ruler's time labels
/// go so they stay readable. Free of drawing; the view item paints with it.
namespace TimelineScale {

/// Half the width of a ruler label, and its gap from the line it names.
inline constexpr double labelHalfWidth = 33;
inline constexpr double labelGap = 5;
/// Labels whose centres lie closer than this share no row.
inline constexpr double labelClearance = 72;

/// The longer of `duration` and the last point's time, and at least 1 second.
[[nodiscard]] double span(double duration, const QList<AltPoint> &points);

/// @brief The plot's horizontal frame: `left` and inner width `width` (at least 1).
struct Frame {
    double left = 0;
    double width = 1;
    double span = 1;

    static Frame of(double viewWidth, double leftInset, double rightInset, double span);
    [[nodiscard]] double xOf(double t) const { return left + (t / span) * width; }
    /// The time under `x`, clamped to 0…span.
    [[nodiscard]] double timeAt(double x) const;
    [[nodiscard]] double right() const { return left + width; }
};

/// The highest altitude rounded up to the next hundred, and at least 100.
[[nodiscard]] double scaleTop(const QList<AltPoint> &points);
/// Altitude at `t`, interpolated between the points around it; 0 without points.
[[nodiscard]] double altitudeAt(const QList<AltPoint> &points, double t);

/// @brief One time label under the plot.
struct Label {
    enum Kind { Playhead, In, Out };
    Kind kind = Playhead;
    double centerX = 0;
    int row = 0;  ///< 0 right under the plot, 1 below that
    QString text;
};

/// The playhead's label sits right of it (left near the right edge); the marks' labels sit left
/// of them (right near the left edge). A label that comes within `labelClearance` of one already
/// on the first row goes to the second.
[[nodiscard]] QList<Label> rulerLabels(const Frame &frame, double current, std::optional<double> markIn,
                                       std::optional<double> markOut);

/// The pending band: in to out, or in to the playhead while only in is set (empty when the
/// playhead is before it). Absent without an in mark.
[[nodiscard]] std::optional<std::pair<double, double>> pendingBand(std::optional<double> markIn,
                                                                   std::optional<double> markOut, double current);

} // namespace TimelineScale
