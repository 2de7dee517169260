#include "TileMapItem.h"

#include "TileLoader.h"

#include <QFont>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QWheelEvent>

#include <cmath>

namespace {
constexpr double markerRadius = 13;
constexpr double clusterRadius = 17;
constexpr double dragSlop = 4;
constexpr double titleGap = 3;
constexpr double titleMaxWidth = 170;

QFont titleFont(QFont font)
{
    font.setPixelSize(11);
    font.setBold(true);
    return font;
}
} // namespace

TileMapItem::TileMapItem(QQuickItem *parent) : QQuickPaintedItem(parent)
{
    setAcceptedMouseButtons(Qt::LeftButton);
    setAntialiasing(true);
    m_animation.setDuration(350);
    m_animation.setEasingCurve(QEasingCurve::OutCubic);
    m_animation.setStartValue(0.0);
    m_animation.setEndValue(1.0);
    connect(&m_animation, &QVariantAnimation::valueChanged, this, [this](const QVariant &value) {
        const double t = value.toDouble();
        // Interpolate in world pixels at the target zoom so the path looks straight on screen.
        const QPointF a = TileMath::project(m_animFrom.center, m_animTo.zoom);
        const QPointF b = TileMath::project(m_animTo.center, m_animTo.zoom);
        changeCamera({TileMath::unproject(a + (b - a) * t, m_animTo.zoom),
                      m_animFrom.zoom + (m_animTo.zoom - m_animFrom.zoom) * t});
    });
}

TileMapItem::~TileMapItem() = default;

TileLoader *TileMapItem::loader()
{
    if (!m_loader) {
        m_loader = new TileLoader(m_cacheDir, this);
        connect(m_loader, &TileLoader::tileArrived, this, [this] {
            update();
            Q_EMIT tilesChanged();
        });
    }
    return m_loader;
}

void TileMapItem::setUrlTemplate(const QString &value)
{
    if (value == m_urlTemplate)
        return;
    m_urlTemplate = value;
    Q_EMIT urlTemplateChanged();
    update();
}

void TileMapItem::setAttribution(const QString &value)
{
    if (value == m_attribution)
        return;
    m_attribution = value;
    Q_EMIT attributionChanged();
    update();
}

void TileMapItem::setCacheDir(const QString &value)
{
    if (value == m_cacheDir || m_loader)  // fixed once tiles have been asked for
        return;
    m_cacheDir = value;
    Q_EMIT cacheDirChanged();
}

void TileMapItem::setPins(const QVariantList &value)
{
    m_pinList = value;
    m_pins.clear();
    for (const QVariant &entry : value) {
        const QVariantMap map = entry.toMap();
        m_pins.append(MapPin{map.value(QStringLiteral("id")).toString(),
                             {map.value(QStringLiteral("lat")).toDouble(), map.value(QStringLiteral("lon")).toDouble()},
                             map.value(QStringLiteral("title")).toString()});
    }
    Q_EMIT pinsChanged();
    if (!m_pins.isEmpty())
        fitPins();
    else
        Q_EMIT cameraChanged();
    update();
}

void TileMapItem::setTint(const QColor &value)
{
    if (value == m_tint)
        return;
    m_tint = value;
    Q_EMIT styleChanged();
    update();
}

void TileMapItem::setBackground(const QColor &value)
{
    if (value == m_background)
        return;
    m_background = value;
    Q_EMIT styleChanged();
    update();
}

void TileMapItem::setTextColor(const QColor &value)
{
    if (value == m_textColor)
        return;
    m_textColor = value;
    Q_EMIT styleChanged();
    update();
}

void TileMapItem::setFitTopPadding(double value)
{
    m_fitTop = value;
    Q_EMIT styleChanged();
}

void TileMapItem::setFitPadding(double value)
{
    m_fitSides = value;
    Q_EMIT styleChanged();
}

int TileMapItem::markerCount() const
{
    return int(clusters().size());
}

int TileMapItem::pendingTiles() const
{
    return m_loader ? m_loader->pending() : 0;
}

int TileMapItem::missingTiles() const
{
    int missing = 0;
    for (const TileMath::TileRef &ref : TileMath::visibleTiles(m_camera, viewSize()))
        missing += !m_loader || m_loader->cached(TileMath::tileUrl(m_urlTemplate, ref.z, ref.x, ref.y)).isNull();
    return missing;
}

void TileMapItem::setCamera(double lat, double lon, double zoom)
{
    m_animation.stop();
    changeCamera({{lat, lon}, std::clamp(zoom, TileMath::minZoom, TileMath::maxZoom)});
}

void TileMapItem::changeCamera(const TileMath::Camera &camera)
{
    m_camera = camera;
    m_camera.center.lat = std::clamp(m_camera.center.lat, -TileMath::maxLatitude, TileMath::maxLatitude);
    Q_EMIT cameraChanged();
    update();
}

