// Public links to story videos, as the signed-in pilot makes and changes them.
#include "ProjectTable.h"
#include "RenderStore.h"
#include "Reply.h"
#include "Routes.h"
#include "ServerContext.h"
#include "ShareStore.h"

#include <httplib.h>

using nlohmann::ordered_json;

namespace {
constexpr std::size_t longestTitle = 200;
constexpr std::size_t longestDescription = 2000;

/// Characters, not bytes, as the pilot counts them.
std::size_t characters(const std::string &utf8)
{
    std::size_t n = 0;
    for (const unsigned char c : utf8)
        n += (c & 0xC0) != 0x80;
    return n;
}

std::string fallbackHost(const ServerContext &ctx)
{
    return ctx.config.host + ":" + std::to_string(ctx.config.port);
}

ordered_json shareJson(ServerContext &ctx, const httplib::Request &req, const ShareRow &row)
{
    const auto video = RenderStore::find(ctx.db, row.render);
    return ShareStore::json(row, Reply::origin(req, fallbackHost(ctx)),
                            video ? std::optional(double(video->millis) / 1000.0) : std::nullopt);
}

/// The token in the path; answers 404 and gives nothing when there is no such link.
std::optional<ShareRow> shareIn(ServerContext &ctx, const httplib::Request &req, httplib::Response &res)
{
    const auto token = Reply::id(req, res);
    if (!token)
        return std::nullopt;
    auto row = ShareStore::find(ctx.db, *token);
    if (!row)
        Reply::error(res, 404, "There is no link " + *token);
    return row;
}

void createRoute(httplib::Server &server, ServerContext &ctx)
{
    server.Post("/api/projects/([^/]+)/shares", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const auto body = Reply::object(req, res);
        const auto project = body ? Reply::id(req, res) : std::nullopt;
        if (!project)
            return;
        if (!body->contains("renderId") || !(*body)["renderId"].is_string())
            return Reply::error(res, 400, "\"renderId\" must name a video of the story");
        const std::string renderId = (*body)["renderId"];
        const auto story = ProjectTable::find(ctx.db, *project);
        const auto video = RenderStore::find(ctx.db, renderId);
        if (!story)
            return Reply::error(res, 404, "There is no story " + *project);
        if (!video || video->project != *project)
            return Reply::error(res, 404, "This story has no video " + renderId);
        const auto row = ShareStore::create(ctx.db, *project, renderId, story->title,
                                            ProjectTable::localText(ctx.config.now()));
        if (!row)
            return Reply::error(res, 500, "The server can't store the link");
        Reply::json(res, shareJson(ctx, req, *row));
    });
}

void linkRoutes(httplib::Server &server, ServerContext &ctx)
{
    server.Get("/api/shares", [&ctx](const httplib::Request &req, httplib::Response &res) {
        ordered_json list = ordered_json::array();
        for (const ShareRow &row : ShareStore::all(ctx.db))
            list.push_back(shareJson(ctx, req, row));
        Reply::json(res, {{"shares", list}});
    });

    server.Patch("/api/shares/([^/]+)", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const auto body = Reply::object(req, res);
        auto row = body ? shareIn(ctx, req, res) : std::nullopt;
        if (!row)
            return;
        for (const char *key : {"title", "description"}) {
            if (body->contains(key) && !(*body)[key].is_string())
                return Reply::error(res, 400, std::string("\"") + key + "\" must be text");
        }
        // A key left out keeps what the link has; an empty title is the story's own on the page.
        const std::string title = body->value("title", row->title);
        const std::string description = body->value("description", row->description.value_or(std::string()));
        if (characters(title) > longestTitle)
            return Reply::error(res, 400, "The title is longer than 200 characters");
        if (characters(description) > longestDescription)
            return Reply::error(res, 400, "The description is longer than 2,000 characters");
        ShareStore::update(ctx.db, row->token, title, description);
        Reply::json(res, shareJson(ctx, req, ShareStore::find(ctx.db, row->token).value_or(*row)));
    });

    server.Delete("/api/shares/([^/]+)", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const auto row = shareIn(ctx, req, res);
        if (!row)
            return;
        ShareStore::remove(ctx.db, row->token);
        Reply::json(res, {{"deleted", row->token}});
    });
}
} // namespace

namespace Routes {

void addShares(httplib::Server &server, ServerContext &ctx)
{
    createRoute(server, ctx);
    linkRoutes(server, ctx);
}

} // namespace Routes
