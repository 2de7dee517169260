#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>
#include <QUrl>

#include <functional>
#include <memory>
#include <mutex>

/// @brief A loopback HTTP server that records every request and answers from a script.
///
/// For proving the exact bytes a client sends and how it judges replies. Runs on its own
/// thread; the recorded requests can be read from the test thread at any time.
class RecordingServer
{
public:
    struct Request {
        QByteArray method;
        QByteArray target;  ///< path with query, exactly as sent
        QMap<QByteArray, QByteArray> headers;  ///< names lowered
        QByteArray body;
        [[nodiscard]] bool has(const QByteArray &name) const { return headers.contains(name.toLower()); }
        [[nodiscard]] QByteArray header(const QByteArray &name) const { return headers.value(name.toLower()); }
    };
    struct Reply {
        int status = 200;
        QByteArray body = "{}";
        QByteArray contentType = "application/json";
        QMap<QByteArray, QByteArray> headers;
        bool drop = false;  ///< close the connection without a complete reply
    };
    using Handler = std::function<Reply(const Request &)>;

    RecordingServer();
    ~RecordingServer();
    RecordingServer(const RecordingServer &) = delete;
    RecordingServer &operator=(const RecordingServer &) = delete;

    /// Base URL without trailing slash, e.g. http://127.0.0.1:40123
    [[nodiscard]] QString base() const;
    [[nodiscard]] QUrl url(const QString &path) const { return QUrl(base() + path); }

    void setHandler(Handler handler);
    /// Convenience: the same reply for every request.
    void replyWith(int status, QByteArray body, QByteArray contentType = "application/json");

    [[nodiscard]] QList<Request> requests() const;
    [[nodiscard]] Request last() const;
    [[nodiscard]] int count() const;
    void clear();

private:
    struct Impl;
    std::unique_ptr<Impl> d;
};
