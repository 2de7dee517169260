#include "ConnectionFront.h"

#include "ConnectionStream.h"

#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace {
constexpr std::chrono::milliseconds tick{200};

/// Where the head of a request ends (after its empty line), searching from `from`; npos if not yet.
std::size_t headEnd(const std::string &text, std::size_t from)
{
    for (std::size_t i = text.find('\n', from); i != std::string::npos; i = text.find('\n', i + 1)) {
        std::size_t next = i + 1;
        if (next < text.size() && text[next] == '\r')
            ++next;
        if (next < text.size() && text[next] == '\n')
            return next + 1;
    }
    return std::string::npos;
}

std::string failureReply(int status, const char *reason, const char *detail)
{
    const std::string body = std::string("{\"detail\":\"") + detail + "\"}";
    return "HTTP/1.1 " + std::to_string(status) + " " + reason
        + "\r\nContent-Type: application/json\r\nConnection: close\r\nContent-Length: " + std::to_string(body.size())
        + "\r\n\r\n" + body;
}

const std::string headTooLate =
    failureReply(408, "Request Timeout", "The request did not arrive in time");
const std::string headTooLarge =
    failureReply(431, "Request Header Fields Too Large", "The request's headers are too large");
} // namespace

ConnectionFront::ConnectionFront(Serve serve, Limits limits)
    : m_serve(std::move(serve)), m_limits(limits),
      m_pool(limits.keepThreads, limits.maxThreads, std::chrono::seconds(30))
{
}

ConnectionFront::~ConnectionFront()
{
    stop();
}

int ConnectionFront::listen(const std::string &host, int port)
{
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_PASSIVE | AI_NUMERICSERV;
    addrinfo *found = nullptr;
    const std::string service = std::to_string(port);
    if (::getaddrinfo(host.empty() ? nullptr : host.c_str(), service.c_str(), &hints, &found) != 0) {
        errno = EADDRNOTAVAIL;
        return -1;
    }
    int error = EADDRNOTAVAIL;
    for (const addrinfo *a = found; a && m_listen < 0; a = a->ai_next) {
        const int fd = ::socket(a->ai_family, a->ai_socktype | SOCK_NONBLOCK | SOCK_CLOEXEC, a->ai_protocol);
        if (fd < 0) {
            error = errno;
            continue;
        }
        // Only SO_REUSEADDR (a quick restart after a stop): SO_REUSEPORT would let a second
        // server share a port that is already taken.
        int yes = 1;
        ::setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
        if (::bind(fd, a->ai_addr, a->ai_addrlen) == 0 && ::listen(fd, 128) == 0) {
            m_listen = fd;
        } else {
            error = errno;
            ::close(fd);
        }
    }
    ::freeaddrinfo(found);
    if (m_listen < 0) {
        errno = error;
        return -1;
    }
    sockaddr_storage bound{};
    socklen_t length = sizeof bound;
    ::getsockname(m_listen, reinterpret_cast<sockaddr *>(&bound), &length);
    const int taken = bound.ss_family == AF_INET6 ? ntohs(reinterpret_cast<sockaddr_in6 &>(bound).sin6_port)
                                                  : ntohs(reinterpret_cast<sockaddr_in &>(bound).sin_port);

    m_epoll = ::epoll_create1(EPOLL_CLOEXEC);
    m_wake = ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    watch(m_listen, true);
    watch(m_wake, true);
    m_thread = std::thread([this] { loop(); });
    return taken;
}

void ConnectionFront::stop()
{
    if (!m_thread.joinable())
        return;
    m_stopping = true;
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(m_wake, &one, sizeof one);
    m_thread.join();
    {
        // Requests in progress end now rather than at their timeouts; the workers close them.
        std::lock_guard lock(m_mutex);
        for (const int fd : m_busy)
            ::shutdown(fd, SHUT_RDWR);
    }
    m_pool.stop();
    std::lock_guard lock(m_mutex);
    // What is left: connections handed back after the loop ended, and requests never started.
    for (const auto &c : m_returned)
        ::close(c.fd);
    m_returned.clear();
    for (const int fd : m_busy)
        ::close(fd);
    m_busy.clear();
    ::close(m_wake);
    ::close(m_epoll);
    m_wake = m_epoll = -1;
}

void ConnectionFront::watch(int fd, bool on)
{
    if (on) {
        epoll_event event{};
        event.events = EPOLLIN | EPOLLRDHUP;
        event.data.fd = fd;
        ::epoll_ctl(m_epoll, EPOLL_CTL_ADD, fd, &event);
    } else {
        ::epoll_ctl(m_epoll, EPOLL_CTL_DEL, fd, nullptr);
    }
}

void ConnectionFront::loop()
{
    std::vector<epoll_event> events(64);
    auto lastSweep = Clock::now();
    while (!m_stopping) {
        const int n = ::epoll_wait(m_epoll, events.data(), static_cast<int>(events.size()), tick.count());
        for (int i = 0; i < n && !m_stopping; ++i) {
            const int fd = events[static_cast<std::size_t>(i)].data.fd;
            if (fd == m_listen) {
                accept();
            } else if (fd == m_wake) {
                std::uint64_t count = 0;
                [[maybe_unused]] const auto got = ::read(m_wake, &count, sizeof count);
                std::vector<Connection> returned;
                {
                    std::lock_guard lock(m_mutex);
                    returned.swap(m_returned);
                }
                for (auto &c : returned)
                    adopt(std::move(c));
            } else {
                receive(fd);
            }
        }
        if (Clock::now() - lastSweep >= tick) {
            sweep();
            lastSweep = Clock::now();
        }
    }
    for (const auto &[fd, c] : m_waiting)
        ::close(fd);
    m_waiting.clear();
    ::close(m_listen);
    m_listen = -1;
}

