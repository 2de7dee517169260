#include "AuthedImageItem.h"

#include "APIClient.h"
#include "ImageCache.h"

#include <QPainter>

AuthedImageItem::AuthedImageItem(QQuickItem *parent)
    : QQuickPaintedItem(parent)
{
    setAntialiasing(true);
}

void AuthedImageItem::setSource(const QUrl &url)
{
    if (m_source == url)
        return;
    m_source = url;
    Q_EMIT sourceChanged();
    restart();
}

QObject *AuthedImageItem::client() const
{
    return m_client.data();
}

void AuthedImageItem::setClient(QObject *client)
{
    auto *typed = qobject_cast<APIClient *>(client);
    if (m_client == typed)
        return;
    m_client = typed;
    Q_EMIT clientChanged();
    if (m_image.isNull())
        restart();
}

QObject *AuthedImageItem::cache() const
{
    return m_cache.data();
}

void AuthedImageItem::setCache(QObject *cache)
{
    auto *typed = qobject_cast<ImageCache *>(cache);
    if (m_cache == typed)
        return;
    m_cache = typed;
    Q_EMIT cacheChanged();
    restart();
}

void AuthedImageItem::setLetterbox(bool value)
{
    if (m_letterbox == value)
        return;
    m_letterbox = value;
    Q_EMIT letterboxChanged();
    update();
}

void AuthedImageItem::restart()
{
    // A newer source wins: results of older loads are dropped by their generation.
    const quint64 generation = ++m_generation;
    if (m_cache) {
        if (auto hit = m_cache->cached(m_source)) {
            setImage(*hit);
            return;
        }
    }
    setImage({});
    if (m_cache && m_client && m_source.isValid())
        (void)fetch(generation, m_source);
}

QCoro::Task<> AuthedImageItem::fetch(quint64 generation, QUrl url)
{
    QPointer self(this);
    const auto image = co_await m_cache->load(m_client.data(), url);
    if (!self || generation != m_generation || !image)
        co_return;
    setImage(*image);
}

void AuthedImageItem::setImage(const QImage &image)
{
    const bool wasLoaded = loaded();
    m_image = image;
    if (wasLoaded != loaded())
        Q_EMIT loadedChanged();
    update();
}

void AuthedImageItem::paint(QPainter *painter)
{
    const QRectF frame(0, 0, width(), height());
    painter->fillRect(frame, m_letterbox ? QColor(11, 18, 36) : QColor(Qt::black));
    if (m_image.isNull() || frame.isEmpty())
        return;
    const QSizeF imageSize = m_image.size();
    const qreal fit = std::min(frame.width() / imageSize.width(), frame.height() / imageSize.height());
    const qreal fill = std::max(frame.width() / imageSize.width(), frame.height() / imageSize.height());
    const QSizeF drawn = imageSize * (m_letterbox ? fit : fill);
    const QRectF target(frame.center().x() - drawn.width() / 2, frame.center().y() - drawn.height() / 2,
                        drawn.width(), drawn.height());
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->setClipRect(frame);
    painter->drawImage(target, m_image);
}
