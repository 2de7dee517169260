#pragma once

#include "FlightMapCoordinator.h"
#include "TileMapItem.h"

#include <QImage>
#include <QList>
#include <QPointF>
#include <QVariant>

/// @brief The flight's map: the path over a dark or light base map, the marked stretch in a
/// stronger line, and a heading puck at the playhead. Built on the tile map, so it pans and
/// zooms like the gallery's; a press near the path asks for the time of the nearest sample.
///
/// Redraws touch only what changed since the last one (see `FlightMapCoordinator`): the puck
/// image is drawn once per 2 degrees of turn, the base map only when the palette flips.
/// Coordinates are `QPointF(longitude, latitude)`.
class FlightMapView : public TileMapItem
{
    Q_OBJECT
    Q_PROPERTY(QList<QPointF> path READ path WRITE setPath NOTIFY pathChanged FINAL)
    Q_PROPERTY(QVariant coord READ coord WRITE setCoord NOTIFY inputsChanged FINAL)
    Q_PROPERTY(double heading READ heading WRITE setHeading NOTIFY inputsChanged FINAL)
    Q_PROPERTY(bool darkBasemap READ darkBasemap WRITE setDarkBasemap NOTIFY inputsChanged FINAL)
    Q_PROPERTY(QString tileHost READ tileHost WRITE setTileHost NOTIFY inputsChanged FINAL)
    Q_PROPERTY(QColor trackColor READ trackColor WRITE setTrackColor NOTIFY inputsChanged FINAL)
    Q_PROPERTY(QColor puckColor READ puckColor WRITE setPuckColor NOTIFY inputsChanged FINAL)
    Q_PROPERTY(QColor highlightColor MEMBER m_highlightColor NOTIFY inputsChanged FINAL)
    Q_PROPERTY(QList<QPointF> highlight READ highlight WRITE setHighlight NOTIFY inputsChanged FINAL)
    Q_PROPERTY(int recenterToken READ recenterToken WRITE setRecenterToken NOTIFY inputsChanged FINAL)
    Q_PROPERTY(int puckDraws READ puckDraws NOTIFY redrawn FINAL)
    Q_PROPERTY(double puckRotation READ puckRotation NOTIFY redrawn FINAL)
public:
    static constexpr int puckSize = 34;
    /// How near the path (in points) a press must come to seek.
    static constexpr double pathHitRadius = 14;

    explicit FlightMapView(QQuickItem *parent = nullptr);

    [[nodiscard]] QList<QPointF> path() const { return m_path; }
    void setPath(const QList<QPointF> &value);
    [[nodiscard]] QVariant coord() const { return m_coord ? QVariant(*m_coord) : QVariant(); }
    void setCoord(const QVariant &value);
    [[nodiscard]] double heading() const { return m_heading; }
    void setHeading(double value);
    [[nodiscard]] bool darkBasemap() const { return m_dark; }
    void setDarkBasemap(bool value);
    [[nodiscard]] QString tileHost() const { return m_tileHost; }
    void setTileHost(const QString &value);
    [[nodiscard]] QColor trackColor() const { return m_trackColor; }
    void setTrackColor(const QColor &value);
    [[nodiscard]] QColor puckColor() const { return m_puckColor; }
    void setPuckColor(const QColor &value);
    [[nodiscard]] QList<QPointF> highlight() const { return m_highlight; }
    void setHighlight(const QList<QPointF> &value);
    [[nodiscard]] int recenterToken() const { return m_recenterToken; }
    void setRecenterToken(int value);
    /// How many times the puck image was drawn (it should be rare).
    [[nodiscard]] int puckDraws() const { return m_puckDraws; }
    [[nodiscard]] double puckRotation() const { return m_puckRotation; }

    /// Index of the path point nearest a press at (x, y), or -1 when none is near enough.
    [[nodiscard]] Q_INVOKABLE int sampleNear(double x, double y) const;
    void pressAt(double x, double y) override;
    /// The 34-point puck: a disc of `color` with a white rim and an arrow turned by `degrees`.
    [[nodiscard]] static QImage puckImage(const QColor &color, double degrees, qreal pixelRatio);

Q_SIGNALS:
    void pathChanged();
    void inputsChanged();
    /// The map drew again after a change of its inputs.
    void redrawn();
    /// A press came near the path: the sample at `index` of `path`.
    void pathPressed(int index);

protected:
    void paintOverlay(QPainter *painter) override;
    void componentComplete() override;
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;

private:
    /// Hands the inputs to the coordinator and applies what it says changed.
    void redraw();
    void fitPath();
    [[nodiscard]] FlightMapCoordinator::Inputs inputs() const;

    QList<QPointF> m_path;
    std::optional<QPointF> m_coord;
    double m_heading = 0;
    bool m_dark = true;
    QString m_tileHost;
    QColor m_trackColor{QStringLiteral("#46B8FF")};
    QColor m_puckColor{QStringLiteral("#FFA04D")};
    QColor m_highlightColor{QStringLiteral("#FFFFFF")};
    QList<QPointF> m_highlight;
    int m_recenterToken = 0;

    FlightMapCoordinator m_coordinator;
    bool m_created = false;
    bool m_fitWhenSized = false;
    std::optional<TileMath::Camera> m_fitted;  ///< the camera of the last fit
    QList<QPointF> m_drawnHighlight;
    QColor m_drawnTrackColor;
    std::optional<QPointF> m_marker;
    QImage m_puck;
    double m_puckRotation = 0;
    int m_puckDraws = 0;
};
