#include "StoryProxy.h"

#include <httplib.h>

#include <map>
#include <mutex>
#include <regex>
#include <thread>

struct StoryProxy::Impl {
    std::string upstream;
    httplib::Server server;
    std::thread thread;
    int port = 0;
    mutable std::mutex lock;
    std::chrono::milliseconds hold{0};
    std::map<std::pair<std::string, std::string>, std::pair<int, std::string>> canned;
    std::vector<Seen> seen;

    void handle(const httplib::Request &req, httplib::Response &res)
    {
        static const std::regex savePath(R"(/api/projects/[^/]+)");
        const bool isSave = req.method == "POST" && std::regex_match(req.path, savePath);
        std::optional<std::pair<int, std::string>> reply;
        std::chrono::milliseconds wait{0};
        {
            std::lock_guard guard(lock);
            seen.push_back({req.method, req.path, req.body});
            if (const auto it = canned.find({req.method, req.path}); it != canned.end())
                reply = it->second;
            if (isSave)
                wait = hold;
        }
        if (wait.count() > 0)
            std::this_thread::sleep_for(wait);
        if (reply) {
            res.status = reply->first;
            res.set_content(reply->second, "application/json");
            return;
        }
        httplib::Client client(upstream);
        client.set_read_timeout(std::chrono::seconds(60));
        httplib::Headers headers;
        for (const char *name : {"Authorization", "Accept-Encoding"})
            if (req.has_header(name))
                headers.emplace(name, req.get_header_value(name));
        httplib::Request out;
        out.method = req.method;
        out.path = req.target.empty() ? req.path : req.target;
        out.headers = headers;
        out.body = req.body;
        if (req.has_header("Content-Type"))
            out.headers.emplace("Content-Type", req.get_header_value("Content-Type"));
        const auto answer = client.send(out);
        if (!answer) {
            res.status = 502;
            return;
        }
        res.status = answer->status;
        for (const auto &[name, value] : answer->headers)
            if (name == "Content-Range" || name == "Accept-Ranges" || name == "WWW-Authenticate")
                res.set_header(name, value);
        res.set_content(answer->body, answer->get_header_value("Content-Type").empty()
                                          ? std::string("application/octet-stream")
                                          : answer->get_header_value("Content-Type"));
    }
};

StoryProxy::StoryProxy(std::string upstream) : d(std::make_unique<Impl>())
{
    d->upstream = std::move(upstream);
    d->server.set_tcp_nodelay(true);
    // One request per connection: a client's idle connection never holds the proxy's stop.
    d->server.set_keep_alive_max_count(1);
    const auto handler = [this](const httplib::Request &req, httplib::Response &res) { d->handle(req, res); };
    d->server.Get(".*", handler);
    d->server.Post(".*", handler);
    d->server.Delete(".*", handler);
    d->server.Patch(".*", handler);
    d->port = d->server.bind_to_any_port("127.0.0.1");
    d->thread = std::thread([this] { d->server.listen_after_bind(); });
    while (!d->server.is_running())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

StoryProxy::~StoryProxy()
{
    d->server.stop();
    if (d->thread.joinable())
        d->thread.join();
}

QString StoryProxy::base() const
{
    return QStringLiteral("http://127.0.0.1:%1").arg(d->port);
}

void StoryProxy::holdSaves(std::chrono::milliseconds hold)
{
    std::lock_guard guard(d->lock);
    d->hold = hold;
}

void StoryProxy::answer(const std::string &method, const std::string &path, int status, std::string body)
{
    std::lock_guard guard(d->lock);
    d->canned[{method, path}] = {status, std::move(body)};
}

void StoryProxy::forget(const std::string &method, const std::string &path)
{
    std::lock_guard guard(d->lock);
    d->canned.erase({method, path});
}

std::vector<StoryProxy::Seen> StoryProxy::seen() const
{
    std::lock_guard guard(d->lock);
    return d->seen;
}

std::vector<StoryProxy::Seen> StoryProxy::saves() const
{
    static const std::regex savePath(R"(/api/projects/[^/]+)");
    std::vector<Seen> found;
    for (const Seen &s : seen())
        if (s.method == "POST" && std::regex_match(s.path, savePath))
            found.push_back(s);
    return found;
}

int StoryProxy::count(const std::string &method, const std::string &path) const
{
    int n = 0;
    for (const Seen &s : seen())
        n += s.method == method && s.path == path ? 1 : 0;
    return n;
}

void StoryProxy::clear()
{
    std::lock_guard guard(d->lock);
    d->seen.clear();
}
