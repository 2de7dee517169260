#pragma once

#include "FlightData.h"

#include <optional>
#include <vector>

/// @brief The one computation both telemetry readers end in: a clean time axis, speed and climb
/// over a half-second window, headings for sources without them, and the summary of `meta`.
namespace FlightSummary {

inline constexpr double speedWindowSeconds = 0.5;
inline constexpr double earthDiameterMetres = 12'742'000.0;
inline constexpr double minHeadingMetres = 0.5;

/// Haversine distance in metres.
[[nodiscard]] double distance(double lat1, double lon1, double lat2, double lon2);
/// Initial bearing in degrees, -180 to 180.
[[nodiscard]] double bearing(double lat1, double lon1, double lat2, double lon2);

/// `samples` must not be empty and must keep at least one after the monotonic filter.
/// `created`, `place` and `video` of the result are absent.
[[nodiscard]] FlightData makeFlightData(std::vector<TelemetrySample> samples, const QString &model,
                                        std::optional<double> duration, const QString &source, bool deriveYaw);

} // namespace FlightSummary
