// The public side of a share link: its page, video and poster, and the visitors' view and
// heart counts. These answer without sign-in and reach nothing but the linked video.
#include "Names.h"
#include "ProjectTable.h"
#include "RenderStore.h"
#include "Reply.h"
#include "Routes.h"
#include "ServerContext.h"
#include "SharePage.h"
#include "ShareStore.h"

#include <httplib.h>

namespace {

void notFound(httplib::Response &res)
{
    res.status = 404;
    res.set_header("Cache-Control", "no-store");
    res.set_content(SharePage::notFound(), "text/html; charset=utf-8");
}

/// The live link in the path and its video; nothing when either is gone.
std::optional<std::pair<ShareRow, RenderRow>> linked(ServerContext &ctx, const httplib::Request &req)
{
    const std::string token = req.matches[1].str();
    if (!Names::isSafeId(token))
        return std::nullopt;
    auto share = ShareStore::find(ctx.db, token);
    auto video = share ? RenderStore::find(ctx.db, share->render) : std::nullopt;
    if (!video)
        return std::nullopt;
    return std::pair(std::move(*share), std::move(*video));
}

void pageRoute(httplib::Server &server, ServerContext &ctx)
{
    server.Get("/s/([^/]+)/?", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const auto link = linked(ctx, req);
        if (!link)
            return notFound(res);
        const auto &[share, video] = *link;
        SharePage::Content content;
        content.origin = Reply::origin(req, ctx.config.host + ":" + std::to_string(ctx.config.port));
        content.token = share.token;
        content.title = share.title;
        if (content.title.empty()) {
            const auto story = ProjectTable::find(ctx.db, share.project);
            content.title = story && !story->title.empty() ? story->title : std::string("A flight");
        }
        content.description = share.description.value_or(std::string());
        content.duration = double(video.millis) / 1000.0;
        content.vertical = video.aspect == "vertical";
        content.width = video.width;
        content.height = video.height;
        content.views = share.views;
        content.hearts = share.hearts;
        // A revoked link must stop working at once, so nothing of the page is kept.
        res.set_header("Cache-Control", "no-store");
        res.set_header("Referrer-Policy", "no-referrer");
        res.set_content(SharePage::page(content), "text/html; charset=utf-8");
    });
}

void mediaRoutes(httplib::Server &server, ServerContext &ctx)
{
    server.Get("/s/([^/]+)/video\\.mp4", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const auto link = linked(ctx, req);
        if (!link)
            return notFound(res);
        Routes::serveFile(req, res, RenderStore::video(ctx.library, link->second.id));
    });

    server.Get("/s/([^/]+)/poster\\.jpg", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const auto link = linked(ctx, req);
        if (!link)
            return notFound(res);
        Routes::serveFile(req, res, RenderStore::poster(ctx.library, link->second.id));
    });
}

void countRoutes(httplib::Server &server, ServerContext &ctx)
{
    server.Post("/s/([^/]+)/view", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const auto link = linked(ctx, req);
        const auto views = link ? ShareStore::countView(ctx.db, link->first.token) : std::nullopt;
        if (!views)
            return notFound(res);
        Reply::json(res, {{"views", *views}});
    });

    server.Post("/s/([^/]+)/heart", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const auto link = linked(ctx, req);
        const auto hearts = link ? ShareStore::countHeart(ctx.db, link->first.token) : std::nullopt;
        if (!hearts)
            return notFound(res);
        Reply::json(res, {{"hearts", *hearts}});
    });
}

} // namespace

namespace Routes {

bool isSharePage(const httplib::Request &req)
{
    return req.path.rfind("/s/", 0) == 0;
}

void addSharePage(httplib::Server &server, ServerContext &ctx)
{
    pageRoute(server, ctx);
    mediaRoutes(server, ctx);
    countRoutes(server, ctx);
    // Any other address under the links' path is a link that isn't there.
    server.Get("/s/.*", [](const httplib::Request &, httplib::Response &res) { notFound(res); });
}

} // namespace Routes
