#include "SolarTime.h"

#include <QDate>

#include <cmath>
#include <numbers>

namespace SolarTime {

namespace {
constexpr double rad = 0.017453292519943295;

// A piece counts when it is an optional "+" and then decimal digits, nothing else.
std::optional<qint64> decimal(QStringView piece)
{
    if (piece.startsWith(u'+'))
        piece = piece.mid(1);
    if (piece.isEmpty() || piece.size() > 12)
        return std::nullopt;
    qint64 value = 0;
    for (const QChar c : piece) {
        if (c < u'0' || c > u'9')
            return std::nullopt;
        value = value * 10 + (c.unicode() - u'0');
    }
    return value;
}
} // namespace

double solarElevation(double utcSeconds, double latitude, double longitude)
{
    const double d = utcSeconds / 86400.0 - 10957.5;
    const double m = (357.5291 + 0.98560028 * d) * rad;
    const double c = 1.9148 * std::sin(m) + 0.02 * std::sin(2 * m) + 0.0003 * std::sin(3 * m);
    const double l = m + c * rad + 1.796593062783907 + std::numbers::pi;
    const double decl = std::asin(std::sin(l) * 0.39778370349342274);
    const double ra = std::atan2(std::sin(l) * 0.9174792233260962, std::cos(l));
    const double h = (longitude + 280.16 + 360.9856235 * d) * rad - ra;
    return std::asin(std::sin(latitude * rad) * std::sin(decl)
                     + std::cos(latitude * rad) * std::cos(decl) * std::cos(h))
           / rad;
}

int zoneHours(double longitude)
{
    return int(std::round(longitude / 15.0));
}

std::optional<double> wallClockSeconds(QStringView date)
{
    qint64 parts[6] = {};
    int found = 0;
    qsizetype start = 0;
    for (qsizetype i = 0; i <= date.size() && found < 6; ++i) {
        if (i < date.size() && date[i] != u'-' && date[i] != u'T' && date[i] != u':')
            continue;
        if (const auto value = decimal(date.mid(start, i - start)))
            parts[found++] = *value;
        start = i + 1;
    }
    if (found < 6 || parts[0] > 999999)
        return std::nullopt;
    // Lenient like a calendar built from components: month 13 is January of the next year,
    // hour 25 the next day.
    const QDate first(int(parts[0]), 1, 1);
    if (!first.isValid())
        return std::nullopt;
    const QDate day = first.addMonths(int(std::min<qint64>(parts[1], 1200000)) - 1)
                          .addDays(std::min<qint64>(parts[2], 40000000) - 1);
    if (!day.isValid())
        return std::nullopt;
    const double days = double(QDate(1970, 1, 1).daysTo(day));
    return days * 86400.0 + double(parts[3]) * 3600.0 + double(parts[4]) * 60.0 + double(parts[5]);
}

TimeOfDayFilter classify(double elevation)
{
    if (elevation >= 6.0)
        return TimeOfDayFilter::day;
    if (elevation < -4.0)
        return TimeOfDayFilter::night;
    return TimeOfDayFilter::golden;
}

TimeOfDayFilter timeOfDay(const Flight &flight)
{
    if (!flight.centroid || !flight.date)
        return TimeOfDayFilter::day;
    const auto wallClock = wallClockSeconds(*flight.date);
    if (!wallClock)
        return TimeOfDayFilter::day;
    const double utc = *wallClock - zoneHours(flight.centroid->lon) * 3600.0;
    return classify(solarElevation(utc, flight.centroid->lat, flight.centroid->lon));
}

QHash<QString, TimeOfDayFilter> todCache(const QList<Flight> &flights)
{
    QHash<QString, TimeOfDayFilter> cache;
    cache.reserve(flights.size());
    for (const Flight &flight : flights)
        cache.insert(flight.id, timeOfDay(flight));
    return cache;
}

} // namespace SolarTime
