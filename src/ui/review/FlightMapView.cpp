#include "FlightMapView.h"

#include "TileMath.h"

#include <QPainter>
#include <QPainterPath>
#include <QQuickWindow>

namespace {
TileMath::GeoPoint geo(const QPointF &lonLat)
{
    return {lonLat.y(), lonLat.x()};
}
} // namespace

FlightMapView::FlightMapView(QQuickItem *parent) : TileMapItem(parent) {}

void FlightMapView::componentComplete()
{
    TileMapItem::componentComplete();
    const auto made = m_coordinator.create(inputs());
    m_created = true;
    setUrlTemplate(TileMath::baseMapTemplate(m_tileHost, m_dark));
    m_drawnTrackColor = m_trackColor;
    m_puck = puckImage(m_puckColor, 0, window() ? window()->devicePixelRatio() : 2);
    ++m_puckDraws;
    if (made.marker)
        m_marker = m_coord;
    fitPath();
    update();
}

FlightMapCoordinator::Inputs FlightMapView::inputs() const
{
    return {m_coord, m_heading, m_dark, m_trackColor.rgba(), m_puckColor.rgba(), m_highlight.size(), m_recenterToken};
}

void FlightMapView::redraw()
{
    Q_EMIT inputsChanged();
    if (!m_created)
        return;
    const auto changes = m_coordinator.update(inputs());
    if (!changes.any())
        return;
    if (changes.tiles)
        setUrlTemplate(TileMath::baseMapTemplate(m_tileHost, m_dark));
    if (changes.track)
        m_drawnTrackColor = m_trackColor;
    if (changes.highlight)
        m_drawnHighlight = m_highlight.size() > 1 ? m_highlight : QList<QPointF>{};
    if (changes.marker)
        m_marker = m_coord;
    if (changes.puckImage) {
        m_puck = puckImage(m_puckColor, changes.puckRotation, window() ? window()->devicePixelRatio() : 2);
        m_puckRotation = changes.puckRotation;
        ++m_puckDraws;
    }
    if (changes.recenter && m_coord) {
        // Keeps the zoom; the map never follows the puck by itself.
        animateTo({geo(*m_coord), camera().zoom});
    }
    update();
    Q_EMIT redrawn();
}

void FlightMapView::setPath(const QList<QPointF> &value)
{
    if (value == m_path)
        return;
    const bool first = m_path.size() < 2;
    m_path = value;
    Q_EMIT pathChanged();
    // The path comes with the flight's telemetry, after the map was made: the first one is fitted.
    if (first && m_created)
        fitPath();
    update();
}

void FlightMapView::fitPath()
{
    if (m_path.size() < 2)
        return;
    if (width() <= 0 || height() <= 0) {
        m_fitWhenSized = true;
        return;
    }
    m_fitWhenSized = false;
    QList<TileMath::GeoPoint> points;
    points.reserve(m_path.size());
    for (const QPointF &p : std::as_const(m_path))
        points.append(geo(p));
    const auto bounds = TileMath::boundsOf(points);
    if (!bounds)
        return;
    const auto fitted = TileMath::fit(*bounds, viewSize(), QMarginsF(36, 36, 36, 36));
    setCamera(fitted.center.lat, fitted.center.lon, fitted.zoom);
    m_fitted = camera();
}

void FlightMapView::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    TileMapItem::geometryChange(newGeometry, oldGeometry);
    // A map the pilot hasn't moved keeps the whole path in view as the screen is laid out.
    const bool untouched = m_fitted && camera() == *m_fitted;
    if ((m_fitWhenSized || untouched) && newGeometry.width() > 0 && newGeometry.height() > 0)
        fitPath();
}

void FlightMapView::setCoord(const QVariant &value)
{
    std::optional<QPointF> coord;
    if (value.isValid() && !value.isNull())
        coord = value.toPointF();
    if (coord == m_coord)
        return;
    m_coord = coord;
    redraw();
}

void FlightMapView::setHeading(double value)
{
    if (value == m_heading)
        return;
    m_heading = value;
    redraw();
}

