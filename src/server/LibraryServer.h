#pragma once

#include "Result.h"
#include "ServerConfig.h"

#include <filesystem>
#include <memory>
#include <string>

namespace httplib {
class Stream;
}

/// @brief The local library server: one library folder, served over HTTP.
///
/// `open()` prepares the library (and makes the samples of a new one); `start()` listens on a
/// background thread and returns at once; `stop()` (or the destructor) ends it. Tests run it
/// in-process on port 0 with a temporary library; the `aeroloom-server` executable wraps it.
class LibraryServer
{
public:
    explicit LibraryServer(ServerConfig config);
    ~LibraryServer();
    LibraryServer(const LibraryServer &) = delete;
    LibraryServer &operator=(const LibraryServer &) = delete;

    [[nodiscard]] Result<void> open();
    /// Binds and serves in the background; the port actually taken (useful with port 0).
    [[nodiscard]] Result<int> start();
    void stop();
    /// Answers one request read from `stream`, in this process and without listening, as a
    /// connection would have it answered (the fuzzing harness drives the routes this way).
    /// True when the connection could carry another request.
    bool serve(httplib::Stream &stream);

    [[nodiscard]] int port() const;
    /// "http://host:port", without a trailing slash.
    [[nodiscard]] std::string baseUrl() const;
    [[nodiscard]] const ServerConfig &config() const;
    /// An API token for this library, as `aeroloom-server token create` makes one.
    [[nodiscard]] std::string createToken(const std::string &email = "pilot@localhost");
    /// The same for a library folder, whether or not a server is serving it; a new library is
    /// made first, as `open()` makes it.
    [[nodiscard]] static Result<std::string> createToken(const ServerConfig &config, const std::string &email);

private:
    struct Impl;
    std::unique_ptr<Impl> d;
};
