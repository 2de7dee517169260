#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <functional>
#include <memory>

/// @brief A loopback HTTP server that accepts connections and then stops answering: the server
/// that hangs on a bad network, for proving that the client gives up in time.
///
/// Requests whose target `stalls` picks get no reply at all: the server reads their body up to
/// `readLimit` bytes and then stops reading too, so a sender's buffers fill and its transfer
/// stands still. Every other request is read whole and answered 200 with `{}`. Runs on its own
/// threads; the counts can be read from the test thread at any time.
class StallingServer
{
public:
    struct Options {
        /// Which targets stall; all of them by default.
        std::function<bool(const QByteArray &target)> stalls = [](const QByteArray &) { return true; };
        /// Body bytes read from a stalled request before reading stops; -1 reads on for ever.
        qint64 readLimit = -1;
    };

    /// Every request stalls.
    StallingServer();
    explicit StallingServer(Options options);
    ~StallingServer();
    StallingServer(const StallingServer &) = delete;
    StallingServer &operator=(const StallingServer &) = delete;

    /// Base URL without trailing slash.
    [[nodiscard]] QString base() const;
    /// Requests that were left hanging so far.
    [[nodiscard]] int stalledRequests() const;
    /// Requests that were answered.
    [[nodiscard]] int answeredRequests() const;

private:
    struct Impl;
    std::unique_ptr<Impl> d;
};
