#include "PageFiles.h"

#include "Names.h"
#include "Reply.h"
#include "WebAssets.h"

#include <httplib.h>


namespace {
constexpr std::string_view prefix = "/pages/";

/// Names of page files: no folders, nothing hidden.
bool isPageName(std::string_view name)
{
    if (name.empty() || name.size() > 100 || name.front() == '.')
        return false;
    for (const char c : name) {
        if (!(std::isalnum(static_cast<unsigned char>(c)) || c == '.' || c == '-' || c == '_'))
            return false;
    }
    return true;
}
} // namespace

namespace PageFiles {

std::optional<std::string> read(std::string_view name)
{
    if (!isPageName(name))
        return std::nullopt;
    const WebAssets::Asset *asset = WebAssets::find(std::string(name));
    if (!asset)
        return std::nullopt;
    return asset->bytes;
}

void serve(httplib::Response &res, std::string_view name)
{
    auto bytes = read(name);
    if (!bytes)
        return Reply::error(res, 404, "Not found");
    // Pages load their scripts and styles from here only, and can't be framed by another site.
    res.set_header("Content-Security-Policy",
                   "default-src 'self'; img-src 'self' data:; frame-ancestors 'none'; base-uri 'none'; form-action 'none'");
    res.set_header("X-Content-Type-Options", "nosniff");
    res.set_header("Cache-Control", "no-cache");
    res.set_content(std::move(*bytes), Names::contentType(name));
}

void addRoutes(httplib::Server &server)
{
    server.Get("/pages/([^/]+)", [](const httplib::Request &req, httplib::Response &res) {
        serve(res, req.matches[1].str());
    });
}

bool isPagePath(std::string_view path)
{
    return path.substr(0, prefix.size()) == prefix;
}

} // namespace PageFiles
