#include "RenderRecords.h"

#include "RecordFormats.h"

using Wire::ObjectReader;
using Wire::OrderedJson;
using Wire::put;

std::optional<RenderSettings> RenderSettings::fromJson(const Wire::Json &j)
{
    RenderSettings s;
    const bool ok =
        ObjectReader(j).opt("track", s.track).opt("beatSync", s.beatSync).opt("xfade", s.xfade).opt("hud", s.hud).ok();
    if (!ok)
        return std::nullopt;
    return s;
}

OrderedJson RenderSettings::toJson() const
{
    OrderedJson o = OrderedJson::object();
    put(o, "track", track);
    put(o, "beatSync", beatSync);
    put(o, "xfade", xfade);
    put(o, "hud", hud);
    return o;
}

std::optional<RenderStatus> RenderStatus::fromJson(const Wire::Json &j)
{
    RenderStatus s;
    const bool ok = ObjectReader(j)
                        .req("status", s.status)
                        .opt("id", s.id)
                        .opt("progress", s.progress)
                        .opt("url", s.url)
                        .opt("rendered", s.rendered)
                        .opt("duration", s.duration)
                        .opt("stale", s.stale)
                        .opt("error", s.error)
                        .opt("aspect", s.aspect)
                        .opt("settings", s.settings)
                        .ok();
    if (!ok)
        return std::nullopt;
    return s;
}

OrderedJson RenderStatus::toJson() const
{
    OrderedJson o = OrderedJson::object();
    put(o, "status", status);
    put(o, "id", id);
    put(o, "progress", progress);
    put(o, "url", url);
    put(o, "rendered", rendered);
    put(o, "duration", duration);
    put(o, "stale", stale);
    put(o, "error", error);
    put(o, "aspect", aspect);
    put(o, "settings", settings);
    return o;
}

std::optional<RenderEntry> RenderEntry::fromJson(const Wire::Json &j)
{
    RenderEntry e;
    const bool ok = ObjectReader(j)
                        .req("id", e.id)
                        .opt("url", e.url)
                        .opt("rendered", e.rendered)
                        .opt("duration", e.duration)
                        .opt("size", e.size)
                        .opt("stale", e.stale)
                        .opt("aspect", e.aspect)
                        .opt("settings", e.settings)
                        .opt("projectId", e.projectId)
                        .opt("projectTitle", e.projectTitle)
                        .ok();
    if (!ok)
        return std::nullopt;
    return e;
}

OrderedJson RenderEntry::toJson() const
{
    OrderedJson o = OrderedJson::object();
    put(o, "id", id);
    put(o, "url", url);
    put(o, "rendered", rendered);
    put(o, "duration", duration);
    put(o, "size", size);
    put(o, "stale", stale);
    put(o, "aspect", aspect);
    put(o, "settings", settings);
    put(o, "projectId", projectId);
    put(o, "projectTitle", projectTitle);
    return o;
}

std::optional<ReelShare> ReelShare::fromJson(const Wire::Json &j)
{
    ReelShare s;
    const bool ok = ObjectReader(j)
                        .req("token", s.token)
                        .req("url", s.url)
                        .req("projectId", s.projectId)
                        .req("renderId", s.renderId)
                        .opt("title", s.title)
                        .opt("description", s.description)
                        .opt("duration", s.duration)
                        .opt("created", s.created)
                        .req("views", s.views)
                        .req("hearts", s.hearts)
                        .ok();
    if (!ok)
        return std::nullopt;
    return s;
}

OrderedJson ReelShare::toJson() const
{
    OrderedJson o = OrderedJson::object();
    put(o, "token", token);
    put(o, "url", url);
    put(o, "projectId", projectId);
    put(o, "renderId", renderId);
    put(o, "title", title);
    put(o, "description", description);
    put(o, "duration", duration);
    put(o, "created", created);
    put(o, "views", views);
    put(o, "hearts", hearts);
    return o;
}

QString ReelShare::createdText() const
{
    if (!created)
        return {};
    const auto when = RecordFormats::parseLocal(*created);
    return when ? RecordFormats::monthDayYear(*when) : *created;
}

std::optional<ShareCopySuggestion> ShareCopySuggestion::fromJson(const Wire::Json &j)
{
    ShareCopySuggestion s;
    if (!ObjectReader(j).req("title", s.title).opt("description", s.description).ok())
        return std::nullopt;
    return s;
}

OrderedJson ShareCopySuggestion::toJson() const
{
    OrderedJson o = OrderedJson::object();
    put(o, "title", title);
    put(o, "description", description);
    return o;
}

OrderedJson RenderRequest::toJson() const
{
    OrderedJson o = OrderedJson::object();
    put(o, "track", track);
    put(o, "beatSync", beatSync);
    put(o, "hud", hud);
    put(o, "xfade", xfade);
    put(o, "aspect", aspect);
    return o;
}
