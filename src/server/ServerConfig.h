#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

/// How a request proves who sends it; chosen when the server starts.
enum class AuthMode { None, Basic, Token };

/// @brief Everything the library server is started with.
struct ServerConfig {
    using Clock = std::function<std::chrono::system_clock::time_point()>;

    std::filesystem::path library;        ///< the library folder; created when missing
    std::string host = "127.0.0.1";
    int port = 8484;                      ///< 0 takes any free port
    AuthMode auth = AuthMode::None;
    std::string user;                     ///< Basic only
    std::string password;                 ///< Basic only
    std::int64_t quota = 0;               ///< bytes; 0 means no limit
    bool samples = true;                  ///< a new library gets sample flights
    int sampleSeconds = 20;               ///< length of each sample flight
    std::chrono::seconds deviceExpiry{15 * 60};  ///< life of a device sign-in attempt
    std::chrono::milliseconds headDeadline{10000};  ///< from a request's first byte to its whole head
    Clock clock;                          ///< empty: the system clock (tests move time by hand)
    bool log = true;                      ///< one line per request on stderr
    bool suggestions = true;              ///< proposes share page words; api/me says "ai"
    bool lightProxies = true;             ///< make each flight's proxy_480.mp4 in the background

    [[nodiscard]] std::chrono::system_clock::time_point now() const
    {
        return clock ? clock() : std::chrono::system_clock::now();
    }
};
