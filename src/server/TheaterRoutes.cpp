#include "Names.h"
#include "Reply.h"
#include "Routes.h"
#include "ServerContext.h"
#include "WebAssets.h"

#include <httplib.h>

#include <filesystem>
#include <string_view>

namespace {
/// The page draws its ground from a tile host of the viewer's choosing and plays only what this
/// server serves; scripts and styles come from here alone.
constexpr const char *pagePolicy =
    "default-src 'self'; script-src 'self'; style-src 'self'; img-src 'self' data: blob: http: https:; "
    "media-src 'self'; connect-src 'self'; frame-ancestors 'none'; base-uri 'none'; form-action 'none'";

/// Where the page names the video it plays; the same text as in theater.html.
constexpr std::string_view fullVideo = R"(data-file="proxy.mp4")";
constexpr std::string_view lightVideo = R"(data-file="proxy_480.mp4")";

/// The page shows the video in a corner a few hundred pixels wide, and a browser drawing in
/// software pays for every pixel it decodes: the light proxy, once the library has made it,
/// looks the same there and leaves the frames to the 3D view.
bool hasLightVideo(const ServerContext &ctx, const std::string &id)
{
    std::error_code ec;
    return Names::isSafeId(id) && std::filesystem::is_regular_file(ctx.library.flight(id) / "proxy_480.mp4", ec);
}

void page(const httplib::Request &req, httplib::Response &res, const std::string &name, int status,
          bool light = false)
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
    if (req.method == "HEAD")
        return;
    std::string bytes = asset->bytes;
    if (const auto at = bytes.find(fullVideo); light && at != std::string::npos)
        bytes.replace(at, fullVideo.size(), lightVideo);
    res.set_content(bytes, asset->type);
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
    // flight but for the name of its video, and a visitor without a session gets the sign-in page
    // whatever the id.
    server.Get("/theater.html", [&ctx](const httplib::Request &req, httplib::Response &res) {
        if (!ctx.auth.identify(req))
            return page(req, res, "signin.html", 401);
        page(req, res, "theater.html", 200, hasLightVideo(ctx, req.get_param_value("id")));
    });

    server.Get("/web/([A-Za-z0-9_-][A-Za-z0-9._-]*)", [](const httplib::Request &req, httplib::Response &res) {
        const WebAssets::Asset *asset = WebAssets::find("web/" + req.matches[1].str());
        if (!asset)
            return Reply::error(res, 404, "Not found");
        WebAssets::serve(req, res, *asset);
    });
}

} // namespace Routes
