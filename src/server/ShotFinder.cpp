#include "ShotFinder.h"

#include <algorithm>

namespace ShotFinder {

std::vector<Shot> find(const std::vector<TelemetrySample> &track)
{
    std::vector<Shot> shots;
    if (track.size() < 2)
        return shots;
    const TrackFeatures features = TrackFeatures::of(track);
    findMotion(features, shots);
    findCamera(features, shots);
    std::stable_sort(shots.begin(), shots.end(), [](const Shot &a, const Shot &b) { return a.start < b.start; });
    return shots;
}

} // namespace ShotFinder
