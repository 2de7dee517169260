#include "Names.h"
#include "Reply.h"
#include "Routes.h"
#include "ServerContext.h"

#include <httplib.h>

namespace Routes {

void addMusic(httplib::Server &server, ServerContext &ctx)
{
    server.Get("/api/music", [&ctx](const httplib::Request &, httplib::Response &res) {
        ctx.music.ensure();
        Reply::json(res, {{"tracks", ctx.music.tracks()}});
    });

    server.Get("/music/(.+)", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const std::string track = req.matches[1].str();
        if (!Names::isSafeTrack(track))
            return Reply::error(res, 404, "Not found");
        serveFile(req, res, ctx.library.music() / track);
    });
}

} // namespace Routes
