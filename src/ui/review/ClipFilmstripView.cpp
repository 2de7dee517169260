#include "ClipFilmstripView.h"

#include "ClipFilmstrip.h"
#include "FilmstripFrames.h"
#include "LightboxEngine.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace {
constexpr double handleWidth = 12;
// A strip that is being resized waits this long before its frames are made again.
constexpr int settleMs = 120;
} // namespace

ClipFilmstripView::ClipFilmstripView(QQuickItem *parent)
    : QQuickPaintedItem(parent), m_frames(new FilmstripFrames(this))
{
    setAcceptedMouseButtons(Qt::LeftButton);
    setAntialiasing(true);
    m_settle.setSingleShot(true);
    m_settle.setInterval(settleMs);
    connect(&m_settle, &QTimer::timeout, this, &ClipFilmstripView::makeFrames);
    connect(m_frames, &FilmstripFrames::finished, this, &ClipFilmstripView::framesChanged);
    connect(m_frames, &FilmstripFrames::frameReady, this, [this](int index, const QByteArray &jpeg) {
        QImage image;
        if (index < m_images.size() && image.loadFromData(jpeg, "JPG")) {
            m_images[index] = std::move(image);
            Q_EMIT framesChanged();
            update();
        }
    });
}

ClipFilmstripView::~ClipFilmstripView() = default;

void ClipFilmstripView::setStrip(ClipFilmstrip *strip)
{
    if (strip == m_strip)
        return;
    if (m_strip)
        m_strip->disconnect(this);
    m_strip = strip;
    if (strip) {
        strip->setWidth(width());
        connect(strip, &ClipFilmstrip::rangeChanged, this, &ClipFilmstripView::scheduleFrames);
        connect(strip, &ClipFilmstrip::clipChanged, this, &ClipFilmstripView::scheduleFrames);
        connect(strip, &ClipFilmstrip::draftChanged, this, [this] { update(); });
        connect(strip->engine(), &LightboxEngine::currentChanged, this, [this] { update(); });
    }
    scheduleFrames();
    Q_EMIT stripChanged();
}

void ClipFilmstripView::setAccent(const QColor &color)
{
    if (color == m_accent)
        return;
    m_accent = color;
    Q_EMIT lookChanged();
    update();
}

void ClipFilmstripView::setBacking(const QColor &color)
{
    if (color == m_backing)
        return;
    m_backing = color;
    Q_EMIT lookChanged();
    update();
}

int ClipFilmstripView::framesShown() const
{
    return int(std::count_if(m_images.begin(), m_images.end(), [](const QImage &i) { return !i.isNull(); }));
}

bool ClipFilmstripView::makingFrames() const
{
    return m_settle.isActive() || m_frames->running();
}

void ClipFilmstripView::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickPaintedItem::geometryChange(newGeometry, oldGeometry);
    if (m_strip)
        m_strip->setWidth(newGeometry.width());
    if (newGeometry.size() != oldGeometry.size())
        scheduleFrames();
}

void ClipFilmstripView::scheduleFrames()
{
    m_settle.start();
}

void ClipFilmstripView::makeFrames()
{
    if (!m_strip)
        return;
    const QSize size = QSizeF(width(), height()).toSize();
    if (size == m_madeFor && m_strip->rangeStart() == m_madeFrom && m_strip->rangeEnd() == m_madeTo
        && m_strip->source() == m_madeFromSource)
        return;
    m_madeFor = size;
    m_madeFromSource = m_strip->source();
    m_madeFrom = m_strip->rangeStart();
    m_madeTo = m_strip->rangeEnd();
    const QList<double> times = m_strip->frameTimes(width(), height());
    m_images = QList<QImage>(times.size());
    Q_EMIT framesChanged();
    update();
    // Three times the strip's height leaves the frames sharp on a dense screen.
    m_frames->start(m_strip->source(), m_strip->ffmpegHeaders(), times, int(height() * 3));
}

void ClipFilmstripView::paint(QPainter *painter)
{
    const QRectF area(0, 0, width(), height());
    QPainterPath rounded;
    rounded.addRoundedRect(area, 8, 8);
    painter->setClipPath(rounded);
    painter->fillRect(area, m_backing);
    if (!m_strip)
        return;

    // Frames side by side, each filling its slice.
    const int count = int(m_images.size());
    for (int i = 0; i < count; ++i) {
        const QImage &image = m_images[i];
        if (image.isNull())
            continue;
        const QRectF slice(width() * i / count, 0, width() / count + 0.5, height());
        const QSizeF scaled = image.size().scaled(slice.size().toSize(), Qt::KeepAspectRatioByExpanding);
        const QRectF source((image.width() - slice.width() * image.width() / scaled.width()) / 2,
                            (image.height() - slice.height() * image.height() / scaled.height()) / 2,
                            slice.width() * image.width() / scaled.width(),
                            slice.height() * image.height() / scaled.height());
        painter->drawImage(slice, image, source);
    }

    // Outside the stretch is dimmed; the stretch is framed by its handles.
    const double inX = m_strip->xOf(m_strip->draftStart());
    const double outX = m_strip->xOf(m_strip->draftEnd());
    const QColor dim(0, 0, 0, 150);
    painter->fillRect(QRectF(0, 0, std::max(0.0, inX), height()), dim);
    painter->fillRect(QRectF(outX, 0, std::max(0.0, width() - outX), height()), dim);
    painter->setPen(QPen(m_accent, 3));
    painter->drawLine(QPointF(inX, 1.5), QPointF(outX, 1.5));
    painter->drawLine(QPointF(inX, height() - 1.5), QPointF(outX, height() - 1.5));
    paintHandle(painter, inX, true);
    paintHandle(painter, outX, false);

    const double playX = m_strip->xOf(m_strip->engine()->current());
    if (playX >= 0 && playX <= width()) {
        painter->setPen(Qt::NoPen);
        painter->setBrush(Qt::white);
        painter->drawRoundedRect(QRectF(playX - 1.5, 0, 3, height()), 1.5, 1.5);
    }
}

void ClipFilmstripView::paintHandle(QPainter *painter, double x, bool left) const
{
    // A handle at the video's first or last frame steps inside the strip rather than off it.
    const double barX = std::clamp(left ? x - handleWidth : x, 0.0, std::max(0.0, width() - handleWidth));
    const QRectF bar(barX, 0, handleWidth, height());
    painter->setPen(Qt::NoPen);
    painter->setBrush(m_accent);
    painter->drawRoundedRect(bar, 4, 4);
    painter->setBrush(QColor(255, 255, 255, 220));
    painter->drawRoundedRect(QRectF(bar.center().x() - 1.5, height() * 0.3, 3, height() * 0.4), 1.5, 1.5);
}

void ClipFilmstripView::mousePressEvent(QMouseEvent *event)
{
    m_pressed = true;
    m_pressX = event->position().x();
    event->accept();
}

void ClipFilmstripView::mouseMoveEvent(QMouseEvent *event)
{
    if (m_pressed && m_strip)
        m_strip->dragChanged(m_pressX, event->position().x());
}

void ClipFilmstripView::mouseReleaseEvent(QMouseEvent *event)
{
    Q_UNUSED(event);
    m_pressed = false;
    if (m_strip)
        m_strip->dragEnded();
}

void ClipFilmstripView::mouseUngrabEvent()
{
    if (!m_pressed)
        return;
    m_pressed = false;
    if (m_strip)
        m_strip->dragEnded();
}
