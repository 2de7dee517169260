// Story videos: starting one, following it, the made videos and their files.
#include "ProjectTable.h"
#include "RenderQueue.h"
#include "RenderStore.h"
#include "Reply.h"
#include "Routes.h"
#include "ServerContext.h"
#include "ShareStore.h"

#include <httplib.h>

#include <algorithm>
#include <map>

using nlohmann::ordered_json;

namespace {

/// The story named in the path; answers 400 or 404 and gives nothing when there is none.
std::optional<ProjectRow> story(ServerContext &ctx, const httplib::Request &req, httplib::Response &res)
{
    const auto id = Reply::id(req, res);
    if (!id)
        return std::nullopt;
    auto found = ProjectTable::find(ctx.db, *id);
    if (!found)
        Reply::error(res, 404, "There is no story " + *id);
    return found;
}

/// The status of a story's video making: running, the last job's failure, its newest video, or idle.
ordered_json statusOf(ServerContext &ctx, const ProjectRow &project)
{
    if (const auto running = ctx.renders.running(); running && running->projectId == project.id)
        return {{"status", "running"}, {"id", running->id}, {"progress", running->progress}};
    const auto failure = ctx.renders.lastFailure(project.id);
    const auto videos = RenderStore::ofProject(ctx.db, project.id);
    ordered_json out{{"status", failure ? "error" : videos.empty() ? "idle" : "done"}};
    if (!videos.empty()) {
        const auto entry = RenderStore::entryJson(videos.front(), RenderStore::cutOf(project.items), project.title);
        out["id"] = entry["id"];
        if (!failure)
            out["progress"] = 1.0;
        for (const char *key : {"url", "rendered", "duration", "stale", "aspect", "settings"})
            out[key] = entry[key];
    }
    if (failure)
        out["error"] = *failure;
    return out;
}

/// The titles and fingerprints of all stories, for lists of videos across the library.
std::map<std::string, ProjectRow> projects(Database &db)
{
    std::map<std::string, ProjectRow> out;
    auto guard = db.lock();
    auto st = db.prepare("SELECT id, title, items FROM projects");
    while (st.step())
        out[st.text(0)] = ProjectRow{st.text(0), st.text(1), {}, st.text(2), {}, {}};
    return out;
}

void startRoute(httplib::Server &server, ServerContext &ctx)
{
    server.Post("/api/projects/([^/]+)/render", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const auto body = Reply::object(req, res);
        if (!body)
            return;
        std::string why;
        auto order = RenderOrder::parse(*body, why);
        if (!order)
            return Reply::error(res, 400, why);
        const auto project = story(ctx, req, res);
        if (!project)
            return;
        const auto items = ordered_json::parse(project->items, nullptr, false);
        if (!items.is_array() || items.empty())
            return Reply::error(res, 400, "This story has no clips yet: add some before making its video");
        if (order->wantsMusic() && order->track != RenderOrder::randomTrack) {
            // A new library makes its music beds when music is first asked for, as here.
            ctx.music.ensure();
            const auto tracks = ctx.music.tracks();
            if (std::find(tracks.begin(), tracks.end(), order->track) == tracks.end())
                return Reply::error(res, 400, "There is no music track " + order->track + " in this library");
        }
        order->projectId = project->id;
        const auto id = ctx.renders.start(*order, project->items);
        if (!id)
            return Reply::error(res, 409, "Another video is being made; the library makes one at a time");
        Reply::json(res, {{"status", "running"}, {"id", *id}, {"progress", 0.0}});
    });

    server.Get("/api/projects/([^/]+)/render", [&ctx](const httplib::Request &req, httplib::Response &res) {
        if (const auto project = story(ctx, req, res))
            Reply::json(res, statusOf(ctx, *project));
    });
}

void listRoutes(httplib::Server &server, ServerContext &ctx)
{
    server.Get("/api/projects/([^/]+)/renders", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const auto project = story(ctx, req, res);
        if (!project)
            return;
        const std::string cut = RenderStore::cutOf(project->items);
        ordered_json list = ordered_json::array();
        for (const RenderRow &row : RenderStore::ofProject(ctx.db, project->id))
            list.push_back(RenderStore::entryJson(row, cut, project->title));
        Reply::json(res, {{"renders", list}});
    });

    server.Get("/api/renders", [&ctx](const httplib::Request &, httplib::Response &res) {
        const auto stories = projects(ctx.db);
        ordered_json list = ordered_json::array();
        for (const RenderRow &row : RenderStore::all(ctx.db)) {
            const auto found = stories.find(row.project);
            if (found == stories.end())
                continue;
            list.push_back(RenderStore::entryJson(row, RenderStore::cutOf(found->second.items), found->second.title));
        }
        Reply::json(res, {{"renders", list}});
    });

    server.Delete("/api/projects/([^/]+)/renders/([^/]+)", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const auto project = story(ctx, req, res);
        const auto id = project ? Reply::id(req, res, 2) : std::nullopt;
        if (!id)
            return;
        const auto row = RenderStore::find(ctx.db, *id);
        if (!row || row->project != project->id)
            return Reply::error(res, 404, "This story has no video " + *id);
        ShareStore::removeOfRender(ctx.db, *id);
        RenderStore::remove(ctx.db, ctx.library, *id);
        Reply::json(res, {{"deleted", *id}});
    });

    server.Get("/renders/([^/]+)\\.(mp4|jpg)", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const auto id = Reply::id(req, res);
        if (!id)
            return;
        Routes::serveFile(req, res,
                  req.matches[2] == "mp4" ? RenderStore::video(ctx.library, *id) : RenderStore::poster(ctx.library, *id));
    });
}

} // namespace

namespace Routes {

void addRenders(httplib::Server &server, ServerContext &ctx)
{
    startRoute(server, ctx);
    listRoutes(server, ctx);
}

void forgetStoryVideos(ServerContext &ctx, const std::string &projectId)
{
    ctx.renders.cancel(projectId);
    ShareStore::removeOfProject(ctx.db, projectId);
    RenderStore::removeProject(ctx.db, ctx.library, projectId);
}

} // namespace Routes
