// Requests that try to leave the library, overfill it, or break off halfway: the library
// folder is the only thing ever written, no half flight is ever visible, and the server
// keeps serving.
#include "TestServer.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <set>
#include <thread>

namespace fs = std::filesystem;

namespace {
const std::string flightId = "20240102_030405_0007";

std::set<std::string> listing(const fs::path &root)
{
    std::set<std::string> out;
    for (const auto &entry : fs::recursive_directory_iterator(root))
        out.insert(fs::relative(entry.path(), root).string());
    return out;
}

std::set<std::string> outsideTheLibrary(const fs::path &sandbox)
{
    std::set<std::string> out;
    for (const auto &name : listing(sandbox)) {
        if (name.rfind("library", 0) != 0)
            out.insert(name);
    }
    return out;
}

bool tmpIsEmpty(const fs::path &library)
{
    return fs::is_empty(library / "tmp");
}

/// Sends the start of a PUT by hand and hangs up before the body is complete.
void putAndHangUp(int port, const std::string &path, std::size_t declared, std::size_t sent)
{
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_port = htons(static_cast<uint16_t>(port));
    addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ASSERT_EQ(::connect(fd, reinterpret_cast<sockaddr *>(&addr), sizeof addr), 0);
    const std::string head = "PUT " + path + " HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Type: application/octet-stream\r\n"
        + "Content-Length: " + std::to_string(declared) + "\r\n\r\n";
    const std::string body(sent, 'z');
    ASSERT_GT(::send(fd, head.data(), head.size(), 0), 0);
    ASSERT_GT(::send(fd, body.data(), body.size(), 0), 0);
    ::close(fd);
}

/// Sends the head of a request by hand and returns the first reply, without sending any body.
std::string headOnly(int port, const std::string &head)
{
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_port = htons(static_cast<uint16_t>(port));
    addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(fd, reinterpret_cast<sockaddr *>(&addr), sizeof addr) != 0)
        return {};
    ::send(fd, head.data(), head.size(), 0);
    timeval timeout{5, 0};
    ::setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
    char buffer[4096];
    const auto got = ::recv(fd, buffer, sizeof buffer, 0);
    ::close(fd);
    return got > 0 ? std::string(buffer, static_cast<std::size_t>(got)) : std::string();
}

template <typename Condition>
bool eventually(Condition condition)
{
    for (int i = 0; i < 200; ++i) {
        if (condition())
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(25));
    }
    return condition();
}
} // namespace

TEST(Hostile, IdsAndNamesThatPointOutsideAreRefused)
{
    TestServer server;
    writeFile(server.sandbox() / "canary.txt", "untouched");
    auto client = server.client();
    const auto before = outsideTheLibrary(server.sandbox());
    const std::string longId(300, 'a');

    const std::vector<std::string> puts = {
        "/api/flights/..%2F..%2Fescape/files/proxy.mp4", "/api/flights/%2E%2E/files/proxy.mp4",
        "/api/flights/x%00y/files/proxy.mp4",           "/api/flights/" + longId + "/files/proxy.mp4",
        "/api/flights/ok/files/..%2F..%2Fcanary.txt",    "/api/flights/ok/files/proxy.mp4%00.txt",
        "/api/flights/ok/files/library.db",              "/api/flights/ok/files/.proxy.mp4",
        "/api/flights/.hidden/files/proxy.mp4",
    };
    for (const auto &path : puts) {
        const auto reply = client->Put(path.c_str(), std::string("payload"), "application/octet-stream");
        ASSERT_TRUE(reply) << path;
        EXPECT_TRUE(reply->status == 400 || reply->status == 404) << path << " gave " << reply->status;
    }
    for (const std::string path : {"/flights/..%2F..%2Fcanary.txt", "/flights/../library.db", "/flights/%2E%2E/library.db",
                                   "/flights/x/..%2F..%2Flibrary.db", "/music/..%2Flibrary.db", "/music/../canary.txt",
                                   "/flights/x/clipthumb_..%2F..%2Fx_1.jpg"}) {
        const auto reply = client->Get(path.c_str());
        ASSERT_TRUE(reply) << path;
        EXPECT_TRUE(reply->status == 400 || reply->status == 404) << path << " gave " << reply->status;
        EXPECT_EQ(reply->body.find("untouched"), std::string::npos);
    }
    for (const std::string path : {"/api/flights/%2E%2E", "/api/flights/..%2Fcanary.txt/staging",
                                   "/api/flights/%2E%2E/staging", "/api/projects/%2E%2E"}) {
        const auto reply = client->Delete(path.c_str());
        ASSERT_TRUE(reply) << path;
        EXPECT_GE(reply->status, 400) << path;
    }
    EXPECT_EQ(client->Post("/api/flights/%2E%2E/commit")->status, 400);
    EXPECT_EQ(client->Post("/api/clips/%2E%2E", "{}", "application/json")->status, 400);

    EXPECT_EQ(outsideTheLibrary(server.sandbox()), before);
    EXPECT_EQ(readFile(server.sandbox() / "canary.txt"), "untouched");
    EXPECT_TRUE(fs::is_empty(server.library() / "staging"));
    EXPECT_EQ(client->Get("/api/me")->status, 200);
}

