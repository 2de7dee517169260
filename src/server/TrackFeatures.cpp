#include "TrackFeatures.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace {
constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
constexpr double metresPerDegree = 6371000.0 * std::numbers::pi / 180.0;

double degrees(double radians)
{
    return radians * 180.0 / std::numbers::pi;
}

/// For each sample the first and last sample within `half` seconds of it; where a side of the
/// window is empty (sparse or gapped telemetry) the direct neighbour stands in.
struct Windows {
    std::vector<std::size_t> from, to;

    Windows(const std::vector<double> &t, double half) : from(t.size()), to(t.size())
    {
        const std::size_t n = t.size();
        std::size_t lo = 0, hi = 0;
        for (std::size_t i = 0; i < n; ++i) {
            while (t[lo] < t[i] - half)
                ++lo;
            hi = std::max(hi, i);
            while (hi + 1 < n && t[hi + 1] <= t[i] + half)
                ++hi;
            from[i] = lo == i && i > 0 ? i - 1 : lo;
            to[i] = hi == i && i + 1 < n ? i + 1 : hi;
        }
    }

    /// Change of `v` per second across the window of sample i; NaN where either end is unknown.
    [[nodiscard]] double rate(const std::vector<double> &v, const std::vector<double> &t, std::size_t i) const
    {
        const double dt = t[to[i]] - t[from[i]];
        return dt > 0 ? (v[to[i]] - v[from[i]]) / dt : 0.0;
    }
};

/// An angle unwrapped into a running total, which only counts steps between samples for which
/// `counts` holds (elsewhere the angle is noise, or unknown).
template <typename Counts>
std::vector<double> unwrapped(const std::vector<double> &angle, Counts counts)
{
    std::vector<double> total(angle.size(), 0.0);
    for (std::size_t i = 1; i < angle.size(); ++i)
        total[i] = total[i - 1] + (counts(i - 1) && counts(i) ? TrackFeatures::turn(angle[i - 1], angle[i]) : 0.0);
    return total;
}
} // namespace

TrackFeatures TrackFeatures::of(const std::vector<TelemetrySample> &track)
{
    TrackFeatures f;
    const std::size_t n = track.size();
    if (n == 0)
        return f;
    f.t.resize(n), f.alt.resize(n), f.yaw.resize(n), f.pitch.resize(n);
    f.m_x.resize(n), f.m_y.resize(n);
    const double lat0 = track.front().lat, lon0 = track.front().lon;
    const double eastScale = metresPerDegree * std::cos(lat0 * std::numbers::pi / 180.0);
    for (std::size_t i = 0; i < n; ++i) {
        const TelemetrySample &s = track[i];
        f.t[i] = s.t;
        f.m_x[i] = (s.lon - lon0) * eastScale;
        f.m_y[i] = (s.lat - lat0) * metresPerDegree;
        f.alt[i] = s.relAlt.value_or(unknown);
        f.yaw[i] = s.yaw.value_or(unknown);
        f.pitch[i] = s.gimbalPitch.value_or(unknown);
    }

    const Windows half(f.t, 0.5);
    f.speed.resize(n), f.course.resize(n), f.climb.resize(n), f.yawRate.resize(n), f.pitchRate.resize(n);
    for (std::size_t i = 0; i < n; ++i) {
        const double vx = half.rate(f.m_x, f.t, i), vy = half.rate(f.m_y, f.t, i);
        f.speed[i] = std::hypot(vx, vy);
        f.course[i] = degrees(std::atan2(vx, vy));
        const double climb = half.rate(f.alt, f.t, i);
        f.climb[i] = std::isnan(climb) ? 0.0 : climb;
        f.pitchRate[i] = half.rate(f.pitch, f.t, i);
    }

    f.courseTotal = unwrapped(f.course, [&f](std::size_t i) { return f.speed[i] >= movingSpeed; });
    f.yawTotal = unwrapped(f.yaw, [&f](std::size_t i) { return !std::isnan(f.yaw[i]); });
    // Turning is measured over a wider window than speed: a course over short chords wobbles
    // with GPS noise, and its rate of change wobbles more.
    const Windows wide(f.t, 0.75);
    f.turnRate.resize(n);
    for (std::size_t i = 0; i < n; ++i) {
        f.turnRate[i] = wide.rate(f.courseTotal, f.t, i);
        f.yawRate[i] = std::isnan(f.yaw[i]) ? unknown : half.rate(f.yawTotal, f.t, i);
    }
    return f;
}

double TrackFeatures::turn(double from, double to)
{
    return std::remainder(to - from, 360.0);
}

double TrackFeatures::straightDistance(std::size_t a, std::size_t b) const
{
    return std::hypot(m_x[b] - m_x[a], m_y[b] - m_y[a]);
}

double TrackFeatures::medianSpeed(std::size_t a, std::size_t b) const
{
    std::vector<double> speeds(speed.begin() + std::ptrdiff_t(a), speed.begin() + std::ptrdiff_t(b) + 1);
    const auto middle = speeds.begin() + std::ptrdiff_t(speeds.size() / 2);
    std::nth_element(speeds.begin(), middle, speeds.end());
    return *middle;
}

double TrackFeatures::meanAltitude(std::size_t a, std::size_t b) const
{
    double sum = 0;
    std::size_t count = 0;
    for (std::size_t i = a; i <= b; ++i) {
        if (!std::isnan(alt[i]))
            sum += alt[i], ++count;
    }
    return count ? sum / double(count) : unknown;
}
