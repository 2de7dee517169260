#pragma once

#include "FlightRecords.h"
#include "GalleryEnums.h"

#include <QHash>
#include <QList>
#include <QString>

#include <optional>

/// @brief Where the sun stood over a flight: the light a flight was shot in.
///
/// A flight's date is the wall clock at its place with no zone, so universal time is estimated
/// from the longitude (one hour per 15 degrees) rather than looked up in a zone database.
namespace SolarTime {

/// Degrees above the horizon at `utcSeconds` (seconds since 1970, universal time).
[[nodiscard]] double solarElevation(double utcSeconds, double latitude, double longitude);

/// Whole hours east of Greenwich estimated from the longitude, halves away from zero (7.5° is +1).
[[nodiscard]] int zoneHours(double longitude);

/// The six numbers of "yyyy-MM-dd'T'HH:mm:ss" read leniently as universal time, in seconds since
/// 1970: pieces between "-", "T" and ":" that are not decimal integers are skipped. nullopt with
/// fewer than six numbers.
[[nodiscard]] std::optional<double> wallClockSeconds(QStringView date);

/// `day` at 6° and above, `night` below -4°, `golden` between (and for NaN).
[[nodiscard]] TimeOfDayFilter classify(double elevation);

/// The light of one flight; `day` whenever it can't be judged (no place, no readable date).
[[nodiscard]] TimeOfDayFilter timeOfDay(const Flight &flight);

/// One entry per flight, built once per load: the sun is too dear to work out on every redraw.
[[nodiscard]] QHash<QString, TimeOfDayFilter> todCache(const QList<Flight> &flights);

} // namespace SolarTime