TEST(Hostile, APutLargerThanTheQuotaStopsEarly)
{
    TestServer server([](ServerConfig &c) { c.quota = 1000 * 1000; });
    auto client = server.client();
    // Declared too large: refused before the body is read.
    const auto declared = client->Put(("/api/flights/" + flightId + "/files/proxy.mp4").c_str(),
                                      std::string(4 * 1000 * 1000, 'x'), "application/octet-stream");
    ASSERT_TRUE(declared);
    EXPECT_EQ(declared->status, 413);

    // Sent without a length (chunked): cut off once it passes the quota.
    std::size_t sent = 0;
    const auto chunked = client->Put(
        ("/api/flights/" + flightId + "/files/proxy.mp4").c_str(),
        [&sent](std::size_t, httplib::DataSink &sink) {
            const std::string block(64 * 1024, 'y');
            if (sent >= 8 * 1000 * 1000) {
                sink.done();
                return true;
            }
            sent += block.size();
            return sink.write(block.data(), block.size());
        },
        "application/octet-stream");
    if (chunked) {
        EXPECT_EQ(chunked->status, 413);
    }
    EXPECT_TRUE(eventually([&] { return tmpIsEmpty(server.library()); }));
    EXPECT_FALSE(fs::exists(server.library() / "staging" / flightId / "proxy.mp4"));
    EXPECT_EQ(server.client()->Get("/api/flights")->status, 200);
}

TEST(Hostile, ABrokenFlightFileIsRefusedAtCommit)
{
    TestServer server;
    auto client = server.client();
    const fs::path folder = makeFlightFolder(server.sandbox() / "flight", 1.0);
    const std::string good = readFile(folder / "flight.json");
    auto noSpeed = nlohmann::json::parse(good);
    noSpeed["track"][3].erase("speed");
    auto badShutter = nlohmann::json::parse(good);
    badShutter["track"][0]["shutter"] = true;
    auto noSource = nlohmann::json::parse(good);
    noSource["meta"].erase("source");

    for (const std::string &broken : {good.substr(0, good.size() / 2), std::string("not json at all"), std::string(),
                                      std::string("[1,2,3]"), noSpeed.dump(), badShutter.dump(), noSource.dump()}) {
        writeFile(folder / "flight.json", broken);
        const auto commit = uploadFlight(*client, flightId, folder);
        ASSERT_TRUE(commit);
        EXPECT_EQ(commit->status, 422) << broken.substr(0, 40);
        EXPECT_NE(jsonOf(commit)["detail"].get<std::string>().find("flight.json"), std::string::npos);
        EXPECT_EQ(jsonOf(client->Get("/manifest.json"))["flights"].size(), 0u);
        EXPECT_FALSE(fs::exists(server.library() / "flights" / flightId));
        client->Delete(("/api/flights/" + flightId + "/staging").c_str());
    }
    // Without a proxy there is no flight to play: refused as well.
    writeFile(folder / "flight.json", good);
    fs::remove(folder / "proxy.mp4");
    EXPECT_EQ(uploadFlight(*client, flightId, folder)->status, 422);
}

