#include "SolarTime.h"

#include "FlightMaker.h"

#include <gtest/gtest.h>

#include <QDateTime>

using namespace SolarTime;

namespace {
double utc(const char *isoZ)
{
    return double(QDateTime::fromString(QString::fromLatin1(isoZ), Qt::ISODate).toSecsSinceEpoch());
}
} // namespace

// Reference positions. Noon elevations follow from the geometry (90° − latitude ± the solstice
// declination 23.44°, the sun crossing the meridian at the times of the NOAA solar calculator);
// the sunrise is the published almanac time for London, where the sun's centre stands at
// −0.83° (refraction and the half disc). The formula is an approximation, good to a few tenths.
TEST(SolarElevation, MatchesPublishedSunPositions)
{
    struct Ref {
        const char *what;
        const char *when;
        double lat, lon, elevation, tolerance;
    };
    const Ref refs[] = {
        {"Greenwich, June solstice noon", "2024-06-20T12:02:00Z", 51.4779, 0.0, 61.96, 0.3},
        {"Greenwich, December solstice noon", "2024-12-21T11:58:00Z", 51.4779, 0.0, 15.08, 0.3},
        {"Equator, March equinox noon", "2024-03-20T12:07:00Z", 0.0, 0.0, 89.8, 0.4},
        {"London sunrise 04:43 BST, 21 June", "2024-06-21T03:43:00Z", 51.5074, -0.1278, -0.83, 0.4},
        {"Tromsø midnight sun, lowest point", "2024-06-21T22:46:00Z", 69.6492, 18.9553, 3.09, 0.3},
        {"Tromsø polar night, highest point", "2024-12-21T10:45:00Z", 69.6492, 18.9553, -3.09, 0.3},
        {"Sydney, January noon", "2024-01-15T02:04:00Z", -33.8688, 151.2093, 77.3, 0.4},
    };
    for (const Ref &r : refs)
        EXPECT_NEAR(solarElevation(utc(r.when), r.lat, r.lon), r.elevation, r.tolerance) << r.what;
}

TEST(SolarElevation, ZoneFromLongitudeRoundsHalvesAwayFromZero)
{
    EXPECT_EQ(zoneHours(7.4), 0);
    EXPECT_EQ(zoneHours(7.5), 1);
    EXPECT_EQ(zoneHours(7.6), 1);
    EXPECT_EQ(zoneHours(-7.4), 0);
    EXPECT_EQ(zoneHours(-7.5), -1);
    EXPECT_EQ(zoneHours(-7.6), -1);
    EXPECT_EQ(zoneHours(151.2), 10);
    EXPECT_EQ(zoneHours(-122.4), -8);
    EXPECT_EQ(zoneHours(180.0), 12);
}

TEST(SolarElevation, ThresholdsIncludeSixInDayAndMinusFourInGolden)
{
    EXPECT_EQ(classify(6.0), TimeOfDayFilter::day);
    EXPECT_EQ(classify(5.999), TimeOfDayFilter::golden);
    EXPECT_EQ(classify(-4.0), TimeOfDayFilter::golden);
    EXPECT_EQ(classify(-4.0001), TimeOfDayFilter::night);
    EXPECT_EQ(classify(std::nan("")), TimeOfDayFilter::golden);
}

TEST(TimeOfDay, WallClockIsTurnedIntoUniversalTimeByTheLongitude)
{
    // Sydney, wall clock. Read as universal time, noon would be 22:00 local (night) and 23:50
    // would be 09:50 local (day): only the longitude's zone gets both right.
    EXPECT_EQ(timeOfDay(FlightMaker("noon").date("2024-01-15T12:00:00").at(-33.87, 151.21)), TimeOfDayFilter::day);
    EXPECT_EQ(timeOfDay(FlightMaker("late").date("2024-01-15T23:50:00").at(-33.87, 151.21)), TimeOfDayFilter::night);
    // Tromsø in the polar night: the sun never climbs above −3°, so midday is golden, not night.
    EXPECT_EQ(timeOfDay(FlightMaker("polar").date("2024-12-21T11:45:00").at(69.65, 18.96)),
              TimeOfDayFilter::golden);
    // Los Angeles, a summer evening just after sunset (20:08 PDT): golden, an hour later night.
    EXPECT_EQ(timeOfDay(FlightMaker("dusk").date("2024-06-21T19:15:00").at(34.05, -118.24)),
              TimeOfDayFilter::golden);
    EXPECT_EQ(timeOfDay(FlightMaker("dark").date("2024-06-21T21:30:00").at(34.05, -118.24)),
              TimeOfDayFilter::night);
}

TEST(TimeOfDay, AnythingUnjudgeableIsDay)
{
    EXPECT_EQ(timeOfDay(FlightMaker("noplace").date("2024-01-15T23:50:00")), TimeOfDayFilter::day);
    EXPECT_EQ(timeOfDay(FlightMaker("nodate").at(-33.87, 151.21)), TimeOfDayFilter::day);
    EXPECT_EQ(timeOfDay(FlightMaker("short").date("2024-01-15T23:50").at(-33.87, 151.21)), TimeOfDayFilter::day);
    EXPECT_EQ(timeOfDay(FlightMaker("junk").date("last tuesday").at(-33.87, 151.21)), TimeOfDayFilter::day);
}

TEST(TimeOfDay, DatePiecesAreReadLeniently)
{
    // Pieces that aren't numbers are skipped, so a trailing zone letter or fraction does no harm.
    EXPECT_EQ(wallClockSeconds(u"2024-01-15T23:50:00"), utc("2024-01-15T23:50:00Z"));
    EXPECT_EQ(wallClockSeconds(u"2024-01-15T23:50:00.5"), std::nullopt);  // "00.5" is no integer: five left
    EXPECT_EQ(wallClockSeconds(u"2024-13-01T00:00:00"), utc("2025-01-01T00:00:00Z"));
    EXPECT_EQ(wallClockSeconds(u"2024--01-15T23:50:00"), utc("2024-01-15T23:50:00Z"));
    EXPECT_EQ(wallClockSeconds(u"2024-01-15"), std::nullopt);
}

TEST(TimeOfDay, CacheHasOneEntryPerFlight)
{
    const QList<Flight> flights{FlightMaker("a").date("2024-01-15T23:50:00").at(-33.87, 151.21),
                                FlightMaker("b")};
    const auto cache = todCache(flights);
    EXPECT_EQ(cache.size(), 2);
    EXPECT_EQ(cache.value("a"), TimeOfDayFilter::night);
    EXPECT_EQ(cache.value("b"), TimeOfDayFilter::day);
}
