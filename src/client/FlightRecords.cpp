#include "FlightRecords.h"

#include "RecordFormats.h"
#include "Units.h"

using Wire::ObjectReader;
using Wire::OrderedJson;
using Wire::put;

std::optional<RelAlt> RelAlt::fromJson(const Wire::Json &j)
{
    RelAlt r;
    if (!ObjectReader(j).opt("min", r.min).opt("max", r.max).ok())
        return std::nullopt;
    return r;
}

OrderedJson RelAlt::toJson() const
{
    OrderedJson o = OrderedJson::object();
    put(o, "min", min);
    put(o, "max", max);
    return o;
}

std::optional<Centroid> Centroid::fromJson(const Wire::Json &j)
{
    Centroid c;
    if (!ObjectReader(j).req("lat", c.lat).req("lon", c.lon).ok())
        return std::nullopt;
    return c;
}

OrderedJson Centroid::toJson() const
{
    OrderedJson o = OrderedJson::object();
    put(o, "lat", lat);
    put(o, "lon", lon);
    return o;
}

std::optional<VideoInfo> VideoInfo::fromJson(const Wire::Json &j)
{
    VideoInfo v;
    if (!ObjectReader(j).opt("w", v.w).opt("h", v.h).opt("vertical", v.vertical).ok())
        return std::nullopt;
    return v;
}

OrderedJson VideoInfo::toJson() const
{
    OrderedJson o = OrderedJson::object();
    put(o, "w", w);
    put(o, "h", h);
    put(o, "vertical", vertical);
    return o;
}

std::optional<Flight> Flight::fromJson(const Wire::Json &j)
{
    Flight f;
    const bool ok = ObjectReader(j)
                        .req("id", f.id)
                        .opt("date", f.date)
                        .opt("model", f.model)
                        .opt("duration", f.duration)
                        .opt("pathLength", f.pathLength)
                        .opt("maxSpeed", f.maxSpeed)
                        .opt("relAlt", f.relAlt)
                        .opt("centroid", f.centroid)
                        .opt("place", f.place)
                        .opt("video", f.video)
                        .opt("samples", f.samples)
                        .opt("p480", f.p480)
                        .ok();
    if (!ok)
        return std::nullopt;
    return f;
}

OrderedJson Flight::toJson() const
{
    OrderedJson o = OrderedJson::object();
    put(o, "id", id);
    put(o, "date", date);
    put(o, "model", model);
    put(o, "duration", duration);
    put(o, "pathLength", pathLength);
    put(o, "maxSpeed", maxSpeed);
    put(o, "relAlt", relAlt);
    put(o, "centroid", centroid);
    put(o, "place", place);
    put(o, "video", video);
    put(o, "samples", samples);
    put(o, "p480", p480);
    return o;
}

QString Flight::durationText() const
{
    return Units::wholeTime(duration.value_or(0));
}

std::optional<QDateTime> Flight::parsedDate() const
{
    return date ? RecordFormats::parseLocal(*date) : std::nullopt;
}

QString Flight::dateText() const
{
    const auto when = parsedDate();
    return when ? RecordFormats::mediumDateShortTime(*when) : QStringLiteral("Unknown date");
}

int Flight::maxAltitudeDisplay(bool metric) const
{
    const double metres = relAlt ? relAlt->max.value_or(0) : 0;
    return Units::truncated(metres * Units::altitudeFactor(metric));
}

int Flight::maxSpeedDisplay(bool metric) const
{
    return Units::truncated(maxSpeed.value_or(0) * Units::speedFactor(metric));
}

std::optional<Manifest> Manifest::fromJson(const Wire::Json &j)
{
    Manifest m;
    if (!ObjectReader(j).req("flights", m.flights).ok())
        return std::nullopt;
    return m;
}

OrderedJson Manifest::toJson() const
{
    OrderedJson o = OrderedJson::object();
    put(o, "flights", flights);
    return o;
}

std::optional<TrackSample> TrackSample::fromJson(const Wire::Json &j)
{
    TrackSample s;
    const bool ok = ObjectReader(j)
                        .req("t", s.t)
                        .req("lat", s.lat)
                        .req("lon", s.lon)
                        .opt("relAlt", s.relAlt)
                        .opt("yaw", s.yaw)
                        .opt("speed", s.speed)
                        .opt("climb", s.climb)
                        .ok();
    if (!ok)
        return std::nullopt;
    return s;
}

OrderedJson TrackSample::toJson() const
{
    OrderedJson o = OrderedJson::object();
    put(o, "t", t);
    put(o, "lat", lat);
    put(o, "lon", lon);
    put(o, "relAlt", relAlt);
    put(o, "yaw", yaw);
    put(o, "speed", speed);
    put(o, "climb", climb);
    return o;
}

std::optional<SamplesStatus> SamplesStatus::fromJson(const Wire::Json &j)
{
    SamplesStatus s;
    if (!ObjectReader(j).req("count", s.count).req("bytes", s.bytes).req("restorable", s.restorable).ok())
        return std::nullopt;
    return s;
}

OrderedJson SamplesStatus::toJson() const
{
    OrderedJson o = OrderedJson::object();
    put(o, "count", count);
    put(o, "bytes", bytes);
    put(o, "restorable", restorable);
    return o;
}
