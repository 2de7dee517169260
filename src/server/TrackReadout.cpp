#include "TrackReadout.h"

#include <algorithm>

namespace {
TrackReadout::Reading readingOf(const TelemetrySample &s)
{
    return {s.lat, s.lon, s.speed, s.relAlt.value_or(0.0)};
}
} // namespace

TrackReadout::Reading TrackReadout::at(double t) const
{
    if (m_track.empty())
        return {};
    const auto after = std::upper_bound(m_track.begin(), m_track.end(), t,
                                        [](double time, const TelemetrySample &s) { return time < s.t; });
    if (after == m_track.begin())
        return readingOf(m_track.front());
    if (after == m_track.end())
        return readingOf(m_track.back());
    const TelemetrySample &a = *(after - 1);
    const TelemetrySample &b = *after;
    const double span = b.t - a.t;
    const double f = span > 0 ? (t - a.t) / span : 0.0;
    const auto mix = [f](double x, double y) { return x + (y - x) * f; };
    const Reading ra = readingOf(a), rb = readingOf(b);
    return {mix(ra.lat, rb.lat), mix(ra.lon, rb.lon), mix(ra.speed, rb.speed), mix(ra.relAlt, rb.relAlt)};
}
