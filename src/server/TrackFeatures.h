#pragma once

#include "FlightData.h"

#include <cstddef>
#include <vector>

/// @brief What the shot finder reads off each telemetry sample, measured over short windows
/// centred on it: a change of motion shows where it happened, not half a window late (the
/// `speed` and `climb` of flight.json look back only).
///
/// Angles are compass degrees (0 north, clockwise positive). Values a sample lacks are NaN.
struct TrackFeatures {
    std::vector<double> t;
    std::vector<double> alt;         ///< relative altitude, m
    std::vector<double> speed;       ///< horizontal, m/s
    std::vector<double> course;      ///< direction of travel
    std::vector<double> climb;       ///< m/s, 0 where the altitude is unknown
    std::vector<double> courseTotal; ///< course unwrapped from the start, counted only while moving
    std::vector<double> turnRate;    ///< of the course, degrees/s
    std::vector<double> yaw;         ///< aircraft heading
    std::vector<double> yawTotal;    ///< heading unwrapped from the start
    std::vector<double> yawRate;     ///< degrees/s
    std::vector<double> pitch;       ///< gimbal pitch, -90 looks straight down
    std::vector<double> pitchRate;   ///< degrees/s, positive tilting up

    /// Below this the course is GPS noise, not a direction.
    static constexpr double movingSpeed = 1.0;

    [[nodiscard]] static TrackFeatures of(const std::vector<TelemetrySample> &track);
    /// The turn from one angle to another, folded into -180..180.
    [[nodiscard]] static double turn(double from, double to);
    [[nodiscard]] std::size_t size() const { return t.size(); }
    /// Metres between samples `a` and `b` on the ground.
    [[nodiscard]] double straightDistance(std::size_t a, std::size_t b) const;
    /// Median horizontal speed from sample `a` to `b`, m/s: of the windowed speeds (the sum of
    /// the steps grows with GPS noise at high sample rates), unmoved by the ramps at either end.
    [[nodiscard]] double medianSpeed(std::size_t a, std::size_t b) const;
    /// Mean of the known altitudes from sample `a` to `b`; NaN when none is known.
    [[nodiscard]] double meanAltitude(std::size_t a, std::size_t b) const;

private:
    std::vector<double> m_x, m_y;  ///< metres east and north of the first sample
};
