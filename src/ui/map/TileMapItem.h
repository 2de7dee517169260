#pragma once

#include "PinClusters.h"
#include "TileMath.h"

#include <QColor>
#include <QQuickPaintedItem>
#include <QVariantAnimation>
#include <QVariantList>

class TileLoader;

/// @brief A raster tile map for QML: a URL-template base map, pins that cluster on a grid,
/// fitting, panning and zooming, and the base map's attribution.
///
/// Pins are `{id, lat, lon, title}` maps; a pin on its own shows its title under the marker
/// where there is room for it. Setting new pins fits them into the view (padding
/// `fitPadding`: top, then the other sides) without animation; an empty list leaves the camera
/// alone. A press on a pin emits `pinTapped(id)`; a press on a cluster zooms, animated, to its
/// members. The caller decides when the pins count as new (the gallery: when its id list changes).
class TileMapItem : public QQuickPaintedItem
{
    Q_OBJECT
    Q_PROPERTY(QString urlTemplate READ urlTemplate WRITE setUrlTemplate NOTIFY urlTemplateChanged FINAL)
    Q_PROPERTY(QString attribution READ attribution WRITE setAttribution NOTIFY attributionChanged FINAL)
    Q_PROPERTY(QString cacheDir READ cacheDir WRITE setCacheDir NOTIFY cacheDirChanged FINAL)
    Q_PROPERTY(QVariantList pins READ pins WRITE setPins NOTIFY pinsChanged FINAL)
    Q_PROPERTY(QColor tint READ tint WRITE setTint NOTIFY styleChanged FINAL)
    Q_PROPERTY(QColor background READ background WRITE setBackground NOTIFY styleChanged FINAL)
    Q_PROPERTY(QColor textColor READ textColor WRITE setTextColor NOTIFY styleChanged FINAL)
    Q_PROPERTY(double fitTopPadding READ fitTopPadding WRITE setFitTopPadding NOTIFY styleChanged FINAL)
    Q_PROPERTY(double fitPadding READ fitPadding WRITE setFitPadding NOTIFY styleChanged FINAL)
    Q_PROPERTY(double centerLat READ centerLat NOTIFY cameraChanged FINAL)
    Q_PROPERTY(double centerLon READ centerLon NOTIFY cameraChanged FINAL)
    Q_PROPERTY(double zoom READ zoom NOTIFY cameraChanged FINAL)
    Q_PROPERTY(int markerCount READ markerCount NOTIFY cameraChanged FINAL)
    Q_PROPERTY(int pendingTiles READ pendingTiles NOTIFY tilesChanged FINAL)
public:
    explicit TileMapItem(QQuickItem *parent = nullptr);
    ~TileMapItem() override;

    [[nodiscard]] QString urlTemplate() const { return m_urlTemplate; }
    void setUrlTemplate(const QString &value);
    [[nodiscard]] QString attribution() const { return m_attribution; }
    void setAttribution(const QString &value);
    [[nodiscard]] QString cacheDir() const { return m_cacheDir; }
    void setCacheDir(const QString &value);
    [[nodiscard]] QVariantList pins() const { return m_pinList; }
    void setPins(const QVariantList &value);
    [[nodiscard]] QColor tint() const { return m_tint; }
    void setTint(const QColor &value);
    [[nodiscard]] QColor background() const { return m_background; }
    void setBackground(const QColor &value);
    [[nodiscard]] QColor textColor() const { return m_textColor; }
    void setTextColor(const QColor &value);
    [[nodiscard]] double fitTopPadding() const { return m_fitTop; }
    void setFitTopPadding(double value);
    [[nodiscard]] double fitPadding() const { return m_fitSides; }
    void setFitPadding(double value);

    [[nodiscard]] double centerLat() const { return m_camera.center.lat; }
    [[nodiscard]] double centerLon() const { return m_camera.center.lon; }
    [[nodiscard]] double zoom() const { return m_camera.zoom; }
    [[nodiscard]] int markerCount() const;
    [[nodiscard]] int pendingTiles() const;

    /// Moves the camera at once.
    Q_INVOKABLE void setCamera(double lat, double lon, double zoom);
    /// Shows every pin inside the padding, without animation.
    Q_INVOKABLE void fitPins();
    /// Tiles of the current view not yet in memory (0 once the view is complete).
    Q_INVOKABLE int missingTiles() const;
    /// What a press at (x, y) would hit: a pin's id, "cluster:<n>" or "".
    Q_INVOKABLE QString hitAt(double x, double y) const;
    /// Presses at (x, y) as a pointer would.
    Q_INVOKABLE virtual void pressAt(double x, double y);
    /// Where the title of the pin `id` is drawn now, empty when it isn't (clustered, no title,
    /// or no room beside the other titles).
    Q_INVOKABLE QRectF titleRect(const QString &id) const;

    void paint(QPainter *painter) override;
    void componentComplete() override;

Q_SIGNALS:
    void urlTemplateChanged();
    void attributionChanged();
    void cacheDirChanged();
    void pinsChanged();
    void styleChanged();
    void cameraChanged();
    void tilesChanged();
    void pinTapped(const QString &id);

protected:
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

    /// Items built on the map draw their own layer here: over the tiles and pins, under the
    /// attribution.
    virtual void paintOverlay(QPainter *) {}
    void animateTo(const TileMath::Camera &target);
    [[nodiscard]] TileMath::Camera camera() const { return m_camera; }
    [[nodiscard]] QSizeF viewSize() const { return {width(), height()}; }

private:
    void changeCamera(const TileMath::Camera &camera);
    [[nodiscard]] QList<PinClusters::Cluster> clusters() const;
    struct Title {
        int pin;
        QRectF box;
        QString text;  ///< elided to fit
    };
    /// The titles that fit, in pin order: each under its marker, none over another title or
    /// over a marker, the way a map leaves out labels that would collide.
    [[nodiscard]] QList<Title> titles(const QList<PinClusters::Cluster> &clusters) const;
    void drawTiles(QPainter *painter);
    void drawMarkers(QPainter *painter);
    void drawTitles(QPainter *painter, const QList<PinClusters::Cluster> &clusters);
    void drawAttribution(QPainter *painter);
    TileLoader *loader();

    QString m_urlTemplate;
    QString m_attribution;
    QString m_cacheDir;
    QVariantList m_pinList;
    QList<MapPin> m_pins;
    QColor m_tint{QStringLiteral("#46B8FF")};
    QColor m_background{QStringLiteral("#1B2233")};
    QColor m_textColor{Qt::white};
    double m_fitTop = 60;
    double m_fitSides = 40;
    TileMath::Camera m_camera{{30, 0}, 2};
    bool m_fitWhenSized = false;
    TileLoader *m_loader = nullptr;
    QVariantAnimation m_animation;
    TileMath::Camera m_animFrom;
    TileMath::Camera m_animTo;
    QPointF m_pressPos;
    QPointF m_lastPos;
    bool m_dragged = false;
};
