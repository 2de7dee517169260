#include "ProjectTable.h"
#include "RecordCheck.h"
#include "Reply.h"
#include "Routes.h"
#include "ServerContext.h"

#include <httplib.h>

#include <algorithm>
#include <cctype>
#include <cstdio>

using nlohmann::ordered_json;

namespace {

/// A short file-name-safe form of a title: "Cliffs at Dawn!" gives "cliffs-at-dawn".
std::string slugOf(const std::string &title)
{
    std::string slug;
    for (const unsigned char c : title) {
        if (std::isalnum(c) && c < 0x80)
            slug.push_back(static_cast<char>(std::tolower(c)));
        else if (!slug.empty() && slug.back() != '-')
            slug.push_back('-');
        if (slug.size() >= 60)
            break;
    }
    while (!slug.empty() && slug.back() == '-')
        slug.pop_back();
    return slug;
}

/// The body of a create or save, with its items as the client decodes them (keys the server
/// doesn't know are kept). Answers 400 and gives nothing when the body won't do.
std::optional<std::pair<ordered_json, ordered_json>> storyBody(const httplib::Request &req, httplib::Response &res,
                                                               const std::function<bool(const std::string &)> &knownFlight)
{
    auto body = Reply::object(req, res);
    if (!body)
        return std::nullopt;
    for (const char *key : {"title", "notes"}) {
        if (body->contains(key) && !(*body)[key].is_string()) {
            Reply::error(res, 400, "\"" + std::string(key) + "\" must be text");
            return std::nullopt;
        }
    }
    ordered_json items = body->value("items", ordered_json::array());
    if (const std::string why = RecordCheck::storyItems(items, knownFlight); !why.empty()) {
        Reply::error(res, 400, why);
        return std::nullopt;
    }
    return std::pair(std::move(*body), std::move(items));
}

using Story = ProjectRow;

/// The story named in the path; answers 400 or 404 and gives nothing when there is none.
std::optional<Story> found(Database &db, const httplib::Request &req, httplib::Response &res)
{
    const auto id = Reply::id(req, res);
    if (!id)
        return std::nullopt;
    auto story = ProjectTable::find(db, *id);
    if (!story)
        Reply::error(res, 404, "There is no story " + *id);
    return story;
}

ordered_json summaryJson(const Story &story)
{
    const auto items = ordered_json::parse(story.items, nullptr, false);
    ordered_json out{{"id", story.id},
                     {"title", story.title},
                     {"count", items.is_array() ? items.size() : 0},
                     {"created", ProjectTable::timeText(story.created)},
                     {"updated", ProjectTable::timeText(story.updated)}};
    if (items.is_array() && !items.empty()) {
        ordered_json cover = ordered_json::object();
        for (const char *key : {"flightId", "clipId"}) {
            if (items[0].contains(key) && items[0][key].is_string())
                cover[key] = items[0][key];
        }
        out["cover"] = cover;
    }
    return out;
}

ordered_json edlJson(const Story &story, FlightIndex &flights)
{
    const std::string slug = slugOf(story.title).empty() ? story.id : slugOf(story.title);
    const auto items = ordered_json::parse(story.items, nullptr, false);
    ordered_json list = ordered_json::array();
    int seq = 0;
    for (const auto &item : items.is_array() ? items : ordered_json::array()) {
        ++seq;
        char output[96];
        std::snprintf(output, sizeof output, "_%02d.mp4", seq);
        ordered_json entry{{"seq", seq}};
        if (item.contains("flightId") && item["flightId"].is_string()) {
            const std::string flightId = item["flightId"];
            entry["flightId"] = flightId;
            if (const auto row = flights.row(flightId); row && !row->source.empty())
                entry["source"] = row->source;
        }
        entry["in"] = item["in"];
        entry["out"] = item["out"];
        entry["label"] = item.value("label", std::string());
        entry["output"] = slug + output;
        list.push_back(std::move(entry));
    }
    return {{"id", story.id}, {"title", story.title}, {"slug", slug}, {"items", list}, {"count", list.size()}};
}

void addCollection(httplib::Server &server, ServerContext &ctx)
{
    server.Get("/api/projects", [&ctx](const httplib::Request &, httplib::Response &res) {
        ordered_json list = ordered_json::array();
        auto guard = ctx.db.lock();
        auto st = ctx.db.prepare(
            "SELECT id, title, notes, items, created, updated FROM projects ORDER BY updated DESC, id");
        while (st.step())
            list.push_back(summaryJson(Story{st.text(0), st.text(1), st.text(2), st.text(3), st.text(4), st.text(5)}));
        Reply::json(res, {{"projects", list}});
    });

    server.Post("/api/projects", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const auto parsed =
            storyBody(req, res, [&ctx](const std::string &flightId) { return ctx.flights.exists(flightId); });
        if (!parsed)
            return;
        const auto &[body, items] = *parsed;
        Story story{ProjectTable::newId(), body.value("title", std::string()), body.value("notes", std::string()),
                    items.dump(), ProjectTable::now(), ProjectTable::now()};
        if (story.title.empty())
            story.title = "Untitled story";
        if (!ProjectTable::insert(ctx.db, story))
            return Reply::error(res, 500, "The server can't store the story");
        Reply::json(res, ProjectTable::projectJson(story));
    });
}

