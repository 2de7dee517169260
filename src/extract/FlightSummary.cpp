#include "FlightSummary.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

double radians(double degrees)
{
    return degrees * std::numbers::pi / 180.0;
}

std::vector<TelemetrySample> monotonic(std::vector<TelemetrySample> samples)
{
    // Earlier or repeated times (a file join, a duplicate cue) are dropped until time moves on.
    std::vector<TelemetrySample> kept;
    kept.reserve(samples.size());
    double last = -1.0;
    for (TelemetrySample &s : samples) {
        if (s.t > last) {
            last = s.t;
            kept.push_back(std::move(s));
        }
    }
    return kept;
}

// Readers let through any finite number, so absurd inputs (an altitude of 1e308) could overflow
// a rate; such a rate means nothing and is written as 0, never as a value flight.json cannot hold.
double finiteOrZero(double value)
{
    return std::isfinite(value) ? value : 0.0;
}

// The oldest sample inside the half-second window, or the direct predecessor when the window is empty.
std::size_t baseIndex(const std::vector<TelemetrySample> &track, std::size_t i)
{
    std::size_t j = i;
    while (j > 0 && track[i].t - track[j - 1].t < FlightSummary::speedWindowSeconds)
        --j;
    if (j == i && i > 0)
        return i - 1;
    return j;
}

void fillMotion(std::vector<TelemetrySample> &track, bool deriveYaw)
{
    using namespace FlightSummary;
    for (std::size_t i = 0; i < track.size(); ++i) {
        TelemetrySample &s = track[i];
        const TelemetrySample &base = track[baseIndex(track, i)];
        const double dt = s.t - base.t;
        const double metres = distance(base.lat, base.lon, s.lat, s.lon);
        if (dt > 0) {
            s.speed = finiteOrZero(metres / dt);
            s.climb = finiteOrZero((s.relAlt.value_or(0) - base.relAlt.value_or(0)) / dt);
        } else {
            s.speed = 0;
            s.climb = 0;
        }
        if (deriveYaw && !s.yaw) {
            if (dt > 0 && metres > minHeadingMetres)
                s.yaw = bearing(base.lat, base.lon, s.lat, s.lon);
            else if (i > 0)
                s.yaw = track[i - 1].yaw; // hovering holds the last heading
        }
    }
    if (!deriveYaw)
        return;
    // Samples before the first heading (a hover at the start) take that first heading.
    const auto first = std::find_if(track.begin(), track.end(), [](const TelemetrySample &s) { return s.yaw.has_value(); });
    const double fill = first == track.end() ? 0.0 : *first->yaw;
    for (auto it = track.begin(); it != first; ++it)
        it->yaw = fill;
}

} // namespace

namespace FlightSummary {

double distance(double lat1, double lon1, double lat2, double lon2)
{
    const double p1 = radians(lat1);
    const double p2 = radians(lat2);
    const double dp = radians(lat2 - lat1);
    const double dl = radians(lon2 - lon1);
    const double a = std::pow(std::sin(dp / 2), 2) + std::cos(p1) * std::cos(p2) * std::pow(std::sin(dl / 2), 2);
    return earthDiameterMetres * std::asin(std::sqrt(std::min(1.0, a)));
}

double bearing(double lat1, double lon1, double lat2, double lon2)
{
    const double p1 = radians(lat1);
    const double p2 = radians(lat2);
    const double dl = radians(lon2 - lon1);
    const double y = std::cos(p2) * std::sin(dl);
    const double x = std::cos(p1) * std::sin(p2) - std::sin(p1) * std::cos(p2) * std::cos(dl);
    return std::atan2(y, x) * 180.0 / std::numbers::pi;
}

FlightData makeFlightData(std::vector<TelemetrySample> samples, const QString &model, std::optional<double> duration,
                          const QString &source, bool deriveYaw)
{
    FlightData data;
    data.track = monotonic(std::move(samples));
    std::vector<TelemetrySample> &track = data.track;
    fillMotion(track, deriveYaw);

    FlightMeta &meta = data.meta;
    meta.model = model;
    meta.source = source;
    meta.samples = static_cast<std::int64_t>(track.size());
    if (track.empty())
        return data;
    meta.duration = duration && *duration != 0 ? *duration : track.back().t;

    FlightBounds bounds{track[0].lat, track[0].lat, track[0].lon, track[0].lon};
    long double sumLat = 0; // wide enough that no sum of finite doubles overflows
    long double sumLon = 0;
    for (std::size_t i = 0; i < track.size(); ++i) {
        const TelemetrySample &s = track[i];
        bounds.minLat = std::min(bounds.minLat, s.lat);
        bounds.maxLat = std::max(bounds.maxLat, s.lat);
        bounds.minLon = std::min(bounds.minLon, s.lon);
        bounds.maxLon = std::max(bounds.maxLon, s.lon);
        sumLat += s.lat;
        sumLon += s.lon;
        if (s.relAlt) {
            if (!meta.relAlt)
                meta.relAlt = FlightRelAlt{*s.relAlt, *s.relAlt};
            meta.relAlt->min = std::min(meta.relAlt->min, *s.relAlt);
            meta.relAlt->max = std::max(meta.relAlt->max, *s.relAlt);
        }
        meta.maxSpeed = i == 0 ? s.speed : std::max(meta.maxSpeed, s.speed);
        if (i > 0)
            meta.pathLength += distance(track[i - 1].lat, track[i - 1].lon, s.lat, s.lon);
    }
    meta.bounds = bounds;
    const auto n = static_cast<long double>(track.size());
    meta.centroid = FlightCentroid{static_cast<double>(sumLat / n), static_cast<double>(sumLon / n)};
    return data;
}

} // namespace FlightSummary
