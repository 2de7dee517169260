// The shots of the camera's aim, from the gimbal's pitch and the aircraft's heading.
#include "ShotFinder.h"
#include "ShotRuns.h"

#include <cmath>

using ShotRuns::Run;

namespace {

// The camera looking (nearly) straight down for a while: a map-like view of the ground.
void topDowns(const TrackFeatures &f, std::vector<Shot> &out)
{
    const auto holds = [&](std::size_t i) { return f.pitch[i] <= -75.0; };
    for (const Run &r : ShotRuns::find(f.t, holds, 0.5, 3.0)) {
        const double height = f.meanAltitude(r.first, r.last);
        const QString words = height >= 1
            ? QStringLiteral("camera straight down from %1 m").arg(ShotRuns::whole(height))
            : QStringLiteral("camera straight down for %1 s").arg(ShotRuns::whole(f.t[r.last] - f.t[r.first]));
        const double score = 0.6 + 0.15 * ShotRuns::within(std::isnan(height) ? 0.0 : height, 10, 60);
        out.push_back(ShotRuns::shot(ShotKind::TopDown, f, r, score, words));
    }
}

// The camera tilting up from the ground to the view: the scene opens up. It must end near
// the horizon, or it is only a change of framing.
void tiltReveals(const TrackFeatures &f, std::vector<Shot> &out)
{
    const auto holds = [&](std::size_t i) { return f.pitchRate[i] >= 5.0; };
    for (const Run &r : ShotRuns::find(f.t, holds, 0.3, 1.5)) {
        const double from = f.pitch[r.first], to = f.pitch[r.last];
        if (!(to - from >= 25 && to >= -40))
            continue;
        out.push_back(ShotRuns::shot(ShotKind::Reveal, f, r, 0.75 + 0.15 * ShotRuns::within(to - from, 25, 65),
                             QStringLiteral("camera tilts up from %1 to %2")
                                 .arg(ShotRuns::signedDegrees(from), ShotRuns::signedDegrees(to))));
    }
}

// Flying backwards, away from what the camera faces: the subject shrinks as its setting grows.
// Only telemetry that records the real heading can show it; a heading derived from the path
// always points forward.
void pullBackReveals(const TrackFeatures &f, std::vector<Shot> &out)
{
    const auto holds = [&](std::size_t i) {
        return f.speed[i] >= 1.5 && !std::isnan(f.yaw[i])
            && std::abs(TrackFeatures::turn(f.yaw[i], f.course[i])) >= 135.0;
    };
    for (const Run &r : ShotRuns::find(f.t, holds, 0.5, 3.0)) {
        const double rise = f.alt[r.last] - f.alt[r.first];
        const QString seconds = ShotRuns::whole(f.t[r.last] - f.t[r.first]);
        out.push_back(ShotRuns::shot(ShotKind::Reveal, f, r, rise >= 5 ? 0.8 : 0.7,
                             rise >= 5 ? QStringLiteral("pulls back and up for %1 s").arg(seconds)
                                       : QStringLiteral("pulls back for %1 s").arg(seconds)));
    }
}

} // namespace

namespace ShotFinder {

void findCamera(const TrackFeatures &f, std::vector<Shot> &out)
{
    topDowns(f, out);
    tiltReveals(f, out);
    pullBackReveals(f, out);
}

} // namespace ShotFinder
