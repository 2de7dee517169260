#include "PinClusters.h"

#include <QHash>

#include <cmath>

namespace PinClusters {

QList<Cluster> cluster(const QList<MapPin> &pins, const TileMath::Camera &camera, QSizeF size, double cell)
{
    QList<Cluster> clusters;
    QHash<QPair<qint64, qint64>, qsizetype> byCell;
    for (int i = 0; i < pins.size(); ++i) {
        const QPointF world = TileMath::project(pins[i].at, camera.zoom);
        const QPair<qint64, qint64> key{qint64(std::floor(world.x() / cell)), qint64(std::floor(world.y() / cell))};
        auto found = byCell.constFind(key);
        if (found == byCell.constEnd()) {
            clusters.append(Cluster{});
            found = byCell.insert(key, clusters.size() - 1);
        }
        clusters[*found].members.append(i);
    }
    for (Cluster &c : clusters) {
        QPointF sum;
        for (const int i : c.members)
            sum += TileMath::toView(pins[i].at, camera, size);
        c.position = sum / double(c.members.size());
    }
    return clusters;
}

TileMath::GeoBounds boundsOf(const QList<MapPin> &pins, const QList<int> &members)
{
    QList<TileMath::GeoPoint> points;
    for (const int i : members)
        points.append(pins[i].at);
    return TileMath::boundsOf(points).value_or(TileMath::GeoBounds{});
}

} // namespace PinClusters
