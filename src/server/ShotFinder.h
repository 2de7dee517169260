#pragma once

#include "FlightData.h"
#include "Shot.h"
#include "TrackFeatures.h"

#include <vector>

/// @brief Names the shots of a flight from its telemetry alone: orbits, reveals, top-down
/// views, fly-bys and fast passes, climbs, descents and hover-pans.
///
/// Each kind is a stretch of samples where a measure holds (turning steadily while moving, the
/// camera pointing down…), with short interruptions bridged and too-short stretches dropped;
/// the shot's span is that stretch. One pass over the samples per measure.
namespace ShotFinder {
/// The shots in order of their start; none for a track with fewer than two samples.
[[nodiscard]] std::vector<Shot> find(const std::vector<TelemetrySample> &track);

/// The shots of the aircraft's movement: orbits, fly-bys and fast passes, climbs, descents,
/// hover-pans. Appended to `out`.
void findMotion(const TrackFeatures &f, std::vector<Shot> &out);
/// The shots of the camera's aim: top-down views and reveals. Appended to `out`.
void findCamera(const TrackFeatures &f, std::vector<Shot> &out);
}
