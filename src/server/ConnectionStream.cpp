#include "ConnectionStream.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstring>

namespace {
using Clock = std::chrono::steady_clock;

void addressOf(const sockaddr_storage &addr, std::string &ip, int &port)
{
    char text[INET6_ADDRSTRLEN] = {};
    if (addr.ss_family == AF_INET) {
        const auto &v4 = reinterpret_cast<const sockaddr_in &>(addr);
        ::inet_ntop(AF_INET, &v4.sin_addr, text, sizeof text);
        port = ntohs(v4.sin_port);
    } else if (addr.ss_family == AF_INET6) {
        const auto &v6 = reinterpret_cast<const sockaddr_in6 &>(addr);
        ::inet_ntop(AF_INET6, &v6.sin6_addr, text, sizeof text);
        port = ntohs(v6.sin6_port);
    }
    ip = text;
}
} // namespace

ConnectionStream::ConnectionStream(int fd, std::string received, std::chrono::milliseconds readTimeout,
                                   std::chrono::milliseconds writeTimeout)
    : m_fd(fd), m_received(std::move(received)), m_readTimeout(readTimeout), m_writeTimeout(writeTimeout)
{
}

bool ConnectionStream::waitFor(short events, std::chrono::milliseconds timeout) const
{
    const auto deadline = Clock::now() + timeout;
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
        pollfd p{m_fd, events, 0};
        const int n = ::poll(&p, 1, static_cast<int>(std::max<std::chrono::milliseconds::rep>(0, left.count())));
        if (n > 0)
            return (p.revents & (events | POLLHUP | POLLERR)) != 0;
        if (n == 0 || errno != EINTR)
            return false;
    }
}

bool ConnectionStream::is_readable() const
{
    return m_offset < m_received.size() || waitFor(POLLIN, m_readTimeout);
}

bool ConnectionStream::is_writable() const
{
    return waitFor(POLLOUT, m_writeTimeout);
}

ssize_t ConnectionStream::read(char *ptr, size_t size)
{
    if (m_offset < m_received.size()) {
        const std::size_t n = std::min(size, m_received.size() - m_offset);
        std::memcpy(ptr, m_received.data() + m_offset, n);
        m_offset += n;
        return static_cast<ssize_t>(n);
    }
    // The socket is non-blocking (the front waits on many at once): wait, then take what came.
    for (;;) {
        if (!waitFor(POLLIN, m_readTimeout))
            return -1;
        const ssize_t n = ::recv(m_fd, ptr, size, 0);
        if (n >= 0)
            return n;
        if (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR)
            return -1;
    }
}

ssize_t ConnectionStream::write(const char *ptr, size_t size)
{
    for (;;) {
        if (!waitFor(POLLOUT, m_writeTimeout))
            return -1;
        const ssize_t n = ::send(m_fd, ptr, size, MSG_NOSIGNAL);
        if (n >= 0)
            return n;
        if (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR)
            return -1;
    }
}

void ConnectionStream::get_remote_ip_and_port(std::string &ip, int &port) const
{
    sockaddr_storage addr{};
    socklen_t length = sizeof addr;
    if (::getpeername(m_fd, reinterpret_cast<sockaddr *>(&addr), &length) == 0)
        addressOf(addr, ip, port);
}

void ConnectionStream::get_local_ip_and_port(std::string &ip, int &port) const
{
    sockaddr_storage addr{};
    socklen_t length = sizeof addr;
    if (::getsockname(m_fd, reinterpret_cast<sockaddr *>(&addr), &length) == 0)
        addressOf(addr, ip, port);
}

std::string ConnectionStream::takeUnread()
{
    std::string rest = m_received.substr(std::min(m_offset, m_received.size()));
    m_received.clear();
    m_offset = 0;
    return rest;
}
