#include "Reply.h"
#include "Routes.h"
#include "ServerContext.h"
#include "WebAssets.h"

#include <httplib.h>

namespace {
/// The page draws its ground from a tile host of the viewer's choosing and plays only what this
/// server serves; scripts and styles come from here alone.
constexpr const char *pagePolicy =
    "default-src 'self'; script-src 'self'; style-src 'self'; img-src 'self' data: blob: http: https:; "
    "media-src 'self'; connect-src 'self'; frame-ancestors 'none'; base-uri 'none'; form-action 'none'";

void page(const httplib::Request &req, httplib::Response &res, const std::string &name, int status)
{
    const WebAssets::Asset *asset = WebAssets::find(name);
    if (!asset) {
        res.status = 500;
        res.set_content("The server was built without its pages.", "text/plain; charset=utf-8");
        return;
    }
    res.set_header("Content-Security-Policy", pagePolicy);
    // The library's address and the flight's id stay here, not in the tile host's logs.
    res.set_header("Referrer-Policy", "no-referrer");
    res.set_header("X-Content-Type-Options", "nosniff");
    res.set_header("Cache-Control", "no-store");
    res.status = status;
    if (req.method != "HEAD")
        res.set_content(asset->bytes, asset->type);
}
} // namespace

namespace Routes {

bool isWebPage(const httplib::Request &req)
{
    return req.path == "/theater.html" || req.path.rfind("/web/", 0) == 0;
}

void addTheater(httplib::Server &server, ServerContext &ctx)
{
    // The flight's id stays in the address for the page's script: the page is the same for every
    // flight, and a visitor without a session gets the sign-in page whatever the id.
    server.Get("/theater.html", [&ctx](const httplib::Request &req, httplib::Response &res) {
        if (!ctx.auth.identify(req))
            return page(req, res, "signin.html", 401);
        page(req, res, "theater.html", 200);
    });

    server.Get("/web/([A-Za-z0-9_-][A-Za-z0-9._-]*)", [](const httplib::Request &req, httplib::Response &res) {
        const WebAssets::Asset *asset = WebAssets::find("web/" + req.matches[1].str());
        if (!asset)
            return Reply::error(res, 404, "Not found");
        WebAssets::serve(req, res, *asset);
    });
}

} // namespace Routes