void addItem(httplib::Server &server, ServerContext &ctx)
{
    server.Get("/api/projects/([^/]+)", [&ctx](const httplib::Request &req, httplib::Response &res) {
        if (const auto story = found(ctx.db, req, res))
            Reply::json(res, ProjectTable::projectJson(*story));
    });

    server.Post("/api/projects/([^/]+)", [&ctx](const httplib::Request &req, httplib::Response &res) {
        auto guard = ctx.db.lock();
        auto story = found(ctx.db, req, res);
        if (!story)
            return;
        // A flight deleted since it went into the story may stay in it; new items need a flight.
        const auto stored = ordered_json::parse(story->items, nullptr, false);
        const auto inStory = [&stored](const std::string &flightId) {
            return stored.is_array() && std::any_of(stored.begin(), stored.end(), [&](const ordered_json &item) {
                       return item.is_object() && item.value("flightId", ordered_json()) == flightId;
                   });
        };
        const auto parsed = storyBody(req, res, [&](const std::string &flightId) {
            return ctx.flights.exists(flightId) || inStory(flightId);
        });
        if (!parsed)
            return;
        const auto &[body, items] = *parsed;
        if (body.contains("title") && body["title"].is_string())
            story->title = body["title"];
        if (body.contains("notes") && body["notes"].is_string())
            story->notes = body["notes"];
        if (body.contains("items"))
            story->items = items.dump();
        ctx.db.prepare("UPDATE projects SET title=?, notes=?, items=?, updated=? WHERE id=?")
            .bind(1, story->title).bind(2, story->notes).bind(3, story->items).bind(4, ProjectTable::now()).bind(5, story->id)
            .run();
        Reply::json(res, {{"saved", story->id}});
    });

    server.Delete("/api/projects/([^/]+)", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const auto story = found(ctx.db, req, res);
        if (!story)
            return;
        {
            auto guard = ctx.db.lock();
            ctx.db.prepare("DELETE FROM projects WHERE id=?").bind(1, story->id).run();
        }
        // Its videos and their links go with it. This waits for a video of it being made to
        // stop, so no lock of the database may be held here.
        Routes::forgetStoryVideos(ctx, story->id);
        Reply::json(res, {{"deleted", story->id}});
    });

    server.Get("/api/projects/([^/]+)/edl", [&ctx](const httplib::Request &req, httplib::Response &res) {
        if (const auto story = found(ctx.db, req, res))
            Reply::json(res, edlJson(*story, ctx.flights));
    });
}
} // namespace

namespace Routes {

void addStories(httplib::Server &server, ServerContext &ctx)
{
    addCollection(server, ctx);
    addItem(server, ctx);
}

} // namespace Routes
