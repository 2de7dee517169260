#include "StoryRecords.h"

#include "RecordFormats.h"

using Wire::ObjectReader;
using Wire::OrderedJson;
using Wire::put;

std::optional<ReelItem> ReelItem::fromJson(const Wire::Json &j)
{
    ReelItem r;  // a fresh uid
    const bool ok = ObjectReader(j)
                        .opt("flightId", r.flightId)
                        .opt("clipId", r.clipId)
                        .req("in", r.start)
                        .req("out", r.end)
                        .req("label", r.label)
                        .ok();
    if (!ok)
        return std::nullopt;
    return r;
}

OrderedJson ReelItem::toJson() const
{
    OrderedJson o = OrderedJson::object();
    put(o, "flightId", flightId);
    put(o, "clipId", clipId);
    put(o, "in", start);
    put(o, "out", end);
    put(o, "label", label);
    return o;
}

std::optional<Project> Project::fromJson(const Wire::Json &j)
{
    Project p;
    const bool ok = ObjectReader(j)
                        .req("id", p.id)
                        .req("title", p.title)
                        .opt("notes", p.notes)
                        .req("items", p.items)
                        .ok();
    if (!ok)
        return std::nullopt;
    return p;
}

OrderedJson Project::toJson() const
{
    OrderedJson o = OrderedJson::object();
    put(o, "id", id);
    put(o, "title", title);
    put(o, "notes", notes);
    put(o, "items", items);
    return o;
}

std::optional<ProjectSummary::CoverRef> ProjectSummary::CoverRef::fromJson(const Wire::Json &j)
{
    CoverRef c;
    if (!ObjectReader(j).opt("flightId", c.flightId).opt("clipId", c.clipId).ok())
        return std::nullopt;
    return c;
}

OrderedJson ProjectSummary::CoverRef::toJson() const
{
    OrderedJson o = OrderedJson::object();
    put(o, "flightId", flightId);
    put(o, "clipId", clipId);
    return o;
}

std::optional<ProjectSummary> ProjectSummary::fromJson(const Wire::Json &j)
{
    ProjectSummary s;
    const bool ok = ObjectReader(j)
                        .req("id", s.id)
                        .req("title", s.title)
                        .req("count", s.count)
                        .opt("created", s.created)
                        .opt("updated", s.updated)
                        .opt("cover", s.cover)
                        .ok();
    if (!ok)
        return std::nullopt;
    return s;
}

OrderedJson ProjectSummary::toJson() const
{
    OrderedJson o = OrderedJson::object();
    put(o, "id", id);
    put(o, "title", title);
    put(o, "count", count);
    put(o, "created", created);
    put(o, "updated", updated);
    put(o, "cover", cover);
    return o;
}

QString ProjectSummary::subtitle() const
{
    QString text = QString::number(count) + (count == 1 ? QStringLiteral(" clip") : QStringLiteral(" clips"));
    if (const auto when = updated ? RecordFormats::parseISO8601(*updated) : std::nullopt)
        text += QStringLiteral(" · ") + RecordFormats::monthDay(*when);
    return text;
}

std::optional<EDLItem> EDLItem::fromJson(const Wire::Json &j)
{
    EDLItem e;
    const bool ok = ObjectReader(j)
                        .req("seq", e.seq)
                        .opt("flightId", e.flightId)
                        .opt("source", e.source)
                        .opt("in", e.start)
                        .opt("out", e.end)
                        .req("label", e.label)
                        .req("output", e.output)
                        .ok();
    if (!ok)
        return std::nullopt;
    return e;
}

OrderedJson EDLItem::toJson() const
{
    OrderedJson o = OrderedJson::object();
    put(o, "seq", seq);
    put(o, "flightId", flightId);
    put(o, "source", source);
    put(o, "in", start);
    put(o, "out", end);
    put(o, "label", label);
    put(o, "output", output);
    return o;
}

std::optional<EDL> EDL::fromJson(const Wire::Json &j)
{
    EDL e;
    const bool ok = ObjectReader(j)
                        .req("id", e.id)
                        .req("title", e.title)
                        .opt("slug", e.slug)
                        .req("items", e.items)
                        .req("count", e.count)
                        .ok();
    if (!ok)
        return std::nullopt;
    return e;
}

OrderedJson EDL::toJson() const
{
    OrderedJson o = OrderedJson::object();
    put(o, "id", id);
    put(o, "title", title);
    put(o, "slug", slug);
    put(o, "items", items);
    put(o, "count", count);
    return o;
}
