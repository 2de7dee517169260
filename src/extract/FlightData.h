#pragma once

#include "RawJSON.h"

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

/// @brief One telemetry sample of a flight; absent values are written as null.
struct TelemetrySample {
    double t = 0;   ///< seconds from the start of the clip
    double lat = 0; ///< degrees, north positive
    double lon = 0; ///< degrees, east positive
    std::optional<double> relAlt;
    std::optional<double> absAlt;
    std::optional<double> yaw;
    std::optional<double> pitch;
    std::optional<double> roll;
    std::optional<double> gimbalYaw;
    std::optional<double> gimbalPitch;
    std::optional<double> iso;
    std::optional<RawJSON> shutter;
    std::optional<double> fnum;
    double speed = 0; ///< metres per second over the half-second window
    double climb = 0; ///< metres per second over the same window

    bool operator==(const TelemetrySample &) const = default;
};

/// @brief Box around a track, in degrees.
struct FlightBounds {
    double minLat = 0;
    double maxLat = 0;
    double minLon = 0;
    double maxLon = 0;
    bool operator==(const FlightBounds &) const = default;
};

/// @brief Unweighted mean position of a track.
struct FlightCentroid {
    double lat = 0;
    double lon = 0;
    bool operator==(const FlightCentroid &) const = default;
};

/// @brief Lowest and highest relative altitude, metres.
struct FlightRelAlt {
    double min = 0;
    double max = 0;
    bool operator==(const FlightRelAlt &) const = default;
};

/// @brief Display size of the proxy video.
struct FlightVideo {
    int w = 0;
    int h = 0;
    bool vertical = false;
    bool operator==(const FlightVideo &) const = default;
};

/// @brief Summary of a flight: the `meta` object of flight.json.
struct FlightMeta {
    QString model = QStringLiteral("DJI");
    double duration = 0;
    std::int64_t samples = 0;
    std::optional<FlightBounds> bounds;     ///< written as null when absent
    std::optional<FlightCentroid> centroid; ///< written as null when absent
    std::optional<FlightRelAlt> relAlt;     ///< written as null when absent
    double maxSpeed = 0;
    double pathLength = 0;
    QString source;
    std::optional<QString> created;   ///< key left out when absent
    std::optional<QString> place;     ///< key left out when absent
    std::optional<FlightVideo> video; ///< key left out when absent

    bool operator==(const FlightMeta &) const = default;
};

/// @brief The flight.json document: a summary and the samples in increasing time.
struct FlightData {
    FlightMeta meta;
    std::vector<TelemetrySample> track;

    bool operator==(const FlightData &) const = default;
};