void TileMapItem::fitPins()
{
    QList<TileMath::GeoPoint> points;
    for (const MapPin &pin : std::as_const(m_pins))
        points.append(pin.at);
    const auto bounds = TileMath::boundsOf(points);
    if (!bounds)
        return;
    if (width() <= 0 || height() <= 0) {
        m_fitWhenSized = true;
        return;
    }
    m_animation.stop();
    changeCamera(TileMath::fit(*bounds, viewSize(), QMarginsF(m_fitSides, m_fitTop, m_fitSides, m_fitSides)));
}

void TileMapItem::animateTo(const TileMath::Camera &target)
{
    m_animation.stop();
    m_animFrom = m_camera;
    m_animTo = target;
    m_animation.start();
}

void TileMapItem::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickPaintedItem::geometryChange(newGeometry, oldGeometry);
    if (m_fitWhenSized && newGeometry.width() > 0 && newGeometry.height() > 0) {
        m_fitWhenSized = false;
        fitPins();
    }
    Q_EMIT cameraChanged();
}

QList<PinClusters::Cluster> TileMapItem::clusters() const
{
    return PinClusters::cluster(m_pins, m_camera, viewSize());
}

QString TileMapItem::hitAt(double x, double y) const
{
    const auto found = clusters();
    // The marker drawn last is on top: search from the end.
    for (auto it = found.crbegin(); it != found.crend(); ++it) {
        const double radius = it->single() ? markerRadius : clusterRadius;
        if (QLineF(it->position, QPointF(x, y)).length() <= radius + 2)
            return it->single() ? m_pins[it->members.first()].id
                                : QStringLiteral("cluster:%1").arg(it->members.size());
    }
    return {};
}

void TileMapItem::pressAt(double x, double y)
{
    const auto found = clusters();
    for (auto it = found.crbegin(); it != found.crend(); ++it) {
        const double radius = it->single() ? markerRadius : clusterRadius;
        if (QLineF(it->position, QPointF(x, y)).length() > radius + 2)
            continue;
        if (it->single()) {
            Q_EMIT pinTapped(m_pins[it->members.first()].id);
        } else {
            // A cluster opens nothing: it brings its members into view.
            const auto bounds = PinClusters::boundsOf(m_pins, it->members);
            animateTo(TileMath::fit(bounds, viewSize(), QMarginsF(m_fitSides, m_fitTop, m_fitSides, m_fitSides)));
        }
        return;
    }
}

void TileMapItem::mousePressEvent(QMouseEvent *event)
{
    m_pressPos = m_lastPos = event->position();
    m_dragged = false;
    m_animation.stop();
    event->accept();
}

void TileMapItem::mouseMoveEvent(QMouseEvent *event)
{
    const QPointF pos = event->position();
    if (!m_dragged && QLineF(pos, m_pressPos).length() < dragSlop)
        return;
    m_dragged = true;
    const QPointF centre = TileMath::project(m_camera.center, m_camera.zoom) - (pos - m_lastPos);
    m_lastPos = pos;
    changeCamera({TileMath::unproject(centre, m_camera.zoom), m_camera.zoom});
    event->accept();
}

void TileMapItem::mouseReleaseEvent(QMouseEvent *event)
{
    if (!m_dragged)
        pressAt(event->position().x(), event->position().y());
    event->accept();
}

void TileMapItem::wheelEvent(QWheelEvent *event)
{
    const double steps = event->angleDelta().y() / 120.0;
    if (steps == 0)
        return;
    // Zoom about the pointer: the place under it stays under it.
    const QPointF at = event->position();
    const TileMath::GeoPoint anchor = TileMath::fromView(at, m_camera, viewSize());
    const double zoom = std::clamp(m_camera.zoom + steps * 0.5, TileMath::minZoom, TileMath::maxZoom);
    const QPointF anchorWorld = TileMath::project(anchor, zoom);
    const QPointF centre = anchorWorld - (at - QPointF(width() / 2, height() / 2));
    m_animation.stop();
    changeCamera({TileMath::unproject(centre, zoom), zoom});
    event->accept();
}

void TileMapItem::paint(QPainter *painter)
{
    painter->fillRect(QRectF(0, 0, width(), height()), m_background);
    drawTiles(painter);
    drawMarkers(painter);
    drawTitles(painter, clusters());
    paintOverlay(painter);
    drawAttribution(painter);
}

void TileMapItem::componentComplete()
{
    QQuickPaintedItem::componentComplete();
    // Made here, on the GUI thread: with a threaded scene graph `paint()` runs on the render thread.
    loader();
}

QRectF TileMapItem::titleRect(const QString &id) const
{
    for (const Title &title : titles(clusters()))
        if (m_pins[title.pin].id == id)
            return title.box;
    return {};
}

