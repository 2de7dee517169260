#pragma once

#include "WorkerPool.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace httplib {
class Stream;
}

/// @brief Accepts the server's connections and holds them, on one thread, until a request has
/// arrived whole; only then does a worker thread take the connection, for that one request.
///
/// httplib's own loop gives every accepted connection a pool thread at once, and the thread
/// waits there for the request with the read timeout uploads need (a minute). Eight clients that
/// open a connection and send half a request held all eight threads, and every other client
/// waited. A bigger pool only raises the count an idle client must reach, and a shorter read
/// timeout would also cut off uploads that pause. So the waiting happens here instead, on epoll:
/// a connection that sends nothing costs a file descriptor until `idle` passes, a request head
/// must be complete `headDeadline` after its first byte, and when `maxWaiting` connections wait,
/// the one waiting longest is dropped for a new one. Keep-alive connections come back here
/// between requests. The workers are an elastic pool, since some requests (uploads, streamed
/// video) rightly hold their thread for long.
class ConnectionFront
{
public:
    struct Limits {
        std::chrono::milliseconds headDeadline{10000};
        std::chrono::milliseconds idle{60000};
        std::chrono::milliseconds readTimeout{60000};   ///< silence allowed inside a request body
        std::chrono::milliseconds writeTimeout{60000};  ///< a client that stops reading a reply
        std::size_t maxHead = 32 * 1024;
        std::size_t maxWaiting = 512;
        std::size_t keepThreads = 4;
        std::size_t maxThreads = 128;
        unsigned maxRequests = 1000;  ///< per connection
    };
    /// Answers one request read from the stream; true when the connection may carry another.
    using Serve = std::function<bool(httplib::Stream &)>;

    ConnectionFront(Serve serve, Limits limits);
    ~ConnectionFront();
    ConnectionFront(const ConnectionFront &) = delete;
    ConnectionFront &operator=(const ConnectionFront &) = delete;

    /// Binds, listens and starts accepting; the port taken, or -1 with errno telling why.
    [[nodiscard]] int listen(const std::string &host, int port);
    /// Closes every connection (requests in progress fail) and joins all threads.
    void stop();

private:
    using Clock = std::chrono::steady_clock;
    struct Connection {
        int fd = -1;
        std::string received;
        std::size_t scanned = 0;  ///< bytes of `received` already searched for the head's end
        Clock::time_point since;  ///< when it began to wait here
        std::optional<Clock::time_point> started;  ///< the first byte of the request, once seen
        unsigned served = 0;
    };

    void loop();
    void accept();
    void receive(int fd);
    void adopt(Connection connection);
    void dispatch(Connection connection);
    void serve(Connection connection);
    void sweep();
    void dropOldest();
    void close(int fd, const char *reply = nullptr);
    void watch(int fd, bool on);

    const Serve m_serve;
    const Limits m_limits;
    WorkerPool m_pool;

    int m_listen = -1;
    int m_epoll = -1;
    int m_wake = -1;  ///< eventfd: stop, or connections handed back
    std::thread m_thread;
    std::atomic<bool> m_stopping{false};
    bool m_listenPaused = false;
    Clock::time_point m_listenResume;

    std::map<int, Connection> m_waiting;  ///< front thread only

    std::mutex m_mutex;
    std::vector<Connection> m_returned;  ///< keep-alive connections handed back by workers
    std::set<int> m_busy;                ///< connections a worker holds
};
