#pragma once

#include "TileMath.h"

#include <QList>
#include <QString>

/// @brief A flight's pin on the gallery map.
struct MapPin {
    QString id;
    TileMath::GeoPoint at;
    QString title;
    bool operator==(const MapPin &) const = default;
};

/// @brief Pins near each other drawn as one: a grid over the world at the current zoom, one
/// marker per occupied cell. The grid is fixed to the world, not the view, so panning doesn't
/// reshuffle the clusters.
namespace PinClusters {

struct Cluster {
    QPointF position;     ///< view position: the mean of its members
    QList<int> members;   ///< indices into the pins, in their order
    [[nodiscard]] bool single() const { return members.size() == 1; }
};

inline constexpr double cellSize = 56.0;  ///< logical pixels

[[nodiscard]] QList<Cluster> cluster(const QList<MapPin> &pins, const TileMath::Camera &camera, QSizeF size,
                                     double cell = cellSize);
/// The rectangle a press on a cluster zooms to.
[[nodiscard]] TileMath::GeoBounds boundsOf(const QList<MapPin> &pins, const QList<int> &members);

} // namespace PinClusters
