#pragma once

#include "Shot.h"
#include "TrackFeatures.h"

#include <QString>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

/// @brief The stretches of a track where a measure holds, the common step of every shot kind.
namespace ShotRuns {

/// Samples `first` to `last`, both included.
struct Run {
    std::size_t first = 0;
    std::size_t last = 0;
};

/// Stretches of consecutive samples for which `holds(i)` is true. Stretches less than `bridge`
/// seconds apart become one (a wobble in the middle of a shot doesn't split it); stretches shorter
/// than `minimum` seconds are dropped.
template <typename Holds>
std::vector<Run> find(const std::vector<double> &t, Holds holds, double bridge, double minimum)
{
    std::vector<Run> joined;
    const std::size_t n = t.size();
    for (std::size_t i = 0; i < n;) {
        if (!holds(i)) {
            ++i;
            continue;
        }
        Run run{i, i};
        while (run.last + 1 < n && holds(run.last + 1))
            ++run.last;
        if (!joined.empty() && t[run.first] - t[joined.back().last] < bridge)
            joined.back().last = run.last;
        else
            joined.push_back(run);
        i = run.last + 1;
    }
    std::vector<Run> kept;
    for (const Run &run : joined) {
        if (t[run.last] - t[run.first] >= minimum)
            kept.push_back(run);
    }
    return kept;
}

/// A whole number for a reason text, rounded to `step`: 268 -> "270" with a step of 10.
inline QString whole(double value, double step = 1)
{
    return QString::number(static_cast<long long>(std::lround(value / step) * step));
}

/// Degrees with a true minus sign, as a pilot reads them: "−70°".
inline QString signedDegrees(double value)
{
    const long long rounded = std::lround(value);
    return (rounded < 0 ? QStringLiteral("\u2212") : QString()) + QString::number(std::llabs(rounded))
        + QStringLiteral("°");
}

/// A shot label and its particulars as one reason: "Orbit · 270° around one point".
inline std::string reason(const char *label, const QString &particulars)
{
    return (QString::fromUtf8(label) + QStringLiteral(" · ") + particulars).toStdString();
}

/// `value` scaled into 0..1 between `low` and `high`.
inline double within(double value, double low, double high)
{
    return std::clamp((value - low) / (high - low), 0.0, 1.0);
}

/// The shot of kind `kind` spanning a run, its score in hundredths.
inline Shot shot(ShotKind kind, const TrackFeatures &f, const Run &r, double score, const QString &particulars)
{
    return Shot{kind, f.t[r.first], f.t[r.last], std::round(score * 100) / 100,
                reason(Shots::label(kind), particulars)};
}

} // namespace ShotRuns
