#pragma once

#include "FlightData.h"

#include <vector>

/// @brief A flight's telemetry read at any time of its video, between samples by straight lines.
class TrackReadout
{
public:
    struct Reading {
        double lat = 0;
        double lon = 0;
        double speed = 0;   ///< metres per second
        double relAlt = 0;  ///< metres above take-off; 0 when not known
    };

    explicit TrackReadout(const std::vector<TelemetrySample> &track) : m_track(track) {}

    [[nodiscard]] bool empty() const { return m_track.empty(); }
    /// The reading at `t` seconds; before the first sample or after the last, that sample's.
    [[nodiscard]] Reading at(double t) const;
    [[nodiscard]] const std::vector<TelemetrySample> &samples() const { return m_track; }

private:
    const std::vector<TelemetrySample> &m_track;
};
