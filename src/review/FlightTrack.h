#pragma once

#include "ClipRecords.h"
#include "FlightRecords.h"

#include <QList>
#include <QPointF>

#include <optional>

/// @brief What the player reads out of a flight's telemetry (the sample at a time is
/// `TrackLookup`'s): the thinned altitude curve, the peak, the stretch of path inside the marks, and which moments the clips
/// already cover. Coordinates travel as `QPointF(longitude, latitude)`, x pointing east.
namespace FlightTrack {

/// Curves of fewer samples than this keep every sample.
inline constexpr int curveTarget = 300;

/// Every `n / 300`-th sample (every one below 300), plus the last when the step skipped it;
/// altitudes in feet unless `metric`, missing ones as 0.
[[nodiscard]] QList<AltPoint> altitudeCurve(const QList<TrackSample> &track, bool metric);
/// The flat two-point curve that gives a flight without telemetry its span.
[[nodiscard]] QList<AltPoint> flatCurve(double duration);

/// Highest altitude in feet (metres when `metric`), truncated; 0 without altitudes.
[[nodiscard]] int maxAltitude(const QList<TrackSample> &track, bool metric);

/// One coordinate per sample, in track order.
[[nodiscard]] QList<QPointF> path(const QList<TrackSample> &track);
/// Coordinates of the samples from `in` to `out`, both ends included.
[[nodiscard]] QList<QPointF> markedPath(const QList<TrackSample> &track, double in, double out);

/// A clip covers a moment when they overlap by more than 55 % of the shorter of the two.
[[nodiscard]] bool covers(const Clip &clip, const Moment &moment);
/// The moments no clip covers, in their order.
[[nodiscard]] QList<Moment> uncoveredMoments(const QList<Moment> &moments, const QList<Clip> &clips);

/// "%.4f°N %.4f°E": hemispheres by sign, 0 counting as north and east.
[[nodiscard]] QString formatCoordinate(double lat, double lon);

} // namespace FlightTrack
