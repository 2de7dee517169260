#pragma once

#include "ClipFilmstrip.h"

#include <QColor>
#include <QImage>
#include <QList>
#include <QPointer>
#include <QQuickPaintedItem>
#include <QTimer>
#include <QUrl>

class FilmstripFrames;

/// @brief Draws a `ClipFilmstrip`: its frames, the trimmed stretch between two handles, the
/// playhead; and hands the pilot's drags to it. The frames are made for each size the strip
/// takes (once it has settled) and stop being made when the item goes.
class ClipFilmstripView : public QQuickPaintedItem
{
    Q_OBJECT
    Q_PROPERTY(ClipFilmstrip *strip READ strip WRITE setStrip NOTIFY stripChanged FINAL)
    Q_PROPERTY(QColor accent READ accent WRITE setAccent NOTIFY lookChanged FINAL)
    Q_PROPERTY(QColor backing READ backing WRITE setBacking NOTIFY lookChanged FINAL)
    Q_PROPERTY(int framesShown READ framesShown NOTIFY framesChanged FINAL)
    Q_PROPERTY(bool makingFrames READ makingFrames NOTIFY framesChanged FINAL)
public:
    explicit ClipFilmstripView(QQuickItem *parent = nullptr);
    ~ClipFilmstripView() override;

    [[nodiscard]] ClipFilmstrip *strip() const { return m_strip; }
    void setStrip(ClipFilmstrip *strip);
    [[nodiscard]] QColor accent() const { return m_accent; }
    void setAccent(const QColor &color);
    [[nodiscard]] QColor backing() const { return m_backing; }
    void setBacking(const QColor &color);
    /// How many frames have arrived for the current size.
    [[nodiscard]] int framesShown() const;
    /// Frames for the current size are still on their way (or about to be asked for).
    [[nodiscard]] bool makingFrames() const;

    void paint(QPainter *painter) override;

Q_SIGNALS:
    void stripChanged();
    void lookChanged();
    void framesChanged();

protected:
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseUngrabEvent() override;

private:
    void scheduleFrames();
    void makeFrames();
    void paintHandle(QPainter *painter, double x, bool left) const;

    QPointer<ClipFilmstrip> m_strip;
    FilmstripFrames *m_frames;
    QList<QImage> m_images;  ///< one slot per frame time; null until it arrives
    QTimer m_settle;         ///< a resize in progress makes frames only once it stops
    QSize m_madeFor;
    double m_madeFrom = 0, m_madeTo = 0;
    QUrl m_madeFromSource;
    QColor m_accent{QStringLiteral("#46B8FF")};
    QColor m_backing{11, 18, 36};
    double m_pressX = 0;
    bool m_pressed = false;
};
