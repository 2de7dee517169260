#pragma once

#include <QString>

/// @brief Display units and time texts. Records and telemetry stay metric; conversion happens
/// only where a number is shown, with these literal factors (not derived from each other).
/// Whether a caller truncates or rounds the result is its own affair.
namespace Units {

inline constexpr double feetPerMetre = 3.28084;
inline constexpr double kmhPerMps = 3.6;
inline constexpr double mphPerMps = 2.23694;
inline constexpr double kmPerMetre = 0.001;
inline constexpr double milesPerMetre = 0.000621371;

/// Metres to metres or feet.
[[nodiscard]] double altitude(double metres, bool metric);
/// Metres per second to km/h or mph.
[[nodiscard]] double speed(double metresPerSecond, bool metric);
/// Metres to km or miles.
[[nodiscard]] double distance(double metres, bool metric);

[[nodiscard]] QString altitudeUnit(bool metric);  ///< "m" or "ft"
[[nodiscard]] QString speedUnit(bool metric);     ///< "km/h" or "mph"
[[nodiscard]] QString distanceUnit(bool metric);  ///< "km" or "mi"

/// "m:ss" of whole seconds; negative counts as 0; no hours field (3600 reads 60:00).
[[nodiscard]] QString timeText(double seconds);
/// "m:ss.s" with tenths; 75.25 reads 1:15.2.
[[nodiscard]] QString timeTextTenths(double seconds);

} // namespace Units
