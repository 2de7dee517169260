#include "FlightSummary.h"

#include <gtest/gtest.h>

#include <cmath>

using FlightSummary::distance;
using FlightSummary::makeFlightData;

namespace {

TelemetrySample at(double t, double lat, double lon, std::optional<double> relAlt = std::nullopt)
{
    TelemetrySample s;
    s.t = t;
    s.lat = lat;
    s.lon = lon;
    s.relAlt = relAlt;
    return s;
}

FlightData make(std::vector<TelemetrySample> samples, std::optional<double> duration = std::nullopt, bool deriveYaw = true)
{
    return makeFlightData(std::move(samples), QStringLiteral("M"), duration, QStringLiteral("a.MP4"), deriveYaw);
}

} // namespace

TEST(FlightSummary, HaversineAndBearingOnKnownDistances)
{
    // One degree of latitude on the 6,371 km sphere.
    EXPECT_NEAR(distance(0, 0, 1, 0), 111194.93, 0.01);
    EXPECT_NEAR(distance(47, 8, 47, 8), 0, 1e-9);
    EXPECT_NEAR(FlightSummary::bearing(0, 0, 0, 1), 90, 1e-9);
    EXPECT_NEAR(FlightSummary::bearing(0, 0, 0, -1), -90, 1e-9);
    EXPECT_NEAR(FlightSummary::bearing(1, 0, 0, 0), 180, 1e-9);
}

TEST(FlightSummary, SingleSampleIsAtRest)
{
    const auto d = make({at(3.5, 47, 8, 10)});
    ASSERT_EQ(d.track.size(), 1u);
    EXPECT_EQ(d.track[0].speed, 0);
    EXPECT_EQ(d.track[0].climb, 0);
    EXPECT_EQ(d.meta.pathLength, 0);
    EXPECT_EQ(d.meta.duration, 3.5);
    EXPECT_EQ(d.meta.bounds->minLat, d.meta.bounds->maxLat);
    EXPECT_EQ(d.meta.relAlt, (FlightRelAlt{10, 10}));
    EXPECT_EQ(d.meta.samples, 1);
    EXPECT_FALSE(d.meta.created || d.meta.place || d.meta.video);
}

TEST(FlightSummary, SpeedIsAChordOverTheHalfSecondWindow)
{
    const double metre = 1.0 / 111194.93; // degrees of latitude per metre
    // Two samples 0.1 s apart: the base is the first.
    auto d = make({at(0, 0, 0, 0), at(0.1, 2 * metre, 0, 1)});
    EXPECT_NEAR(d.track[1].speed, 20, 1e-3);
    EXPECT_NEAR(d.track[1].climb, 10, 1e-9);
    // Two samples 2 s apart: the predecessor is the base even outside the window.
    d = make({at(0, 0, 0), at(2, 10 * metre, 0)});
    EXPECT_NEAR(d.track[1].speed, 5, 1e-3);
    // 0, 0.2, 0.4, 0.6: the base of 0.6 is 0.2, as 0 lies 0.6 s back.
    d = make({at(0, 0, 0), at(0.2, 100 * metre, 0), at(0.4, 101 * metre, 0), at(0.6, 102 * metre, 0)});
    EXPECT_NEAR(d.track[3].speed, 2 / 0.4, 1e-3);
    EXPECT_NEAR(d.track[2].speed, 101 / 0.4, 1e-2);
    EXPECT_NEAR(d.meta.maxSpeed, 100 / 0.2, 1e-2);
    // Path length goes sample to sample; a missing altitude counts as 0 in the climb.
    EXPECT_NEAR(d.meta.pathLength, 102, 1e-3);
    d = make({at(0, 0, 0, 5), at(0.25, 0, 0)});
    EXPECT_NEAR(d.track[1].climb, -20, 1e-9);
}

TEST(FlightSummary, MonotonicFilterDropsBackwardsAndRepeatedTimes)
{
    const auto d = make({at(0, 1, 1), at(1, 1, 2), at(1, 9, 9), at(0.5, 9, 9), at(2, 1, 3), at(-3, 9, 9)});
    ASSERT_EQ(d.track.size(), 3u);
    EXPECT_EQ(d.track[2].t, 2);
    EXPECT_EQ(d.meta.samples, 3);
    EXPECT_EQ(d.meta.bounds, (FlightBounds{1, 1, 1, 3}));
    EXPECT_EQ(d.meta.centroid, (FlightCentroid{1, 2}));
    EXPECT_FALSE(d.meta.relAlt.has_value());
}

TEST(FlightSummary, DurationArgumentWinsUnlessZero)
{
    EXPECT_EQ(make({at(0, 1, 1), at(118, 1, 1)}, 120.0).meta.duration, 120);
    EXPECT_EQ(make({at(0, 1, 1), at(118, 1, 1)}, 0.0).meta.duration, 118);
}

TEST(FlightSummary, HeadingsFromMotionForSidecarSourcesOnly)
{
    const double m = 1.0 / 111194.93;
    // Hover at the start (no heading), then fly north, then hover again.
    std::vector<TelemetrySample> s{at(0, 0, 0), at(1, 0.1 * m, 0), at(2, 10 * m, 0), at(3, 10.1 * m, 0)};
    const auto d = make(s);
    EXPECT_NEAR(*d.track[2].yaw, 0, 1e-6);
    EXPECT_NEAR(*d.track[0].yaw, 0, 1e-6); // filled from the first heading
    EXPECT_NEAR(*d.track[1].yaw, 0, 1e-6);
    EXPECT_NEAR(*d.track[3].yaw, 0, 1e-6); // hover holds the last heading

    // Westward flight: bearings stay in -180..180.
    const auto west = make({at(0, 0, 0), at(1, 0, -10 * m)});
    EXPECT_NEAR(*west.track[1].yaw, -90, 1e-6);
    EXPECT_NEAR(*west.track[0].yaw, -90, 1e-6);

    // A yaw from the source stays; nothing moves: all get 0.
    auto given = s;
    given[2].yaw = 45;
    EXPECT_EQ(*make(given).track[2].yaw, 45);
    const auto still = make({at(0, 1, 1), at(1, 1, 1)});
    EXPECT_EQ(still.track[0].yaw, 0.0);
    EXPECT_EQ(still.track[1].yaw, 0.0);

    // The embedded path never computes a heading.
    const auto embedded = make(s, std::nullopt, false);
    for (const auto &sample : embedded.track)
        EXPECT_FALSE(sample.yaw.has_value());
}

TEST(FlightSummary, AbsurdValuesStillGiveAWritableFlight)
{
    // Found by the fuzz test: altitudes at the ends of the double range overflowed the climb,
    // and huge latitudes the centroid's sum.
    const auto d = make({at(0, 1e308, 1, 1.7e308), at(0.1, 1e308, 1, -1.7e308), at(0.2, 1e308, 1, 0)});
    for (const auto &s : d.track) {
        EXPECT_TRUE(std::isfinite(s.climb));
        EXPECT_TRUE(std::isfinite(s.speed));
    }
    EXPECT_EQ(d.track[1].climb, 0);
    EXPECT_DOUBLE_EQ(d.meta.centroid->lat, 1e308);
}
