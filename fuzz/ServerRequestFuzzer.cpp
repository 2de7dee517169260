// The library server's handling of whatever arrives on a connection: request lines, paths,
// headers, byte ranges and JSON bodies, through httplib's parsing, the sign-in guard and every
// route, in this process. Two libraries hold a flight, its clips and a story: one open to all,
// one that takes tokens. The first byte picks the library and whether the token is sent; the
// rest is one or more requests as sent on the wire. No request may make the server fail (500),
// and every answer is an HTTP reply.
#include "ByteRange.h"
#include "FlightFile.h"
#include "FuzzCheck.h"
#include "LibraryServer.h"
#include "SampleMaker.h"

#include <httplib.h>

#include <QCoreApplication>
#include <QTemporaryDir>

#include <cstring>
#include <filesystem>
#include <memory>

namespace {

/// A connection whose bytes are in memory: the request to read, and what the server wrote.
class MemoryStream : public httplib::Stream
{
public:
    explicit MemoryStream(std::string in) : m_in(std::move(in)) {}

    bool is_readable() const override { return m_at < m_in.size(); }
    bool is_writable() const override { return true; }
    ssize_t read(char *ptr, size_t size) override
    {
        const std::size_t n = std::min(size, m_in.size() - m_at);
        std::memcpy(ptr, m_in.data() + m_at, n);
        m_at += n;
        return static_cast<ssize_t>(n);
    }
    ssize_t write(const char *ptr, size_t size) override
    {
        m_out.append(ptr, size);
        return static_cast<ssize_t>(size);
    }
    void get_remote_ip_and_port(std::string &ip, int &port) const override
    {
        ip = "127.0.0.1";
        port = 40000;
    }
    void get_local_ip_and_port(std::string &ip, int &port) const override
    {
        ip = "127.0.0.1";
        port = 8484;
    }
    socket_t socket() const override { return INVALID_SOCKET; }

    [[nodiscard]] bool exhausted() const { return m_at >= m_in.size(); }
    [[nodiscard]] std::string takeWritten() { return std::exchange(m_out, {}); }

private:
    std::string m_in;
    std::size_t m_at = 0;
    std::string m_out;
};

const std::string flightId = "20240102_030405_0007";

struct Libraries {
    QTemporaryDir dir;
    std::unique_ptr<LibraryServer> open;
    std::unique_ptr<LibraryServer> guarded;
    std::string token;
    unsigned runs = 0;
};
Libraries *libraries = nullptr;

std::string request(const std::string &method, const std::string &path, const std::string &body,
                    const std::string &extra = {})
{
    return method + " " + path + " HTTP/1.1\r\nHost: 127.0.0.1\r\n" + extra + "Content-Length: "
        + std::to_string(body.size()) + "\r\n\r\n" + body;
}

/// What every answer must be: HTTP, and never the server's own failure.
void checkReply(std::string reply)
{
    const std::string interim = "HTTP/1.1 100 Continue\r\n\r\n";
    if (reply.rfind(interim, 0) == 0)
        reply.erase(0, interim.size());
    if (reply.empty())
        return;
    FuzzCheck::require(reply.rfind("HTTP/1.1 ", 0) == 0, "an answer is an HTTP reply");
    FuzzCheck::require(reply.rfind("HTTP/1.1 500", 0) != 0, "no request makes the server fail");
}

/// Answers every request of `bytes` in turn, as one keep-alive connection would.
void answer(LibraryServer &server, std::string bytes)
{
    MemoryStream stream(std::move(bytes));
    for (int i = 0; i < 8 && !stream.exhausted(); ++i) {
        const bool more = server.serve(stream);
        checkReply(stream.takeWritten());
        if (!more)
            break;
    }
}

/// A flight with clips and a story in it, uploaded the way the app does.
void furnish(LibraryServer &server, const std::string &auth)
{
    const auto flight = FlightFile::encode(SampleMaker::flightFile(46.0, 7.0, 20, "DJI_0007.MP4", "Lake"));
    const std::string base = "/api/flights/" + flightId + "/files/";
    std::string setup = request("PUT", base + "flight.json", flight->toStdString(), auth)
        + request("PUT", base + "thumb.jpg", "\xff\xd8\xff\xd9", auth) + request("PUT", base + "proxy.mp4", "ftyp", auth)
        + request("POST", "/api/flights/" + flightId + "/commit", "", auth);
    answer(server, setup);
    answer(server, request("POST", "/api/clips/" + flightId,
                           R"({"clips":[{"id":"c1","in":1.5,"out":4.25,"label":"Orbit"},)"
                           R"({"id":"s1","in":6,"out":9,"label":"","auto":true,"why":"Climb"}],"dismissed":[]})",
                           auth + "Content-Type: application/json\r\n"));
    answer(server, request("POST", "/api/projects",
                           R"({"title":"Lake","items":[{"flightId":")" + flightId
                               + R"(","clipId":"c1","in":1.5,"out":4.25,"label":"Orbit"}]})",
                           auth + "Content-Type: application/json\r\n"));
}

std::unique_ptr<LibraryServer> makeLibrary(const std::filesystem::path &folder, AuthMode auth)
{
    ServerConfig config;
    config.library = folder;
    config.port = 0;
    config.samples = false;
    config.log = false;
    config.auth = auth;
    // What a run may upload stays small, so the library doesn't fill the disk in a long run.
    config.quota = 20 * 1000 * 1000;
    auto server = std::make_unique<LibraryServer>(config);
    FuzzCheck::require(server->open().ok(), "the library opens");
    return server;
}

/// The resolved range of any Range header lies inside the file.
void checkRange(const std::string &header)
{
    for (const std::uint64_t size : {0ull, 1ull, 1000ull}) {
        const auto range = ByteRange::resolve(header, size);
        if (range.kind == ByteRange::Kind::Partial)
            FuzzCheck::require(range.first <= range.last && range.last < size, "a partial range lies inside the file");
    }
}
} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static QCoreApplication app(*argc, *argv);
    // Clip thumbnails and music beds would run ffmpeg on every new name; a tool that fails at
    // once keeps those routes on their failure path and the runs fast.
    qputenv("AEROLOOM_FFMPEG", "/bin/false");
    libraries = new Libraries;
    const std::filesystem::path root = libraries->dir.path().toStdString();
    libraries->open = makeLibrary(root / "open", AuthMode::None);
    libraries->guarded = makeLibrary(root / "guarded", AuthMode::Token);
    libraries->token = libraries->guarded->createToken("pilot@example.org");
    furnish(*libraries->open, {});
    furnish(*libraries->guarded, "Authorization: Bearer " + libraries->token + "\r\n");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0)
        return 0;
    std::string bytes(reinterpret_cast<const char *>(data + 1), size - 1);
    checkRange(bytes.substr(0, 200));
    const bool guarded = data[0] & 1;
    if (guarded && (data[0] & 2)) {
        // The token goes in as the first header, so the rest of the request is the input's.
        const auto line = bytes.find("\r\n");
        if (line != std::string::npos)
            bytes.insert(line + 2, "Authorization: Bearer " + libraries->token + "\r\n");
    }
    answer(guarded ? *libraries->guarded : *libraries->open, std::move(bytes));
    // Sign-in mails pile up in the outbox of a long run; they are of no use here.
    if (++libraries->runs % 2000 == 0) {
        std::error_code ec;
        for (const auto *server : {libraries->open.get(), libraries->guarded.get()}) {
            const auto outbox = server->config().library / "outbox";
            std::filesystem::remove_all(outbox, ec);
            std::filesystem::create_directories(outbox, ec);
        }
    }
    return 0;
}
