#pragma once

#include <QList>
#include <QMarginsF>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QString>

#include <optional>

/// @brief Web Mercator maths of a raster tile map, free of any drawing: where a coordinate falls
/// in pixels at a zoom, which tiles cover a view, and which camera fits a set of points.
namespace TileMath {

inline constexpr double tileSize = 256.0;  ///< logical pixels per tile edge
inline constexpr double minZoom = 1.0;
inline constexpr double maxZoom = 17.0;   ///< also the closest a fit of one point comes
inline constexpr double maxLatitude = 85.05112878;

struct GeoPoint {
    double lat = 0;
    double lon = 0;
    bool operator==(const GeoPoint &) const = default;
};

struct GeoBounds {
    double south = 0, west = 0, north = 0, east = 0;
    [[nodiscard]] GeoPoint center() const { return {(south + north) / 2, (west + east) / 2}; }
};

/// The centre of the view and its zoom (fractional zooms scale the tiles of the level below).
struct Camera {
    GeoPoint center;
    double zoom = 2;
    bool operator==(const Camera &) const = default;
};

struct TileRef {
    int z = 0, x = 0, y = 0;  ///< x already wrapped into 0..2^z-1
    QRectF rect;              ///< where it lands in the view, logical pixels
};

/// World pixel position of a coordinate at `zoom` (the world is 256·2^zoom pixels wide).
[[nodiscard]] QPointF project(GeoPoint point, double zoom);
[[nodiscard]] GeoPoint unproject(QPointF pixel, double zoom);
/// View position of `point` for `camera` in a view of `size`.
[[nodiscard]] QPointF toView(GeoPoint point, const Camera &camera, QSizeF size);
[[nodiscard]] GeoPoint fromView(QPointF viewPos, const Camera &camera, QSizeF size);

[[nodiscard]] std::optional<GeoBounds> boundsOf(const QList<GeoPoint> &points);
/// The camera that shows `bounds` inside `size` less `padding`, zoom clamped to the map's range.
/// A rectangle of no size (one point) gets the closest zoom.
[[nodiscard]] Camera fit(const GeoBounds &bounds, QSizeF size, QMarginsF padding);

/// The tiles of the whole-numbered level at or below the camera's zoom that cover the view.
[[nodiscard]] QList<TileRef> visibleTiles(const Camera &camera, QSizeF size);

/// A URL template with "{z}", "{x}", "{y}" filled in.
[[nodiscard]] QString tileUrl(const QString &urlTemplate, int z, int x, int y);
/// The CARTO raster base map on `host` (e.g. "https://a.basemaps.cartocdn.com"), dark or light.
[[nodiscard]] QString baseMapTemplate(const QString &host, bool dark);
inline constexpr const char *defaultTileHost = "https://a.basemaps.cartocdn.com";
/// The words its terms ask to be shown on the map.
inline constexpr const char *baseMapAttribution = "© OpenStreetMap contributors © CARTO";

} // namespace TileMath
