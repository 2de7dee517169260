#include "FlightMapCoordinator.h"

#include <cmath>

int FlightMapCoordinator::headingBucket(double heading)
{
    if (!std::isfinite(heading))
        return 0;
    return int(std::lround(heading * 0.5));
}

QString FlightMapCoordinator::scaleLabel(bool metric)
{
    return metric ? QStringLiteral("150 m") : QStringLiteral("500 ft");
}

FlightMapCoordinator::Changes FlightMapCoordinator::create(const Inputs &inputs)
{
    Changes changes;
    m_isDark = inputs.darkBasemap;
    m_trackColor = inputs.trackColor;
    m_puckColor = inputs.puckColor;
    m_lastRecenter = inputs.recenterToken;
    changes.tiles = true;
    changes.track = true;
    changes.puckImage = true;
    if (inputs.coord) {
        m_coord = inputs.coord;
        changes.marker = true;
    }
    return changes;
}

FlightMapCoordinator::Changes FlightMapCoordinator::update(const Inputs &inputs)
{
    Changes changes;
    if (inputs.darkBasemap != m_isDark) {
        m_isDark = inputs.darkBasemap;
        changes.tiles = true;
    }
    if (inputs.trackColor != m_trackColor || inputs.puckColor != m_puckColor) {
        m_trackColor = inputs.trackColor;
        m_puckColor = inputs.puckColor;
        changes.track = true;
        // The new image is drawn pointing north; the heading check below turns it again.
        changes.puckImage = true;
        changes.puckRotation = 0;
        m_lastHeadingBucket = 0;
    }
    // Only the count is compared: a stretch moved to another one of equal length isn't redrawn.
    if (inputs.highlightCount != m_highlightCount) {
        m_highlightCount = inputs.highlightCount;
        changes.highlight = true;
    }
    if (!inputs.coord) {
        // A recentre asked for with no position is used up: nothing moves later because of it.
        m_lastRecenter = inputs.recenterToken;
        return changes;
    }
    if (inputs.coord != m_coord) {
        m_coord = inputs.coord;
        changes.marker = true;
    }
    const int bucket = headingBucket(inputs.heading);
    if (bucket != m_lastHeadingBucket) {
        m_lastHeadingBucket = bucket;
        changes.puckImage = true;
        changes.puckRotation = 2.0 * bucket;
    }
    if (inputs.recenterToken != m_lastRecenter) {
        m_lastRecenter = inputs.recenterToken;
        changes.recenter = true;
    }
    return changes;
}
