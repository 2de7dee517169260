#pragma once

#include <QImage>
#include <QPointer>
#include <QQuickPaintedItem>
#include <QUrl>

#include <QCoroTask>

class APIClient;
class ImageCache;

/// @brief Draws one server image fetched with the client's session: letterboxed on the dark
/// blue backing, or filling (cropped) on black. `loaded` is false until an image is there,
/// which is when the QML wrapper shows its spinner.
class AuthedImageItem : public QQuickPaintedItem
{
    Q_OBJECT
    Q_PROPERTY(QUrl source READ source WRITE setSource NOTIFY sourceChanged FINAL)
    Q_PROPERTY(QObject *client READ client WRITE setClient NOTIFY clientChanged FINAL)
    Q_PROPERTY(QObject *cache READ cache WRITE setCache NOTIFY cacheChanged FINAL)
    Q_PROPERTY(bool letterbox READ letterbox WRITE setLetterbox NOTIFY letterboxChanged FINAL)
    Q_PROPERTY(bool loaded READ loaded NOTIFY loadedChanged FINAL)
public:
    explicit AuthedImageItem(QQuickItem *parent = nullptr);

    [[nodiscard]] QUrl source() const { return m_source; }
    void setSource(const QUrl &url);
    [[nodiscard]] QObject *client() const;
    void setClient(QObject *client);
    [[nodiscard]] QObject *cache() const;
    void setCache(QObject *cache);
    [[nodiscard]] bool letterbox() const { return m_letterbox; }
    void setLetterbox(bool value);
    [[nodiscard]] bool loaded() const { return !m_image.isNull(); }

    void paint(QPainter *painter) override;

Q_SIGNALS:
    void sourceChanged();
    void clientChanged();
    void cacheChanged();
    void letterboxChanged();
    void loadedChanged();

private:
    void restart();
    QCoro::Task<> fetch(quint64 generation, QUrl url);
    void setImage(const QImage &image);

    QUrl m_source;
    QPointer<APIClient> m_client;
    QPointer<ImageCache> m_cache;
    bool m_letterbox = false;
    QImage m_image;
    quint64 m_generation = 0;
};
