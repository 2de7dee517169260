#include "TileLoader.h"

#include <QDir>
#include <QNetworkAccessManager>
#include <QNetworkDiskCache>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QStandardPaths>

namespace {
constexpr int memoryTiles = 384;  // a few screens of @2x tiles
constexpr qint64 diskBytes = 200LL * 1024 * 1024;
} // namespace

TileLoader::TileLoader(const QString &cacheDir, QObject *parent)
    : QObject(parent), m_network(new QNetworkAccessManager(this)), m_images(memoryTiles)
{
    auto *disk = new QNetworkDiskCache(m_network);
    disk->setCacheDirectory(cacheDir.isEmpty()
                                ? QDir(QStandardPaths::writableLocation(QStandardPaths::CacheLocation)).filePath(QStringLiteral("tiles"))
                                : cacheDir);
    disk->setMaximumCacheSize(diskBytes);
    m_network->setCache(disk);
}

TileLoader::~TileLoader() = default;

QImage TileLoader::cached(const QString &url) const
{
    const QImage *image = m_images.object(url);
    return image ? *image : QImage();
}

QImage TileLoader::tile(const QString &url)
{
    if (const QImage *image = m_images.object(url))
        return *image;
    if (m_pending.contains(url))
        return {};
    m_pending.insert(url);
    QNetworkRequest request{QUrl(url)};
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::PreferCache);
    request.setHeader(QNetworkRequest::UserAgentHeader, QStringLiteral("Aeroloom"));
    request.setTransferTimeout(20000);
    QNetworkReply *reply = m_network->get(request);
    connect(reply, &QNetworkReply::finished, this, [this, reply, url] {
        reply->deleteLater();
        m_pending.remove(url);
        if (reply->error() == QNetworkReply::NoError) {
            QImage image;
            if (image.loadFromData(reply->readAll()))
                m_images.insert(url, new QImage(std::move(image)));
        }
        Q_EMIT tileArrived();
    });
    return {};
}
