// The shots of the aircraft's movement.
#include "ShotFinder.h"
#include "ShotRuns.h"

#include <cmath>
#include <numbers>

using ShotRuns::Run;

namespace {

/// The run with `seconds` more samples on either side, within the track.
Run widened(const TrackFeatures &f, Run r, double seconds)
{
    const double from = f.t[r.first] - seconds, to = f.t[r.last] + seconds;
    while (r.first > 0 && f.t[r.first - 1] >= from)
        --r.first;
    while (r.last + 1 < f.size() && f.t[r.last + 1] <= to)
        ++r.last;
    return r;
}

// Circling one point: turning the same way, steadily, while moving at filming pace. A wide
// sweeping turn is not an orbit, nor is a quick wiggle: half a circle at least, within 150 m.
void orbits(const TrackFeatures &f, std::vector<Shot> &out)
{
    for (const double way : {1.0, -1.0}) {
        const auto holds = [&](std::size_t i) { return f.speed[i] >= 2.0 && way * f.turnRate[i] >= 5.0; };
        for (const Run &r : ShotRuns::find(f.t, holds, 1.0, 4.0)) {
            // The run's ends sit where the windowed turn rate crosses the threshold, inside the
            // turning; the whole turn is read from a window's width further out, and told in
            // eighths of a circle, as much as a course from GPS can tell.
            const Run whole = widened(f, r, 0.75);
            const double turned = std::abs(f.courseTotal[whole.last] - f.courseTotal[whole.first]);
            const double radiansPerSecond = turned * std::numbers::pi / 180.0 / (f.t[r.last] - f.t[r.first]);
            if (turned < 150 || f.medianSpeed(r.first, r.last) / radiansPerSecond > 150)
                continue;
            out.push_back(ShotRuns::shot(ShotKind::Orbit, f, r, 0.7 + 0.25 * ShotRuns::within(turned, 150, 360),
                                 ShotRuns::whole(turned, 45) + QStringLiteral("° around one point")));
        }
    }
}

// Flying fast in a straight line; above 13 m/s it is a fast pass, below a fly-by.
void passes(const TrackFeatures &f, std::vector<Shot> &out)
{
    const auto holds = [&](std::size_t i) { return f.speed[i] >= 8.0 && std::abs(f.turnRate[i]) < 6.0; };
    for (const Run &r : ShotRuns::find(f.t, holds, 0.5, 2.0)) {
        const double speed = f.medianSpeed(r.first, r.last);
        if (f.straightDistance(r.first, r.last) < 0.9 * speed * (f.t[r.last] - f.t[r.first]))
            continue;
        const double altitude = f.meanAltitude(r.first, r.last);
        const bool low = !std::isnan(altitude) && altitude <= 20;
        const ShotKind kind = speed >= 13 ? ShotKind::FastPass : ShotKind::FlyBy;
        out.push_back(ShotRuns::shot(kind, f, r, 0.55 + 0.3 * ShotRuns::within(speed, 8, 20) + (low ? 0.05 : 0.0),
                             ShotRuns::whole(speed) + (low ? QStringLiteral(" m/s, straight and low")
                                                           : QStringLiteral(" m/s in a straight line"))));
    }
}

// Rising or sinking steadily by a height worth showing; "straight" when hardly moving across.
void verticals(const TrackFeatures &f, std::vector<Shot> &out)
{
    for (const double way : {1.0, -1.0}) {
        const auto holds = [&](std::size_t i) { return way * f.climb[i] >= 1.0; };
        for (const Run &r : ShotRuns::find(f.t, holds, 0.5, 3.0)) {
            const double height = way * (f.alt[r.last] - f.alt[r.first]);
            if (!(height >= 8))
                continue;
            const bool straight = f.medianSpeed(r.first, r.last) < 1.5;
            const QString seconds = ShotRuns::whole(f.t[r.last] - f.t[r.first]);
            const QString words = way > 0 ? (straight ? QStringLiteral("straight up %1 m in %2 s")
                                                      : QStringLiteral("up %1 m in %2 s"))
                                          : (straight ? QStringLiteral("straight down %1 m in %2 s")
                                                      : QStringLiteral("down %1 m in %2 s"));
            out.push_back(ShotRuns::shot(way > 0 ? ShotKind::Climb : ShotKind::Descent, f, r,
                                 (way > 0 ? 0.45 : 0.4) + 0.3 * ShotRuns::within(height, 8, 60),
                                 words.arg(ShotRuns::whole(height), seconds)));
        }
    }
}

// Holding position while the heading turns one way: a panorama from one spot.
void hoverPans(const TrackFeatures &f, std::vector<Shot> &out)
{
    for (const double way : {1.0, -1.0}) {
        const auto holds = [&](std::size_t i) {
            return f.speed[i] < 1.2 && std::abs(f.climb[i]) < 0.6 && way * f.yawRate[i] >= 4.0;
        };
        for (const Run &r : ShotRuns::find(f.t, holds, 0.5, 3.0)) {
            const double turned = std::abs(f.yawTotal[r.last] - f.yawTotal[r.first]);
            if (turned < 45)
                continue;
            out.push_back(ShotRuns::shot(ShotKind::HoverPan, f, r, 0.5 + 0.2 * ShotRuns::within(turned, 45, 180),
                                 ShotRuns::whole(turned, 5) + QStringLiteral("° turn in place")));
        }
    }
}

} // namespace

namespace ShotFinder {

void findMotion(const TrackFeatures &f, std::vector<Shot> &out)
{
    orbits(f, out);
    passes(f, out);
    verticals(f, out);
    hoverPans(f, out);
}

} // namespace ShotFinder
