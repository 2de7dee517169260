#pragma once

#include "FlightData.h"

#include <string>
#include <vector>

/// @brief A flight's path drawn small in a square, as ASS drawing commands: the line of the
/// whole flight, and where on it a moment of the flight lies.
class MiniMap
{
public:
    struct Point {
        double x = 0;
        double y = 0;
    };

    /// A map `side` pixels square whose path keeps `pad` pixels from the edges; north is up.
    MiniMap(const std::vector<TelemetrySample> &track, double side, double pad);

    /// Where a position falls in the square; a flight that never moved sits in the middle.
    [[nodiscard]] Point project(double lat, double lon) const;
    /// The path as filled strips `width` pixels wide, one per leg, all turning the same way so
    /// that where legs overlap they stay filled.
    [[nodiscard]] std::string path(double width) const;

    /// The square itself.
    [[nodiscard]] static std::string square(double side);
    /// A round dot of `radius` around the drawing's origin.
    [[nodiscard]] static std::string dot(double radius);

private:
    std::vector<Point> m_points;
    double m_midLat = 0, m_midLon = 0;
    double m_scale = 0;  ///< pixels per metre
    double m_side = 0;
};
