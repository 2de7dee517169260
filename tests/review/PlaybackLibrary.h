#pragma once

#include "APIClient.h"
#include "TestServer.h"

#include <QStringList>
#include <QUrl>

#include <memory>

/// @brief A token-guarded library server holding the flights a player test opens: a good
/// proxy of a few seconds, one of random bytes and one cut off half way. Made once per suite.
class PlaybackLibrary
{
public:
    static constexpr double seconds = 6.0;
    static constexpr double frame = 1.0 / 25.0;

    PlaybackLibrary();

    [[nodiscard]] QUrl good() const { return proxy(QStringLiteral("20240512_093000_0001")); }
    [[nodiscard]] QUrl corrupt() const { return proxy(QStringLiteral("20240512_093000_0002")); }
    [[nodiscard]] QUrl truncated() const { return proxy(QStringLiteral("20240512_093000_0003")); }
    /// The good proxy as a local file, for comparing what a player shows with ffmpeg's frames.
    [[nodiscard]] QString goodFile() const { return QString::fromStdString((m_server.sandbox() / "good" / "proxy.mp4").string()); }
    /// "Authorization: Bearer …" for this library.
    [[nodiscard]] QStringList headers() const { return m_client->mediaHeaders(); }

private:
    [[nodiscard]] QUrl proxy(const QString &id) const { return m_client->proxyURL(id, false, false); }

    TestServer m_server;
    std::unique_ptr<APIClient> m_client;
};
