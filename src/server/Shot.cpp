#include "Shot.h"

#include <algorithm>

namespace Shots {

const char *name(ShotKind kind)
{
    switch (kind) {
    case ShotKind::Orbit: return "orbit";
    case ShotKind::Reveal: return "reveal";
    case ShotKind::TopDown: return "top-down";
    case ShotKind::FlyBy: return "fly-by";
    case ShotKind::FastPass: return "fast-pass";
    case ShotKind::Climb: return "climb";
    case ShotKind::Descent: return "descent";
    case ShotKind::HoverPan: return "hover-pan";
    }
    return "shot";
}

const char *label(ShotKind kind)
{
    switch (kind) {
    case ShotKind::Orbit: return "Orbit";
    case ShotKind::Reveal: return "Reveal";
    case ShotKind::TopDown: return "Top-down";
    case ShotKind::FlyBy: return "Fly-by";
    case ShotKind::FastPass: return "Fast pass";
    case ShotKind::Climb: return "Climb";
    case ShotKind::Descent: return "Descent";
    case ShotKind::HoverPan: return "Hover-pan";
    }
    return "Shot";
}

bool sameStretch(double startA, double endA, double startB, double endB)
{
    const double overlap = std::min(endA, endB) - std::max(startA, startB);
    return overlap > 0.55 * std::min(endA - startA, endB - startB);
}

} // namespace Shots
