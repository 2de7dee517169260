#include "ImageCache.h"

#include "APIClient.h"

#include <QNetworkReply>
#include <QPointer>

#include <QCoroNetworkReply>

std::optional<QImage> ImageCache::cached(const QUrl &url) const
{
    const auto it = m_images.constFind(url.toString(QUrl::FullyEncoded));
    if (it == m_images.constEnd())
        return std::nullopt;
    return *it;
}

QCoro::Task<std::optional<QImage>> ImageCache::load(const APIClient *client, QUrl url)
{
    if (auto hit = cached(url))
        co_return hit;
    if (!client || !url.isValid())
        co_return std::nullopt;
    QPointer self(this);
    QNetworkReply *reply = client->network()->get(client->request(url));
    if (!reply->isFinished())
        co_await qCoro(reply).waitForFinished();
    const QByteArray bytes = reply->readAll();
    reply->deleteLater();
    QImage image;
    if (!image.loadFromData(bytes))
        co_return std::nullopt;
    if (self)
        m_images.insert(url.toString(QUrl::FullyEncoded), image);
    co_return image;
}
