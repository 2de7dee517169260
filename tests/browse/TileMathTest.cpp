#include "PinClusters.h"
#include "TileMath.h"

#include <gtest/gtest.h>

using namespace TileMath;

TEST(TileMath, ProjectionRoundTripsAndKnownPoints)
{
    EXPECT_NEAR(project({0, 0}, 0).x(), 128, 1e-9);
    EXPECT_NEAR(project({0, 0}, 0).y(), 128, 1e-9);
    EXPECT_NEAR(project({0, 180}, 1).x(), 512, 1e-9);
    EXPECT_NEAR(project({maxLatitude, 0}, 0).y(), 0, 1e-6);
    for (const GeoPoint p : {GeoPoint{64.1466, -21.9426}, GeoPoint{-33.87, 151.21}, GeoPoint{0.5, -0.5}}) {
        const GeoPoint back = unproject(project(p, 13.4), 13.4);
        EXPECT_NEAR(back.lat, p.lat, 1e-9);
        EXPECT_NEAR(back.lon, p.lon, 1e-9);
    }
    const Camera camera{{46.0, 7.7}, 11.3};
    const QSizeF size(800, 600);
    EXPECT_NEAR(toView(camera.center, camera, size).x(), 400, 1e-6);
    const GeoPoint corner = fromView({0, 0}, camera, size);
    EXPECT_NEAR(toView(corner, camera, size).y(), 0, 1e-6);
}

TEST(TileMath, FitKeepsEveryPointInsideThePaddingAndFillsIt)
{
    const QSizeF size(900, 600);
    const QMarginsF padding(40, 60, 40, 40);
    const QList<GeoPoint> points{{64.15, -21.94}, {63.42, -19.01}, {65.68, -18.09}};
    const Camera camera = fit(*boundsOf(points), size, padding);
    double minX = 1e9, maxX = -1e9, minY = 1e9, maxY = -1e9;
    for (const GeoPoint &p : points) {
        const QPointF v = toView(p, camera, size);
        minX = std::min(minX, v.x()), maxX = std::max(maxX, v.x());
        minY = std::min(minY, v.y()), maxY = std::max(maxY, v.y());
    }
    EXPECT_GE(minX, 40 - 1e-6);
    EXPECT_LE(maxX, 860 + 1e-6);
    EXPECT_GE(minY, 60 - 1e-6);
    EXPECT_LE(maxY, 560 + 1e-6);
    // Tight on one axis: the rectangle touches the padding, it isn't merely somewhere inside.
    const bool tightX = std::abs(minX - 40) < 1e-3 && std::abs(maxX - 860) < 1e-3;
    const bool tightY = std::abs(minY - 60) < 1e-3 && std::abs(maxY - 560) < 1e-3;
    EXPECT_TRUE(tightX || tightY);

    // One pin is a rectangle of no size: the closest zoom, in the middle of the padded area.
    const Camera one = fit(*boundsOf({{46.0, 7.7}}), size, padding);
    EXPECT_EQ(one.zoom, maxZoom);
    const QPointF at = toView({46.0, 7.7}, one, size);
    EXPECT_NEAR(at.x(), 450, 1e-6);
    EXPECT_NEAR(at.y(), 310, 1e-6);
    EXPECT_FALSE(boundsOf({}).has_value());

    // Pins across the world zoom out no further than the map allows.
    EXPECT_EQ(fit(*boundsOf({{-80, -179}, {80, 179}}), {200, 200}, padding).zoom, minZoom);
}

TEST(TileMath, VisibleTilesCoverTheViewAndWrapAcrossTheDateLine)
{
    const QSizeF size(700, 500);
    const Camera camera{{0.0, 179.9}, 3.5};
    const auto tiles = visibleTiles(camera, size);
    ASSERT_FALSE(tiles.isEmpty());
    QRectF covered;
    bool wrapped = false;
    for (const TileRef &t : tiles) {
        EXPECT_EQ(t.z, 3);
        EXPECT_GE(t.x, 0);
        EXPECT_LT(t.x, 8);
        EXPECT_NEAR(t.rect.width(), 256 * std::sqrt(2.0), 1e-6);  // half a level up: scaled by 2^0.5
        covered = covered.united(t.rect);
        wrapped = wrapped || t.x == 0;
    }
    EXPECT_TRUE(covered.contains(QRectF(QPointF(0, 0), size)));
    EXPECT_TRUE(wrapped);
}

TEST(TileMath, UrlTemplates)
{
    EXPECT_EQ(baseMapTemplate("https://a.basemaps.cartocdn.com/", true),
              "https://a.basemaps.cartocdn.com/dark_all/{z}/{x}/{y}@2x.png");
    EXPECT_EQ(tileUrl(baseMapTemplate("http://127.0.0.1:9", false), 5, 17, 11),
              "http://127.0.0.1:9/light_all/5/17/11@2x.png");
}

TEST(PinClusters, NearPinsMergeUntilZoomedInAndClustersFitTheirMembers)
{
    const QList<MapPin> pins{{"a", {64.150, -21.940}, "Reykjavík"},
                             {"b", {64.152, -21.930}, "Harbour"},
                             {"c", {63.420, -19.010}, "Vík"}};
    const QSizeF size(800, 600);
    auto far = PinClusters::cluster(pins, {{64, -20}, 6}, size);
    ASSERT_EQ(far.size(), 2);
    EXPECT_EQ(far[0].members, QList<int>({0, 1}));
    EXPECT_TRUE(far[1].single());
    // The cluster stands at the mean of its members.
    const QPointF mean = (toView(pins[0].at, {{64, -20}, 6}, size) + toView(pins[1].at, {{64, -20}, 6}, size)) / 2;
    EXPECT_NEAR(far[0].position.x(), mean.x(), 1e-6);

    const Camera zoomed = fit(PinClusters::boundsOf(pins, far[0].members), size, QMarginsF(40, 40, 40, 40));
    const auto near = PinClusters::cluster(pins, zoomed, size);
    EXPECT_EQ(near.size(), 3);
    EXPECT_TRUE(PinClusters::cluster({}, zoomed, size).isEmpty());
}
