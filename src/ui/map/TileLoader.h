#pragma once

#include <QCache>
#include <QImage>
#include <QObject>
#include <QSet>
#include <QString>

class QNetworkAccessManager;

/// @brief Raster tiles by URL, kept in memory for drawing and on disk between runs.
///
/// Requests go out once per URL until answered; a failed tile is asked for again only when it is
/// needed after a later redraw. Fetching never blocks drawing: `tile()` answers from memory.
class TileLoader : public QObject
{
    Q_OBJECT
public:
    /// `cacheDir` empty: the program's cache folder, under "tiles".
    explicit TileLoader(const QString &cacheDir = {}, QObject *parent = nullptr);
    ~TileLoader() override;

    /// The image when it is in memory; otherwise null, and a request is started.
    [[nodiscard]] QImage tile(const QString &url);
    /// The image only when it is already in memory.
    [[nodiscard]] QImage cached(const QString &url) const;
    [[nodiscard]] int pending() const { return int(m_pending.size()); }

Q_SIGNALS:
    /// A tile arrived (or failed): time to draw again.
    void tileArrived();

private:
    QNetworkAccessManager *m_network;
    QCache<QString, QImage> m_images;
    QSet<QString> m_pending;
};
