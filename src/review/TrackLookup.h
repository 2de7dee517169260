#pragma once

#include "FlightRecords.h"

#include <QList>

#include <optional>

/// @brief Telemetry at a moment of a flight's video.
namespace TrackLookup {

/// The latest sample not after `t`, without interpolation: the first sample for times before
/// the track, the last for times after it; nothing for an empty track. `track` is in time order.
[[nodiscard]] std::optional<TrackSample> sample(const QList<TrackSample> &track, double t);

/// A heading in degrees brought into 0 up to (not including) 360.
[[nodiscard]] double heading(double degrees);

} // namespace TrackLookup