void FlightMapView::setDarkBasemap(bool value)
{
    if (value == m_dark)
        return;
    m_dark = value;
    redraw();
}

void FlightMapView::setTileHost(const QString &value)
{
    if (value == m_tileHost)
        return;
    m_tileHost = value;
    if (m_created)
        setUrlTemplate(TileMath::baseMapTemplate(m_tileHost, m_dark));
    Q_EMIT inputsChanged();
}

void FlightMapView::setTrackColor(const QColor &value)
{
    if (value == m_trackColor)
        return;
    m_trackColor = value;
    redraw();
}

void FlightMapView::setPuckColor(const QColor &value)
{
    if (value == m_puckColor)
        return;
    m_puckColor = value;
    redraw();
}

void FlightMapView::setHighlight(const QList<QPointF> &value)
{
    if (value == m_highlight)
        return;
    m_highlight = value;
    redraw();
}

void FlightMapView::setRecenterToken(int value)
{
    if (value == m_recenterToken)
        return;
    m_recenterToken = value;
    redraw();
}

int FlightMapView::sampleNear(double x, double y) const
{
    const TileMath::Camera cam = camera();
    const QSizeF size = viewSize();
    int best = -1;
    double bestDistance = pathHitRadius;
    for (int i = 0; i < m_path.size(); ++i) {
        const QPointF at = TileMath::toView(geo(m_path[i]), cam, size);
        const double distance = QLineF(at, QPointF(x, y)).length();
        if (distance <= bestDistance) {
            best = i;
            bestDistance = distance;
        }
    }
    return best;
}

void FlightMapView::pressAt(double x, double y)
{
    const int index = sampleNear(x, y);
    if (index >= 0) {
        Q_EMIT pathPressed(index);
        return;
    }
    TileMapItem::pressAt(x, y);
}

QImage FlightMapView::puckImage(const QColor &color, double degrees, qreal pixelRatio)
{
    const int pixels = int(std::ceil(puckSize * pixelRatio));
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(pixelRatio);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing, true);
    const double s = puckSize;
    p.setPen(QPen(Qt::white, 2));
    p.setBrush(color);
    p.drawEllipse(QRectF(1, 1, s - 2, s - 2).adjusted(1, 1, -1, -1));
    p.translate(s / 2, s / 2);
    p.rotate(degrees);
    p.translate(-s / 2, -s / 2);
    const QPointF arrow[] = {{0.5 * s, 0.22 * s}, {0.72 * s, 0.74 * s}, {0.5 * s, 0.6 * s}, {0.28 * s, 0.74 * s}};
    p.setPen(Qt::NoPen);
    p.setBrush(Qt::white);
    p.drawPolygon(arrow, 4);
    return image;
}

void FlightMapView::paintOverlay(QPainter *painter)
{
    painter->setRenderHint(QPainter::Antialiasing, true);
    const TileMath::Camera cam = camera();
    const QSizeF size = viewSize();
    const auto polyline = [&](const QList<QPointF> &points) {
        QPainterPath line;
        for (int i = 0; i < points.size(); ++i) {
            const QPointF at = TileMath::toView(geo(points[i]), cam, size);
            if (i == 0)
                line.moveTo(at);
            else
                line.lineTo(at);
        }
        return line;
    };
    // One sample draws no line.
    if (m_path.size() > 1) {
        QColor track = m_drawnTrackColor;
        track.setAlphaF(0.9f);
        painter->setPen(QPen(track, 4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter->setBrush(Qt::NoBrush);
        painter->drawPath(polyline(m_path));
    }
    if (m_drawnHighlight.size() > 1) {
        painter->setPen(QPen(m_highlightColor, 7, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter->drawPath(polyline(m_drawnHighlight));
    }
    if (m_marker && !m_puck.isNull()) {
        const QPointF at = TileMath::toView(geo(*m_marker), cam, size);
        painter->drawImage(QRectF(at.x() - puckSize / 2.0, at.y() - puckSize / 2.0, puckSize, puckSize), m_puck);
    }
}
