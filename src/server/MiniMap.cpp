#include "MiniMap.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>

namespace {
/// More points than this add nothing a map this small can show.
constexpr std::size_t mostPoints = 240;
constexpr double metresPerDegree = 111320.0;

std::string number(double v)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", v);
    return text;
}

std::string at(const MiniMap::Point &p)
{
    return number(p.x) + " " + number(p.y);
}
} // namespace

MiniMap::MiniMap(const std::vector<TelemetrySample> &track, double side, double pad) : m_side(side)
{
    if (track.empty())
        return;
    double minLat = track.front().lat, maxLat = minLat, minLon = track.front().lon, maxLon = minLon;
    for (const TelemetrySample &s : track) {
        minLat = std::min(minLat, s.lat);
        maxLat = std::max(maxLat, s.lat);
        minLon = std::min(minLon, s.lon);
        maxLon = std::max(maxLon, s.lon);
    }
    m_midLat = (minLat + maxLat) / 2;
    m_midLon = (minLon + maxLon) / 2;
    const double cosLat = std::cos(m_midLat * std::numbers::pi / 180.0);
    const double spanMetres = std::max((maxLat - minLat) * metresPerDegree, (maxLon - minLon) * metresPerDegree * cosLat);
    m_scale = spanMetres > 0 ? (side - 2 * pad) / spanMetres : 0.0;

    const std::size_t step = std::max<std::size_t>(1, track.size() / mostPoints);
    for (std::size_t i = 0; i < track.size(); i += step)
        m_points.push_back(project(track[i].lat, track[i].lon));
    if ((track.size() - 1) % step != 0)
        m_points.push_back(project(track.back().lat, track.back().lon));
}

MiniMap::Point MiniMap::project(double lat, double lon) const
{
    const double cosLat = std::cos(m_midLat * std::numbers::pi / 180.0);
    const double east = (lon - m_midLon) * metresPerDegree * cosLat;
    const double north = (lat - m_midLat) * metresPerDegree;
    return {m_side / 2 + east * m_scale, m_side / 2 - north * m_scale};
}

std::string MiniMap::path(double width) const
{
    std::string out;
    const double half = width / 2;
    for (std::size_t i = 1; i < m_points.size(); ++i) {
        const Point a = m_points[i - 1], b = m_points[i];
        const double dx = b.x - a.x, dy = b.y - a.y;
        const double length = std::hypot(dx, dy);
        if (length < 0.05)
            continue;
        // The left normal of the leg; with the corners in this order every strip turns alike.
        const double nx = -dy / length * half, ny = dx / length * half;
        // Each strip runs on past its ends by half its width, so legs meet without notches.
        const double ex = dx / length * half, ey = dy / length * half;
        const Point p0{a.x - ex + nx, a.y - ey + ny}, p1{b.x + ex + nx, b.y + ey + ny};
        const Point p2{b.x + ex - nx, b.y + ey - ny}, p3{a.x - ex - nx, a.y - ey - ny};
        out += "m " + at(p0) + " l " + at(p1) + " " + at(p2) + " " + at(p3) + " ";
    }
    return out;
}

std::string MiniMap::square(double side)
{
    const std::string s = number(side);
    return "m 0 0 l " + s + " 0 " + s + " " + s + " 0 " + s;
}

std::string MiniMap::dot(double radius)
{
    // Four Bézier quarters; 0.552 puts the control points where a circle needs them.
    const std::string r = number(radius), k = number(radius * 0.552);
    return "m 0 -" + r + " b " + k + " -" + r + " " + r + " -" + k + " " + r + " 0 b " + r + " " + k + " " + k + " " + r
        + " 0 " + r + " b -" + k + " " + r + " -" + r + " " + k + " -" + r + " 0 b -" + r + " -" + k + " -" + k + " -"
        + r + " 0 -" + r;
}