TEST(Hostile, ConcurrentCommitsOfOneIdMakeOneWholeFlight)
{
    TestServer server;
    const fs::path folder = makeFlightFolder(server.sandbox() / "flight", 1.0);
    auto client = server.client();
    for (const char *name : {"flight.json", "thumb.jpg", "proxy.mp4"}) {
        ASSERT_EQ(client->Put(("/api/flights/" + flightId + "/files/" + name).c_str(), readFile(folder / name),
                              "application/octet-stream")->status,
                  200);
    }
    std::atomic<int> committed{0};
    std::atomic<int> refused{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&] {
            auto own = server.client();
            const auto reply = own->Post(("/api/flights/" + flightId + "/commit").c_str());
            if (reply && reply->status == 200)
                ++committed;
            else if (reply && reply->status == 409)
                ++refused;
        });
    }
    for (auto &t : threads)
        t.join();
    EXPECT_EQ(committed, 1);
    EXPECT_EQ(refused, 7);
    for (const char *name : {"flight.json", "thumb.jpg", "proxy.mp4"})
        EXPECT_EQ(client->Get(("/flights/" + flightId + "/" + name).c_str())->body, readFile(folder / name)) << name;
}

TEST(Hostile, AClientThatDropsMidUploadLeavesNothingStaged)
{
    TestServer server;
    putAndHangUp(server.server().port(), "/api/flights/" + flightId + "/files/proxy.mp4", 5 * 1000 * 1000, 300 * 1000);
    EXPECT_TRUE(eventually([&] { return tmpIsEmpty(server.library()); }));
    EXPECT_FALSE(fs::exists(server.library() / "staging" / flightId / "proxy.mp4"));

    // A drop in the middle of replacing a staged file keeps the earlier complete copy.
    auto client = server.client();
    ASSERT_EQ(client->Put(("/api/flights/" + flightId + "/files/thumb.jpg").c_str(), std::string(1000, 'a'),
                          "application/octet-stream")->status,
              200);
    putAndHangUp(server.server().port(), "/api/flights/" + flightId + "/files/thumb.jpg", 100000, 500);
    EXPECT_TRUE(eventually([&] { return tmpIsEmpty(server.library()); }));
    EXPECT_EQ(readFile(server.library() / "staging" / flightId / "thumb.jpg"), std::string(1000, 'a'));
    EXPECT_EQ(client->Get("/api/flights")->status, 200);
}

TEST(Hostile, ARefusedUploadLeavesTheNextRequestOnTheConnectionIntact)
{
    TestServer server([](ServerConfig &c) {
        c.auth = AuthMode::Basic;
        c.user = "u";
        c.password = "p";
        c.quota = 1000 * 1000;
    });
    auto client = server.client();
    client->set_keep_alive(true);
    const std::string body(300 * 1000, 'b');
    const std::string path = "/api/flights/" + flightId + "/files/";
    // Unread bodies must not be taken for the next request: each refusal is followed by a
    // request that has to get its own answer.
    EXPECT_EQ(client->Put((path + "thumb.jpg").c_str(), body, "application/octet-stream")->status, 401);
    client->set_basic_auth("u", "p");
    EXPECT_EQ(client->Get("/api/hidden")->status, 200);
    EXPECT_EQ(client->Put((path + "notes.txt").c_str(), body, "application/octet-stream")->status, 400);
    EXPECT_EQ(client->Get("/api/hidden")->status, 200);
    EXPECT_EQ(client->Put((path + "proxy.mp4").c_str(), std::string(3 * 1000 * 1000, 'c'), "application/octet-stream")
                  ->status,
              413);
    EXPECT_EQ(client->Get("/api/hidden")->status, 200);
    EXPECT_EQ(client->Put("/api/flights/x/y/z", body, "application/octet-stream")->status, 404);
    EXPECT_EQ(client->Get("/api/hidden")->status, 200);
    EXPECT_EQ(client->Put((path + "thumb.jpg").c_str(), body, "application/octet-stream")->status, 200);
    EXPECT_EQ(client->Get("/api/hidden")->status, 200);
}

TEST(Hostile, AnOversizedJsonBodyIsRefusedBeforeItIsRead)
{
    TestServer server;
    // Nothing of the 100 MB is sent: the answer must come from the head alone.
    const std::string reply = headOnly(server.server().port(),
                                       "POST /api/clips/x HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Type: application/json\r\n"
                                       "Content-Length: 100000000\r\n\r\n");
    EXPECT_EQ(reply.rfind("HTTP/1.1 413", 0), 0u) << reply;
    const std::string chunked = headOnly(server.server().port(),
                                         "POST /api/projects HTTP/1.1\r\nHost: 127.0.0.1\r\n"
                                         "Transfer-Encoding: chunked\r\n\r\n");
    EXPECT_EQ(chunked.rfind("HTTP/1.1 413", 0), 0u) << chunked;
    EXPECT_EQ(server.client()->Get("/api/me")->status, 200);
}
