#pragma once

#include "LibraryServer.h"
#include "ServerConfig.h"

#include <httplib.h>
#include <nlohmann/json.hpp>

#include <QTemporaryDir>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

/// @brief A real library server for a test: in-process, on a free loopback port, with a
/// temporary library (without samples unless asked) that is deleted afterwards. Tests of other
/// folders link `aeroloom_servertest` to use it.
///
///   TestServer server;                                  // auth none, no samples
///   TestServer server([](ServerConfig &c) { c.auth = AuthMode::Token; });
///   auto reply = server.client().Get("/manifest.json");
class TestServer
{
public:
    using Adjust = std::function<void(ServerConfig &)>;
    explicit TestServer(const Adjust &adjust = {});
    ~TestServer();

    [[nodiscard]] std::string base() const { return m_server->baseUrl(); }
    /// A client of this server; paths are sent exactly as written (no encoding).
    [[nodiscard]] std::unique_ptr<httplib::Client> client() const;
    [[nodiscard]] std::filesystem::path library() const { return m_library; }
    /// The temporary folder around the library, for proving nothing outside it is touched.
    [[nodiscard]] std::filesystem::path sandbox() const { return m_dir.path().toStdString(); }
    [[nodiscard]] LibraryServer &server() { return *m_server; }

private:
    QTemporaryDir m_dir;
    std::filesystem::path m_library;
    std::unique_ptr<LibraryServer> m_server;
};

/// A flight folder as the ingest makes it, with real ffmpeg: proxy.mp4, thumb.jpg, flight.json.
std::filesystem::path makeFlightFolder(const std::filesystem::path &where, double seconds = 2.0);
/// The bytes of a file.
std::string readFile(const std::filesystem::path &file);
void writeFile(const std::filesystem::path &file, const std::string &bytes);
/// PUTs each file of the folder that exists, then commits; the commit's reply.
httplib::Result uploadFlight(httplib::Client &client, const std::string &id, const std::filesystem::path &folder);
/// The body of a reply as JSON (null when it isn't).
nlohmann::json jsonOf(const httplib::Result &reply);
