#include "LibraryFiles.h"
#include "Names.h"
#include "RecordCheck.h"
#include "Reply.h"
#include "Routes.h"
#include "ServerContext.h"
#include "Suggestions.h"

#include <httplib.h>

#include <cmath>

using nlohmann::ordered_json;

namespace {

/// One entry of the pool, from a clip of a flight and the flight's manifest entry.
std::optional<ordered_json> poolEntry(const std::string &flightId, const ordered_json &flight, const ordered_json &clip)
{
    if (!clip.is_object() || !clip.contains("in") || !clip["in"].is_number() || !clip.contains("out")
        || !clip["out"].is_number())
        return std::nullopt;
    ordered_json out;
    out["flightId"] = flightId;
    const bool hasId = clip.contains("id") && clip["id"].is_string();
    if (hasId)
        out["clipId"] = clip["id"];
    out["in"] = clip["in"];
    out["out"] = clip["out"];
    out["label"] = clip.contains("label") && clip["label"].is_string() ? clip["label"] : ordered_json("");
    const std::string thumb = hasId
        ? "flights/" + flightId + "/clipthumb_" + clip["id"].get<std::string>() + "_"
            + std::to_string(std::llround(clip["in"].get<double>() * 10)) + ".jpg"
        : std::string();
    out["thumb"] = !thumb.empty() && Names::clipThumbTenths(thumb.substr(thumb.rfind('/') + 1)) >= 0
        ? thumb
        : "flights/" + flightId + "/thumb.jpg";
    for (const char *key : {"place", "date", "p480"}) {
        if (flight.contains(key))
            out[key] = flight[key];
    }
    if (flight.contains("video") && flight["video"].contains("vertical"))
        out["vertical"] = flight["video"]["vertical"];
    for (const char *key : {"auto", "why"}) {
        if (clip.contains(key) && !clip[key].is_null())
            out[key] = clip[key];
    }
    return out;
}

/// The clips.json to store, from either body the client sends: {"flightId", "clips"} (which
/// replaces the list and keeps everything else of the stored file), or a whole clips.json.
std::optional<ordered_json> merged(const std::string &id, ordered_json body, const std::optional<std::string> &stored,
                                   std::string &why)
{
    if (body.contains("flightId")) {
        if (!body["flightId"].is_string() || body["flightId"].get<std::string>() != id) {
            why = "\"flightId\" does not match the flight in the path";
            return std::nullopt;
        }
        ordered_json current = stored ? ordered_json::parse(*stored, nullptr, false) : ordered_json::object();
        if (!current.is_object())
            current = ordered_json::object();
        current["clips"] = body.contains("clips") ? body["clips"] : ordered_json::array();
        body = std::move(current);
    }
    if (!body.contains("clips"))
        body["clips"] = ordered_json::array();
    why = RecordCheck::clips(body);
    if (!why.empty())
        return std::nullopt;
    return body;
}
} // namespace

namespace Routes {

void addClips(httplib::Server &server, ServerContext &ctx)
{
    server.Get("/api/clips", [&ctx](const httplib::Request &, httplib::Response &res) {
        ordered_json clips = ordered_json::array();
        for (const auto &row : ctx.flights.withClips()) {
            const auto flight = ordered_json::parse(row.entry, nullptr, false);
            const auto stored = ordered_json::parse(*row.clips, nullptr, false);
            if (flight.is_discarded() || !stored.is_object() || !stored.contains("clips") || !stored["clips"].is_array())
                continue;
            for (const auto &clip : stored["clips"]) {
                if (auto entry = poolEntry(row.id, flight, clip))
                    clips.push_back(std::move(*entry));
            }
        }
        Reply::json(res, {{"clips", std::move(clips)}});
    });

    server.Post("/api/clips/([^/]+)", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const auto id = Reply::id(req, res);
        if (!id)
            return;
        auto body = Reply::object(req, res);
        if (!body)
            return;
        std::lock_guard guard(ctx.staging.folderLock());
        const auto row = ctx.flights.row(*id);
        if (!row)
            return Reply::error(res, 404, "There is no flight " + *id);
        std::string why;
        auto clips = merged(*id, std::move(*body), row->clips, why);
        if (!clips)
            return Reply::error(res, 400, why);
        if (row->clips)
            Suggestions::rememberTossed(ordered_json::parse(*row->clips, nullptr, false), *clips);
        const std::string text = clips->dump();
        if (!LibraryFiles::replace(ctx.library, ctx.library.flight(*id) / "clips.json", text)
            || !ctx.flights.setClips(*id, text))
            return Reply::error(res, 500, "The server can't store the clips");
        Reply::json(res, {{"saved", (*clips)["clips"].size()}});
    });
}

} // namespace Routes
