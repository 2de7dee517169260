#include "TrackLookup.h"

#include <cmath>

namespace TrackLookup {

std::optional<TrackSample> sample(const QList<TrackSample> &track, double t)
{
    if (track.isEmpty())
        return std::nullopt;
    if (!(t > track.first().t))  // NaN reads as the start
        return track.first();
    if (t >= track.last().t)
        return track.last();
    qsizetype lo = 0, hi = track.size() - 1;
    while (lo < hi) {
        const qsizetype mid = (lo + hi + 1) / 2;
        if (track[mid].t <= t)
            lo = mid;
        else
            hi = mid - 1;
    }
    return track[lo];
}

double heading(double degrees)
{
    if (!std::isfinite(degrees))
        return 0;
    double turned = std::fmod(degrees, 360.0);
    if (turned < 0)
        turned += 360.0;
    return turned >= 360.0 ? 0.0 : turned;  // a hair below zero rounds up to 360 when turned
}

} // namespace TrackLookup
