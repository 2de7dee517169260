#pragma once

#include <string>

/// The kinds of shot the analysis names from a flight's telemetry.
enum class ShotKind { Orbit, Reveal, TopDown, FlyBy, FastPass, Climb, Descent, HoverPan };

/// @brief One shot found in a flight: where it is, how good it is and why it was picked.
struct Shot {
    ShotKind kind = ShotKind::Orbit;
    double start = 0;  ///< seconds into the flight's video
    double end = 0;
    double score = 0;  ///< 0..1, higher is better
    std::string why;   ///< "Orbit · 270° around one point"

    [[nodiscard]] double length() const { return end - start; }
};

namespace Shots {
/// The wire name, also used in ids: "orbit", "top-down", "fast-pass"…
[[nodiscard]] const char *name(ShotKind kind);
/// The name a pilot reads as the clip's label: "Orbit", "Top-down", "Fast pass"…
[[nodiscard]] const char *label(ShotKind kind);

/// Whether two spans are one and the same stretch of footage: they overlap by more than 55 % of
/// the shorter one. The player hides a moment under a clip by the same rule.
[[nodiscard]] bool sameStretch(double startA, double endA, double startB, double endB);
}
