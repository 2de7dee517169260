// How long a plain GET api/me waits while N other connections hold half a request, for the
// library server against two baselines in the same run: the same server with no slow
// connections, and httplib's own accept loop and pool (how the server ran before) under the
// same load, with the minute of read timeout uploads need.
//   build/bench/server/bench_server_slow_clients [rounds]
#include "LibraryServer.h"

#include <httplib.h>

#include <QCoreApplication>
#include <QTemporaryDir>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <thread>
#include <vector>

namespace {
using Clock = std::chrono::steady_clock;
constexpr auto patience = std::chrono::seconds(3);

/// N connections that each sent half a request and then nothing; closed when it goes.
class SlowCrowd
{
public:
    SlowCrowd(int port, int count)
    {
        const std::string half = "GET /api/me HTTP/1.1\r\nHost: 127.0.0.1\r\nAccept: */";
        for (int i = 0; i < count; ++i) {
            const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
            sockaddr_in addr{};
            addr.sin_family = AF_INET;
            addr.sin_port = htons(static_cast<uint16_t>(port));
            addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
            if (::connect(fd, reinterpret_cast<sockaddr *>(&addr), sizeof addr) == 0)
                ::send(fd, half.data(), half.size(), MSG_NOSIGNAL);
            m_fds.push_back(fd);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
    }
    ~SlowCrowd()
    {
        for (const int fd : m_fds)
            ::close(fd);
    }

private:
    std::vector<int> m_fds;
};

/// Median milliseconds of a GET api/me on a fresh connection; negative when none was answered
/// within `patience`.
double medianMs(int port, int rounds)
{
    std::vector<double> times;
    for (int i = 0; i < rounds; ++i) {
        httplib::Client client("127.0.0.1", port);
        client.set_connection_timeout(patience);
        client.set_read_timeout(patience);
        const auto start = Clock::now();
        const auto reply = client.Get("/api/me");
        if (!reply || reply->status != 200)
            return -1;
        times.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

std::string shown(double ms, double baseline)
{
    if (ms < 0)
        return "no answer in 3 s";
    char text[64];
    std::snprintf(text, sizeof text, "%7.2f ms  x%.1f", ms, ms / baseline);
    return text;
}
} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 20;
    QTemporaryDir dir;
    ServerConfig config;
    config.library = dir.path().toStdString() + "/library";
    config.port = 0;
    config.samples = false;
    config.log = false;
    LibraryServer server(config);
    const auto port = server.start();
    if (!port) {
        std::fprintf(stderr, "the server didn't start: %s\n", qPrintable(port.errorText()));
        return 1;
    }

    httplib::Server plain;
    plain.Get("/api/me", [](const httplib::Request &, httplib::Response &res) {
        res.set_content(R"({"id":1,"email":"pilot@localhost"})", "application/json");
    });
    plain.set_read_timeout(std::chrono::seconds(60));
    const int plainPort = plain.bind_to_any_port("127.0.0.1");
    std::thread plainThread([&plain] { plain.listen_after_bind(); });
    while (!plain.is_running())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));

    const double baseline = medianMs(*port, rounds);
    std::printf("GET api/me, median of %d, against the same server with no slow connections (%.2f ms)\n", rounds,
                baseline);
    std::printf("%18s  %-22s  %s\n", "slow connections", "library server", "httplib's own loop");
    for (const int count : {0, 8, 64, 256}) {
        double front = 0;
        {
            SlowCrowd crowd(*port, count);
            front = medianMs(*port, rounds);
        }
        double own = 0;
        {
            SlowCrowd crowd(plainPort, count);
            own = medianMs(plainPort, rounds);
        }
        std::printf("%18d  %-22s  %s\n", count, shown(front, baseline).c_str(), shown(own, baseline).c_str());
    }
    plain.stop();
    plainThread.join();
    return 0;
}
