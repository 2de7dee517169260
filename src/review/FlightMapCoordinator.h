#pragma once

#include <QList>
#include <QPointF>
#include <QString>

#include <optional>

/// @brief Remembers what the flight map last drew, so that each redraw of the player (ten a
/// second while it plays) touches the map only where something changed: the base map, the
/// path's colours, the marked stretch (by its point count only), the puck's place and its
/// image (once per 2 degrees of turn), and a recentre asked for by a new token.
class FlightMapCoordinator
{
public:
    /// @brief What the screen gives the map at each redraw.
    struct Inputs {
        std::optional<QPointF> coord;  ///< (longitude, latitude) at the playhead
        double heading = 0;            ///< degrees
        bool darkBasemap = false;
        quint32 trackColor = 0;        ///< ARGB
        quint32 puckColor = 0;
        qsizetype highlightCount = 0;  ///< points of the marked stretch
        int recenterToken = 0;
    };
    /// @brief What this redraw must do.
    struct Changes {
        bool tiles = false;       ///< apply the base map again
        bool track = false;       ///< draw the path again (its colour changed)
        bool highlight = false;   ///< replace the marked stretch
        bool marker = false;      ///< move the puck to `coord`
        bool puckImage = false;   ///< draw the puck again, rotated by `puckRotation`
        bool recenter = false;    ///< centre on `coord`, animated, keeping the zoom
        double puckRotation = 0;  ///< degrees
        [[nodiscard]] bool any() const { return tiles || track || highlight || marker || puckImage || recenter; }
    };

    /// The bucket of a heading: half of it rounded to the nearest integer, halves away from zero.
    [[nodiscard]] static int headingBucket(double heading);
    /// The scale bar's words: a fixed drawing, not measured from the map.
    [[nodiscard]] static QString scaleLabel(bool metric);

    /// The first redraw, when the map is made: the base map for `inputs`, and the puck where
    /// there is a position.
    Changes create(const Inputs &inputs);
    /// Every later redraw.
    Changes update(const Inputs &inputs);

private:
    bool m_isDark = false;
    quint32 m_trackColor = 0;
    quint32 m_puckColor = 0;
    qsizetype m_highlightCount = 0;
    int m_lastRecenter = 0;
    int m_lastHeadingBucket = 0;
    std::optional<QPointF> m_coord;
};