void ConnectionFront::accept()
{
    for (;;) {
        const int fd = ::accept4(m_listen, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
        if (fd < 0) {
            if (errno == EINTR || errno == ECONNABORTED)
                continue;
            if (errno == EMFILE || errno == ENFILE) {
                // Out of descriptors: make room by the longest waiting; if none waits, stop
                // accepting for a moment instead of spinning on the listening socket.
                if (!m_waiting.empty()) {
                    dropOldest();
                    continue;
                }
                watch(m_listen, false);
                m_listenPaused = true;
                m_listenResume = Clock::now() + tick;
            }
            return;
        }
        // Replies leave as headers then body; without this TCP holds the body back until the
        // client's delayed acknowledgement, some 40 ms per request.
        int yes = 1;
        ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
        if (m_waiting.size() >= m_limits.maxWaiting)
            dropOldest();
        Connection c;
        c.fd = fd;
        c.since = Clock::now();
        m_waiting.emplace(fd, std::move(c));
        watch(fd, true);
    }
}

void ConnectionFront::receive(int fd)
{
    const auto it = m_waiting.find(fd);
    if (it == m_waiting.end())
        return;
    Connection &c = it->second;
    char buffer[16 * 1024];
    for (;;) {
        if (c.received.size() >= m_limits.maxHead)
            return close(fd, headTooLarge.c_str());
        const std::size_t room = m_limits.maxHead - c.received.size();
        const ssize_t n = ::recv(fd, buffer, std::min(room, sizeof buffer), 0);
        if (n == 0)
            return close(fd);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            if (errno != EAGAIN && errno != EWOULDBLOCK)
                close(fd);
            return;
        }
        if (!c.started)
            c.started = Clock::now();
        c.received.append(buffer, static_cast<std::size_t>(n));
        if (headEnd(c.received, c.scanned) != std::string::npos) {
            Connection ready = std::move(c);
            m_waiting.erase(it);
            watch(fd, false);
            return dispatch(std::move(ready));
        }
        // The next search starts where an empty line split across two reads could begin.
        c.scanned = c.received.size() >= 2 ? c.received.size() - 2 : 0;
    }
}

void ConnectionFront::adopt(Connection c)
{
    if (m_stopping) {
        ::close(c.fd);
        return;
    }
    // A pipelined request may already be here whole.
    if (headEnd(c.received, 0) != std::string::npos)
        return dispatch(std::move(c));
    if (m_waiting.size() >= m_limits.maxWaiting)
        dropOldest();
    c.since = Clock::now();
    c.started = c.received.empty() ? std::nullopt : std::optional(c.since);
    c.scanned = 0;
    const int fd = c.fd;
    m_waiting.emplace(fd, std::move(c));
    watch(fd, true);
}

void ConnectionFront::dispatch(Connection c)
{
    {
        std::lock_guard lock(m_mutex);
        m_busy.insert(c.fd);
    }
    auto held = std::make_shared<Connection>(std::move(c));
    m_pool.post([this, held] { serve(std::move(*held)); });
}

void ConnectionFront::serve(Connection c)
{
    ConnectionStream stream(c.fd, std::move(c.received), m_limits.readTimeout, m_limits.writeTimeout);
    const bool keep = m_serve(stream) && ++c.served < m_limits.maxRequests;
    std::lock_guard lock(m_mutex);
    m_busy.erase(c.fd);
    if (!keep || m_stopping) {
        ::close(c.fd);
        return;
    }
    c.received = stream.takeUnread();
    m_returned.push_back(std::move(c));
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(m_wake, &one, sizeof one);
}

void ConnectionFront::sweep()
{
    const auto now = Clock::now();
    if (m_listenPaused && now >= m_listenResume) {
        watch(m_listen, true);
        m_listenPaused = false;
    }
    std::vector<std::pair<int, const std::string *>> expired;
    for (const auto &[fd, c] : m_waiting) {
        if (c.started && now - *c.started > m_limits.headDeadline)
            expired.emplace_back(fd, &headTooLate);
        else if (!c.started && now - c.since > m_limits.idle)
            expired.emplace_back(fd, nullptr);
    }
    for (const auto &[fd, reply] : expired)
        close(fd, reply ? reply->c_str() : nullptr);
}

void ConnectionFront::dropOldest()
{
    auto oldest = m_waiting.end();
    for (auto it = m_waiting.begin(); it != m_waiting.end(); ++it) {
        if (oldest == m_waiting.end() || it->second.since < oldest->second.since)
            oldest = it;
    }
    if (oldest != m_waiting.end())
        close(oldest->first);
}

void ConnectionFront::close(int fd, const char *reply)
{
    // The failure is said if the socket takes it at once; the connection ends either way.
    if (reply)
        ::send(fd, reply, std::strlen(reply), MSG_NOSIGNAL | MSG_DONTWAIT);
    watch(fd, false);
    m_waiting.erase(fd);
    ::close(fd);
}
