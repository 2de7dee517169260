#pragma once

#include "LibraryServer.h"

#include <QStringList>
#include <QTemporaryDir>
#include <QUrl>

#include <memory>

/// @brief A token-guarded library server on loopback holding two 720p proxies made the way the
/// import makes them (libx264 veryfast, 4 Mbit/s, index first): one with the encoder's own
/// keyframe spacing, one with a keyframe every second.
class BenchLibrary
{
public:
    static constexpr double seconds = 40.0;

    /// Empty `error()` when everything is in place.
    BenchLibrary();

    [[nodiscard]] const QString &error() const { return m_error; }
    [[nodiscard]] QUrl proxy() const { return url("20240601_120000_0001"); }
    [[nodiscard]] QUrl shortGopProxy() const { return url("20240601_120000_0002"); }
    [[nodiscard]] QStringList headers() const { return {QStringLiteral("Authorization: Bearer ") + m_token}; }

private:
    [[nodiscard]] QUrl url(const char *id) const;
    bool addFlight(const char *id, const QStringList &encoderOptions);

    QTemporaryDir m_dir;
    std::unique_ptr<LibraryServer> m_server;
    QString m_token;
    QString m_error;
};
