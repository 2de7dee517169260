#pragma once

#include <QHash>
#include <QImage>
#include <QObject>
#include <QUrl>

#include <QCoroTask>

#include <optional>

class APIClient;

/// @brief Decoded thumbnails for the life of the process, keyed by the URL's full text.
///
/// Loads through the client's own network access (so the session header goes along). The
/// HTTP status is not looked at: whatever decodes is an image, whatever doesn't is nothing and
/// is not remembered, so the next view of the same URL asks again. No size limit, no clearing
/// at sign-out: thumbnails of one library are few and small.
class ImageCache : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    [[nodiscard]] std::optional<QImage> cached(const QUrl &url) const;
    /// The image at `url`: from memory when it is there, else fetched with `client`.
    QCoro::Task<std::optional<QImage>> load(const APIClient *client, QUrl url);

    [[nodiscard]] int size() const { return int(m_images.size()); }

private:
    QHash<QString, QImage> m_images;
};
