#include "TileMath.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace TileMath {

namespace {
double worldSize(double zoom)
{
    return tileSize * std::exp2(zoom);
}
} // namespace

QPointF project(GeoPoint point, double zoom)
{
    const double lat = std::clamp(point.lat, -maxLatitude, maxLatitude) * std::numbers::pi / 180.0;
    const double world = worldSize(zoom);
    const double x = (point.lon + 180.0) / 360.0 * world;
    const double y = (1.0 - std::asinh(std::tan(lat)) / std::numbers::pi) / 2.0 * world;
    return {x, y};
}

GeoPoint unproject(QPointF pixel, double zoom)
{
    const double world = worldSize(zoom);
    const double lon = pixel.x() / world * 360.0 - 180.0;
    const double n = std::numbers::pi * (1.0 - 2.0 * pixel.y() / world);
    const double lat = std::atan(std::sinh(n)) * 180.0 / std::numbers::pi;
    return {lat, lon};
}

QPointF toView(GeoPoint point, const Camera &camera, QSizeF size)
{
    const QPointF centre = project(camera.center, camera.zoom);
    return project(point, camera.zoom) - centre + QPointF(size.width() / 2, size.height() / 2);
}

GeoPoint fromView(QPointF viewPos, const Camera &camera, QSizeF size)
{
    const QPointF centre = project(camera.center, camera.zoom);
    return unproject(viewPos - QPointF(size.width() / 2, size.height() / 2) + centre, camera.zoom);
}

std::optional<GeoBounds> boundsOf(const QList<GeoPoint> &points)
{
    if (points.isEmpty())
        return std::nullopt;
    GeoBounds b{points[0].lat, points[0].lon, points[0].lat, points[0].lon};
    for (const GeoPoint &p : points) {
        b.south = std::min(b.south, p.lat);
        b.north = std::max(b.north, p.lat);
        b.west = std::min(b.west, p.lon);
        b.east = std::max(b.east, p.lon);
    }
    return b;
}

Camera fit(const GeoBounds &bounds, QSizeF size, QMarginsF padding)
{
    // Measure the rectangle at zoom 0, then scale until it fills the padded view.
    const QPointF nw = project({bounds.north, bounds.west}, 0);
    const QPointF se = project({bounds.south, bounds.east}, 0);
    const double spanX = se.x() - nw.x();
    const double spanY = se.y() - nw.y();
    const double roomX = std::max(1.0, size.width() - padding.left() - padding.right());
    const double roomY = std::max(1.0, size.height() - padding.top() - padding.bottom());
    double zoom = maxZoom;
    if (spanX > 0 || spanY > 0) {
        const double scale = std::min(spanX > 0 ? roomX / spanX : INFINITY, spanY > 0 ? roomY / spanY : INFINITY);
        zoom = std::log2(scale);
    }
    zoom = std::clamp(zoom, minZoom, maxZoom);

    // Centre the rectangle in the padded part of the view, not in the whole view.
    const QPointF middle = (project({bounds.north, bounds.west}, zoom) + project({bounds.south, bounds.east}, zoom)) / 2;
    const QPointF shift((padding.left() - padding.right()) / 2, (padding.top() - padding.bottom()) / 2);
    return Camera{unproject(middle - shift, zoom), zoom};
}

QList<TileRef> visibleTiles(const Camera &camera, QSizeF size)
{
    const int z = int(std::floor(std::clamp(camera.zoom, 0.0, 22.0)));
    const double scale = std::exp2(camera.zoom - z);
    const double edge = tileSize * scale;
    const QPointF centre = project(camera.center, camera.zoom);
    const QPointF topLeft = centre - QPointF(size.width() / 2, size.height() / 2);
    const int count = 1 << z;

    QList<TileRef> tiles;
    const int x0 = int(std::floor(topLeft.x() / edge));
    const int y0 = std::max(0, int(std::floor(topLeft.y() / edge)));
    const int x1 = int(std::floor((topLeft.x() + size.width()) / edge));
    const int y1 = std::min(count - 1, int(std::floor((topLeft.y() + size.height()) / edge)));
    for (int y = y0; y <= y1; ++y) {
        for (int x = x0; x <= x1; ++x) {
            const int wrapped = ((x % count) + count) % count;
            tiles.append({z, wrapped, y, QRectF(x * edge - topLeft.x(), y * edge - topLeft.y(), edge, edge)});
        }
    }
    return tiles;
}

QString tileUrl(const QString &urlTemplate, int z, int x, int y)
{
    QString url = urlTemplate;
    url.replace(QLatin1String("{z}"), QString::number(z));
    url.replace(QLatin1String("{x}"), QString::number(x));
    url.replace(QLatin1String("{y}"), QString::number(y));
    return url;
}

QString baseMapTemplate(const QString &host, bool dark)
{
    QString base = host;
    while (base.endsWith(QLatin1Char('/')))
        base.chop(1);
    return base + (dark ? QStringLiteral("/dark_all") : QStringLiteral("/light_all"))
           + QStringLiteral("/{z}/{x}/{y}@2x.png");
}

} // namespace TileMath
