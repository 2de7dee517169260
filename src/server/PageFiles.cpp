#include "PageFiles.h"

#include "Reply.h"
#include "WebAssets.h"

#include <httplib.h>

namespace {
constexpr std::string_view prefix = "/pages/";
} // namespace

namespace PageFiles {

void serve(const httplib::Request &req, httplib::Response &res, const std::string &name)
{
    const WebAssets::Asset *asset = WebAssets::find(name);
    if (!asset)
        return Reply::error(res, 404, "Not found");
    // Pages load their scripts and styles from here only, and can't be framed by another site.
    res.set_header("Content-Security-Policy",
                   "default-src 'self'; img-src 'self' data:; frame-ancestors 'none'; base-uri 'none'; form-action 'none'");
    WebAssets::serve(req, res, *asset);
}

void addRoutes(httplib::Server &server)
{
    server.Get("/pages/([^/]+)", [](const httplib::Request &req, httplib::Response &res) {
        serve(req, res, req.matches[1].str());
    });
}

bool isPagePath(std::string_view path)
{
    return path.substr(0, prefix.size()) == prefix;
}

} // namespace PageFiles
