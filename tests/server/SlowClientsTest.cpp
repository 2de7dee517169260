// Clients that connect and then send slowly, partly or nothing: the others are still answered
// at once, the slow ones are told and dropped, and uploads that pause keep working.
#include "TestServer.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <thread>

using namespace std::chrono_literals;

namespace {
using Clock = std::chrono::steady_clock;

/// A connection written and read byte for byte, as a slow or hostile client would.
class RawConnection
{
public:
    explicit RawConnection(int port)
    {
        m_fd = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in addr{};
        addr.sin_family = AF_INET;
        addr.sin_port = htons(static_cast<uint16_t>(port));
        addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        m_connected = ::connect(m_fd, reinterpret_cast<sockaddr *>(&addr), sizeof addr) == 0;
    }
    ~RawConnection() { ::close(m_fd); }
    RawConnection(const RawConnection &) = delete;
    RawConnection &operator=(const RawConnection &) = delete;

    [[nodiscard]] bool connected() const { return m_connected; }
    bool send(const std::string &bytes) { return ::send(m_fd, bytes.data(), bytes.size(), MSG_NOSIGNAL) > 0; }

    /// What arrives until the server closes the connection, `until` has arrived, or `within` passes.
    std::string receive(std::chrono::milliseconds within, const std::string &until = {})
    {
        std::string out;
        const auto deadline = Clock::now() + within;
        while (Clock::now() < deadline && (until.empty() || out.find(until) == std::string::npos)) {
            pollfd p{m_fd, POLLIN, 0};
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
            if (::poll(&p, 1, static_cast<int>(left.count())) <= 0)
                break;
            char buffer[4096];
            const auto n = ::recv(m_fd, buffer, sizeof buffer, 0);
            if (n <= 0)
                break;
            out.append(buffer, static_cast<std::size_t>(n));
        }
        return out;
    }

private:
    int m_fd = -1;
    bool m_connected = false;
};

const std::string halfRequest = "GET /api/me HTTP/1.1\r\nHost: 127.0.0.1\r\nAccept: */";

/// How long a plain `GET api/me` from a fresh client takes, or 30 s when it gets no answer.
std::chrono::milliseconds timeOfAPlainRequest(TestServer &server)
{
    auto client = server.client();
    client->set_connection_timeout(30s);
    client->set_read_timeout(30s);
    const auto start = Clock::now();
    const auto reply = client->Get("/api/me");
    if (!reply || reply->status != 200)
        return 30s;
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
}

int countOf(const std::string &text, const std::string &part)
{
    int n = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++n;
    return n;
}
} // namespace

TEST(SlowClients, HalfRequestsAndIdleConnectionsDoNotLockOthersOut)
{
    TestServer server;
    const auto alone = timeOfAPlainRequest(server);
    const auto crowdedBy = [&](int count, bool sendHalf) {
        std::vector<std::unique_ptr<RawConnection>> slow;
        for (int i = 0; i < count; ++i) {
            slow.push_back(std::make_unique<RawConnection>(server.server().port()));
            EXPECT_TRUE(slow.back()->connected());
            if (sendHalf)
                slow.back()->send(halfRequest);
        }
        std::this_thread::sleep_for(100ms);
        return timeOfAPlainRequest(server);
    };
    // A loaded machine may be slow; a client locked out waits for the slow ones' timeout. The
    // crowds are larger than the most worker threads the server starts (128), so a server that
    // gave each waiting connection a thread would run out of them.
    EXPECT_LT(crowdedBy(8, true), alone + 2s) << "8 half requests";
    EXPECT_LT(crowdedBy(160, true), alone + 2s) << "160 half requests";
    EXPECT_LT(crowdedBy(160, false), alone + 2s) << "160 silent connections";

    // Keep-alive: a client that sends one whole request and then half of the next holds no
    // thread between the two either.
    std::vector<std::unique_ptr<RawConnection>> kept;
    for (int i = 0; i < 160; ++i) {
        kept.push_back(std::make_unique<RawConnection>(server.server().port()));
        kept.back()->send("GET /api/me HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n" + halfRequest);
    }
    for (auto &c : kept)
        EXPECT_EQ(c->receive(5s, "\r\n").rfind("HTTP/1.1 200", 0), 0u);
    EXPECT_LT(timeOfAPlainRequest(server), alone + 2s);
}

TEST(SlowClients, AHeadThatNeverEndsIsRefusedAndTheConnectionClosed)
{
    TestServer server([](ServerConfig &c) { c.headDeadline = 300ms; });
    RawConnection dawdler(server.server().port());
    dawdler.send("GET /api/me HT");
    std::this_thread::sleep_for(100ms);
    dawdler.send("TP/1.1\r\nHost: x\r\n");
    const std::string late = dawdler.receive(5s);
    EXPECT_EQ(late.rfind("HTTP/1.1 408", 0), 0u) << late;
    EXPECT_NE(late.find("\"detail\""), std::string::npos) << late;

    RawConnection endless(server.server().port());
    endless.send("GET /api/me HTTP/1.1\r\nX-Filler: " + std::string(40 * 1024, 'a'));
    const std::string large = endless.receive(5s);
    EXPECT_EQ(large.rfind("HTTP/1.1 431", 0), 0u) << large.substr(0, 80);
}

TEST(SlowClients, PipelinedRequestsAreEachAnswered)
{
    TestServer server;
    RawConnection client(server.server().port());
    const std::string one = "GET /api/me HTTP/1.1\r\nHost: x\r\n\r\n";
    client.send(one + one + "GET /api/hidden HTTP/1.1\r\nHost: x\r\nConnection: close\r\n\r\n");
    const std::string replies = client.receive(5s);
    EXPECT_EQ(countOf(replies, "HTTP/1.1 200"), 3) << replies;
    EXPECT_NE(replies.find("\"ids\""), std::string::npos);
}

TEST(SlowClients, AnUploadThatPausesLongerThanTheHeadDeadlineStillLands)
{
    TestServer server([](ServerConfig &c) { c.headDeadline = 200ms; });
    const std::string flightId = "20240102_030405_0007";
    const std::string body(200 * 1000, 'p');
    RawConnection upload(server.server().port());
    upload.send("PUT /api/flights/" + flightId + "/files/thumb.jpg HTTP/1.1\r\nHost: x\r\n"
                "Connection: close\r\nContent-Type: application/octet-stream\r\nContent-Length: "
                + std::to_string(body.size()) + "\r\n\r\n");
    upload.send(body.substr(0, 1000));
    std::this_thread::sleep_for(800ms);
    upload.send(body.substr(1000));
    const std::string reply = upload.receive(5s);
    EXPECT_EQ(reply.rfind("HTTP/1.1 200", 0), 0u) << reply;
    EXPECT_EQ(readFile(server.library() / "staging" / flightId / "thumb.jpg"), body);
}
