#include "StallingServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

struct StallingServer::Impl {
    Options options;
    int listener = -1;
    int port = 0;
    std::thread acceptor;
    std::mutex mutex;
    std::condition_variable stopping;
    bool stopped = false;
    std::vector<int> connections;
    std::vector<std::thread> workers;
    std::atomic<int> stalled{0};
    std::atomic<int> answered{0};

    void serve(int fd);
    /// Reads up to `count` bytes, or on until the peer closes when `count` is negative.
    static void drain(int fd, qint64 count, QByteArray &pending);
};

namespace {

/// The request line's target and the Content-Length of a complete header block.
std::pair<QByteArray, qint64> parseHead(const QByteArray &head)
{
    const QList<QByteArray> lines = head.split('\n');
    const QList<QByteArray> first = lines.value(0).trimmed().split(' ');
    qint64 length = 0;
    for (const QByteArray &line : lines) {
        const int colon = line.indexOf(':');
        if (colon > 0 && line.left(colon).trimmed().toLower() == "content-length")
            length = line.mid(colon + 1).trimmed().toLongLong();
    }
    return {first.value(1), length};
}

} // namespace

void StallingServer::Impl::drain(int fd, qint64 count, QByteArray &pending)
{
    qint64 got = std::min<qint64>(pending.size(), count < 0 ? pending.size() : count);
    pending.clear();
    char buffer[4096];
    while (count < 0 || got < count) {
        const size_t want = count < 0 ? sizeof buffer : size_t(std::min<qint64>(sizeof buffer, count - got));
        const ssize_t n = ::recv(fd, buffer, want, 0);
        if (n <= 0)
            return;
        got += n;
    }
}

void StallingServer::Impl::serve(int fd)
{
    QByteArray data;
    char buffer[4096];
    for (;;) {
        const int end = data.indexOf("\r\n\r\n");
        if (end < 0) {
            const ssize_t n = ::recv(fd, buffer, sizeof buffer, 0);
            if (n <= 0)
                return;
            data.append(buffer, n);
            continue;
        }
        const auto [target, length] = parseHead(data.left(end));
        data.remove(0, end + 4);
        if (options.stalls(target)) {
            ++stalled;
            drain(fd, options.readLimit, data);
            // Hold the connection without reading or answering until the server stops.
            std::unique_lock lock(mutex);
            stopping.wait(lock, [this] { return stopped; });
            return;
        }
        QByteArray none;
        drain(fd, length - std::min<qint64>(length, data.size()), none);
        static const char reply[] = "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: 2\r\n"
                                    "Connection: close\r\n\r\n{}";
        (void)::send(fd, reply, sizeof reply - 1, MSG_NOSIGNAL);
        ::shutdown(fd, SHUT_WR);
        ++answered;
        return;
    }
}

StallingServer::StallingServer() : StallingServer(Options{}) {}

StallingServer::StallingServer(Options options) : d(std::make_unique<Impl>())
{
    d->options = std::move(options);
    d->listener = ::socket(AF_INET, SOCK_STREAM, 0);
    // A small receive window, inherited by every accepted connection, so a sender stands still
    // after a few kilobytes once reading stops instead of filling megabytes of kernel buffers.
    const int window = 16 * 1024;
    ::setsockopt(d->listener, SOL_SOCKET, SO_RCVBUF, &window, sizeof window);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = 0;
    ::bind(d->listener, reinterpret_cast<sockaddr *>(&address), sizeof address);
    ::listen(d->listener, 16);
    socklen_t size = sizeof address;
    ::getsockname(d->listener, reinterpret_cast<sockaddr *>(&address), &size);
    d->port = ntohs(address.sin_port);
    d->acceptor = std::thread([this] {
        for (;;) {
            const int fd = ::accept(d->listener, nullptr, nullptr);
            if (fd < 0)
                return;
            std::lock_guard lock(d->mutex);
            if (d->stopped) {
                ::close(fd);
                return;
            }
            d->connections.push_back(fd);
            d->workers.emplace_back([this, fd] { d->serve(fd); });
        }
    });
}

StallingServer::~StallingServer()
{
    {
        std::lock_guard lock(d->mutex);
        d->stopped = true;
        for (int fd : d->connections)
            ::shutdown(fd, SHUT_RDWR);
    }
    d->stopping.notify_all();
    ::shutdown(d->listener, SHUT_RDWR);
    d->acceptor.join();
    for (auto &worker : d->workers)
        worker.join();
    for (int fd : d->connections)
        ::close(fd);
    ::close(d->listener);
}

QString StallingServer::base() const
{
    return QStringLiteral("http://127.0.0.1:%1").arg(d->port);
}

int StallingServer::stalledRequests() const
{
    return d->stalled;
}

int StallingServer::answeredRequests() const
{
    return d->answered;
}
