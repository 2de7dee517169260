#pragma once

#include <QString>

/// @brief Display units and time texts.
///
/// Records and telemetry stay in metres, metres per second and seconds; these factors turn
/// them into what a person reads, at the point of display. The factors are literal constants,
/// not derived from one another.
namespace Units {
inline constexpr double altitudeMetric = 1.0;       // m
inline constexpr double altitudeImperial = 3.28084; // ft
inline constexpr double speedMetric = 3.6;          // km/h
inline constexpr double speedImperial = 2.23694;    // mph
inline constexpr double distanceMetric = 0.001;     // km
inline constexpr double distanceImperial = 0.000621371; // mi

[[nodiscard]] constexpr double altitudeFactor(bool metric) { return metric ? altitudeMetric : altitudeImperial; }
[[nodiscard]] constexpr double speedFactor(bool metric) { return metric ? speedMetric : speedImperial; }
[[nodiscard]] constexpr double distanceFactor(bool metric) { return metric ? distanceMetric : distanceImperial; }
/// Metres to metres or feet; metres per second to km/h or mph; metres to km or miles.
[[nodiscard]] constexpr double altitude(double metres, bool metric) { return metres * altitudeFactor(metric); }
[[nodiscard]] constexpr double speed(double metresPerSecond, bool metric) { return metresPerSecond * speedFactor(metric); }
[[nodiscard]] constexpr double distance(double metres, bool metric) { return metres * distanceFactor(metric); }
[[nodiscard]] QString altitudeUnit(bool metric);
[[nodiscard]] QString speedUnit(bool metric);
[[nodiscard]] QString distanceUnit(bool metric);

/// Truncation toward zero that can't overflow: NaN gives 0, out-of-range values clamp.
[[nodiscard]] int truncated(double value);

/// "%d:%02d" of whole minutes and seconds; negative counts as 0, no hours field (75:00).
[[nodiscard]] QString wholeTime(double seconds);
/// "%d:%04.1f": minutes, then the rest with tenths (75.25 reads 1:15.2); negative counts as 0.
[[nodiscard]] QString tenthsTime(double seconds);
} // namespace Units
