#include "ClipRecords.h"

#include "RecordFormats.h"

using Wire::ObjectReader;
using Wire::OrderedJson;
using Wire::put;

std::optional<Clip> Clip::fromJson(const Wire::Json &j)
{
    Clip c;
    const bool ok = ObjectReader(j)
                        .req("id", c.id)
                        .req("in", c.start)
                        .req("out", c.end)
                        .req("label", c.label)
                        .opt("auto", c.autoSuggested)
                        .opt("why", c.why)
                        .ok();
    if (!ok)
        return std::nullopt;
    return c;
}

OrderedJson Clip::toJson() const
{
    OrderedJson o = OrderedJson::object();
    put(o, "id", id);
    put(o, "in", start);
    put(o, "out", end);
    put(o, "label", label);
    put(o, "auto", autoSuggested);
    put(o, "why", why);
    return o;
}

std::optional<Moment> Moment::fromJson(const Wire::Json &j)
{
    Moment m;
    const bool ok = ObjectReader(j)
                        .opt("id", m.mid)
                        .req("in", m.start)
                        .req("out", m.end)
                        .opt("score", m.score)
                        .opt("why", m.why)
                        .ok();
    if (!ok)
        return std::nullopt;
    return m;
}

OrderedJson Moment::toJson() const
{
    OrderedJson o = OrderedJson::object();
    put(o, "id", mid);
    put(o, "in", start);
    put(o, "out", end);
    put(o, "score", score);
    put(o, "why", why);
    return o;
}

QString Moment::identity() const
{
    if (mid)
        return *mid;
    return RecordFormats::doubleText(start) + QLatin1Char('-') + RecordFormats::doubleText(end);
}

std::optional<ClipRef> ClipRef::fromJson(const Wire::Json &j)
{
    ClipRef r;
    if (!ObjectReader(j).opt("flightId", r.flightId).opt("auto", r.autoSuggested).ok())
        return std::nullopt;
    return r;
}

OrderedJson ClipRef::toJson() const
{
    OrderedJson o = OrderedJson::object();
    put(o, "flightId", flightId);
    put(o, "auto", autoSuggested);
    return o;
}

std::optional<PoolClip> PoolClip::fromJson(const Wire::Json &j)
{
    PoolClip c;
    const bool ok = ObjectReader(j)
                        .req("flightId", c.flightId)
                        .opt("clipId", c.clipId)
                        .req("in", c.start)
                        .req("out", c.end)
                        .req("label", c.label)
                        .opt("thumb", c.thumb)
                        .opt("place", c.place)
                        .opt("date", c.date)
                        .opt("p480", c.p480)
                        .opt("vertical", c.vertical)
                        .opt("auto", c.autoSuggested)
                        .opt("why", c.why)
                        .ok();
    if (!ok)
        return std::nullopt;
    return c;
}

OrderedJson PoolClip::toJson() const
{
    OrderedJson o = OrderedJson::object();
    put(o, "flightId", flightId);
    put(o, "clipId", clipId);
    put(o, "in", start);
    put(o, "out", end);
    put(o, "label", label);
    put(o, "thumb", thumb);
    put(o, "place", place);
    put(o, "date", date);
    put(o, "p480", p480);
    put(o, "vertical", vertical);
    put(o, "auto", autoSuggested);
    put(o, "why", why);
    return o;
}

QString PoolClip::identity() const
{
    return flightId + QLatin1Char('-') + clipId.value_or(QString()) + QLatin1Char('-')
        + RecordFormats::doubleText(start);
}