QList<TileMapItem::Title> TileMapItem::titles(const QList<PinClusters::Cluster> &clusters) const
{
    const QFontMetricsF metrics(titleFont(QFont()));
    QList<QRectF> taken;
    for (const PinClusters::Cluster &c : clusters) {
        const double r = c.single() ? markerRadius : clusterRadius;
        taken.append(QRectF(c.position.x() - r, c.position.y() - r, 2 * r, 2 * r));
    }
    QList<Title> shown;
    for (const PinClusters::Cluster &c : clusters) {
        const int pin = c.members.first();
        if (!c.single() || m_pins[pin].title.isEmpty())
            continue;
        const QString text = metrics.elidedText(m_pins[pin].title, Qt::ElideRight, titleMaxWidth);
        const QSizeF size(metrics.horizontalAdvance(text) + 10, metrics.height() + 4);
        const QRectF box(c.position.x() - size.width() / 2, c.position.y() + markerRadius + titleGap, size.width(),
                         size.height());
        const bool collides = std::any_of(taken.begin(), taken.end(), [&](const QRectF &other) { return other.intersects(box); });
        if (collides || !QRectF(0, 0, width(), height()).contains(box))
            continue;
        taken.append(box);
        shown.append({pin, box, text});
    }
    return shown;
}

void TileMapItem::drawTitles(QPainter *painter, const QList<PinClusters::Cluster> &clusters)
{
    painter->setFont(titleFont(QFont()));
    // On a backing of the map's own colour, so the words read over any tile.
    QColor backing = m_background;
    backing.setAlpha(215);
    for (const Title &title : titles(clusters)) {
        painter->setPen(Qt::NoPen);
        painter->setBrush(backing);
        painter->drawRoundedRect(title.box, 5, 5);
        painter->setPen(m_textColor);
        painter->drawText(title.box, Qt::AlignCenter, title.text);
    }
}

void TileMapItem::drawTiles(QPainter *painter)
{
    if (m_urlTemplate.isEmpty() || !m_loader)
        return;
    painter->setRenderHint(QPainter::SmoothPixmapTransform, true);
    TileLoader *tiles = m_loader;
    QStringList wanted;
    for (const TileMath::TileRef &ref : TileMath::visibleTiles(m_camera, viewSize())) {
        const QString url = TileMath::tileUrl(m_urlTemplate, ref.z, ref.x, ref.y);
        const QImage image = tiles->cached(url);
        if (!image.isNull()) {
            painter->drawImage(ref.rect, image);
            continue;
        }
        wanted.append(url);
        // Until it arrives, stretch the part of a coarser tile that is already at hand.
        for (int up = 1; up <= 3 && ref.z - up >= 0; ++up) {
            const QImage parent = tiles->cached(TileMath::tileUrl(m_urlTemplate, ref.z - up, ref.x >> up, ref.y >> up));
            if (parent.isNull())
                continue;
            const int parts = 1 << up;
            const double w = double(parent.width()) / parts;
            const double h = double(parent.height()) / parts;
            const QRectF source((ref.x % parts) * w, (ref.y % parts) * h, w, h);
            painter->drawImage(ref.rect, parent, source);
            break;
        }
    }
    // Requests leave from the loader's own thread, whichever thread paints.
    if (!wanted.isEmpty())
        QMetaObject::invokeMethod(tiles, [tiles, wanted] {
            for (const QString &url : wanted)
                (void)tiles->tile(url);
        }, Qt::QueuedConnection);
}

void TileMapItem::drawMarkers(QPainter *painter)
{
    painter->setRenderHint(QPainter::Antialiasing, true);
    QFont font = painter->font();
    for (const PinClusters::Cluster &c : clusters()) {
        const bool single = c.single();
        const double r = single ? markerRadius : clusterRadius;
        painter->setPen(QPen(QColor(255, 255, 255, 230), 2));
        painter->setBrush(m_tint);
        painter->drawEllipse(c.position, r, r);
        painter->setPen(Qt::white);
        font.setPixelSize(single ? 14 : 13);
        font.setBold(!single);
        painter->setFont(font);
        const QRectF box(c.position.x() - r, c.position.y() - r, 2 * r, 2 * r);
        painter->drawText(box, Qt::AlignCenter, single ? QStringLiteral("✈") : QString::number(c.members.size()));
    }
}

void TileMapItem::drawAttribution(QPainter *painter)
{
    if (m_attribution.isEmpty())
        return;
    QFont font = painter->font();
    font.setPixelSize(11);
    font.setBold(false);
    painter->setFont(font);
    const QFontMetricsF metrics(font);
    const QSizeF text(metrics.horizontalAdvance(m_attribution) + 12, metrics.height() + 4);
    const QRectF box(width() - text.width() - 4, height() - text.height() - 4, text.width(), text.height());
    QColor shade = m_background;
    shade.setAlpha(200);
    painter->setPen(Qt::NoPen);
    painter->setBrush(shade);
    painter->drawRoundedRect(box, 4, 4);
    painter->setPen(m_textColor);
    painter->drawText(box, Qt::AlignCenter, m_attribution);
}
