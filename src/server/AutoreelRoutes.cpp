#include "ProjectTable.h"
#include "ReelPool.h"
#include "Reply.h"
#include "Routes.h"
#include "ServerContext.h"
#include "StoryDraft.h"

#include <httplib.h>

#include <algorithm>

using nlohmann::ordered_json;

namespace {
/// The request's choices; answers 400 and gives nothing when the body won't do.
std::optional<std::pair<ReelPool::Request, double>> request(const httplib::Request &req, httplib::Response &res)
{
    const auto body = Reply::object(req, res);
    if (!body)
        return std::nullopt;
    const auto bad = [&](const char *why) {
        Reply::error(res, 400, why);
        return std::nullopt;
    };
    if (!body->contains("target") || !(*body)["target"].is_number() || !((*body)["target"].get<double>() > 0))
        return bad("\"target\" must be a number of seconds");
    ReelPool::Request ask;
    if (body->contains("flightIds") && !(*body)["flightIds"].is_null()) {
        const auto &ids = (*body)["flightIds"];
        if (!ids.is_array() || !std::all_of(ids.begin(), ids.end(), [](const auto &id) { return id.is_string(); }))
            return bad("\"flightIds\" must be a list of flight ids");
        ask.flightIds = ids.get<std::vector<std::string>>();
    }
    if (body->contains("place") && !(*body)["place"].is_null()) {
        if (!(*body)["place"].is_string())
            return bad("\"place\" must be a text");
        ask.place = (*body)["place"].get<std::string>();
    }
    if (body->contains("clipsOnly") && !(*body)["clipsOnly"].is_null()) {
        if (!(*body)["clipsOnly"].is_boolean())
            return bad("\"clipsOnly\" must be true or false");
        ask.clipsOnly = (*body)["clipsOnly"].get<bool>();
    }
    // Between a few seconds and ten minutes: more would be a film, not a story.
    return std::pair(std::move(ask), std::clamp((*body)["target"].get<double>(), 5.0, 600.0));
}
} // namespace

namespace Routes {

void addAutoreel(httplib::Server &server, ServerContext &ctx)
{
    server.Post("/api/autoreel", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const auto asked = request(req, res);
        if (!asked)
            return;
        const StoryDraft draft(ReelPool::gather(ctx.library, ctx.flights, asked->first), asked->second);
        if (draft.empty())
            return Reply::error(res, 422,
                                asked->first.clipsOnly
                                    ? "There is nothing to make a story of: no kept clips to draw from"
                                    : "There is nothing to make a story of: no clips or moments to draw from yet");
        const ProjectRow story{ProjectTable::newId(), draft.title(), "", draft.items().dump(), ProjectTable::now(),
                               ProjectTable::now()};
        if (!ProjectTable::insert(ctx.db, story))
            return Reply::error(res, 500, "The server can't store the story");
        Reply::json(res, ProjectTable::projectJson(story));
    });
}

} // namespace Routes
