#pragma once

#include <QString>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

/// @brief A loopback HTTP server in front of a real library server: it passes every request on
/// and records it, and can hold each story save for a while, fail chosen requests, or answer
/// paths the library doesn't serve yet. For proving timing and failure rules against the real
/// server's state.
class StoryProxy
{
public:
    struct Seen {
        std::string method;
        std::string path;
        std::string body;
    };

    /// `upstream`: "http://host:port" of the real server.
    explicit StoryProxy(std::string upstream);
    ~StoryProxy();
    StoryProxy(const StoryProxy &) = delete;
    StoryProxy &operator=(const StoryProxy &) = delete;

    [[nodiscard]] QString base() const;

    /// Each POST to "/api/projects/<id>" waits this long before it goes on.
    void holdSaves(std::chrono::milliseconds hold);
    /// Requests with this method and path are answered here with `status` and `body`.
    void answer(const std::string &method, const std::string &path, int status, std::string body = "{}");
    void forget(const std::string &method, const std::string &path);

    /// Everything passed on or answered, in arrival order.
    [[nodiscard]] std::vector<Seen> seen() const;
    /// Story saves (POSTs to "/api/projects/<id>") that arrived.
    [[nodiscard]] std::vector<Seen> saves() const;
    [[nodiscard]] int count(const std::string &method, const std::string &path) const;
    void clear();

private:
    struct Impl;
    std::unique_ptr<Impl> d;
};
