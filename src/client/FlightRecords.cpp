#include "FlightRecords.h"

#include "RecordFormats.h"
#include "Units.h"

using Wire::OrderedJson;

std::optional<RelAlt> RelAlt::fromJson(const Wire::Json &j)
{
    return Wire::decodeFields<RelAlt>(j);
}

OrderedJson RelAlt::toJson() const
{
    return Wire::encodeFields(*this);
}

std::optional<Centroid> Centroid::fromJson(const Wire::Json &j)
{
    return Wire::decodeFields<Centroid>(j);
}

OrderedJson Centroid::toJson() const
{
    return Wire::encodeFields(*this);
}

std::optional<VideoInfo> VideoInfo::fromJson(const Wire::Json &j)
{
    return Wire::decodeFields<VideoInfo>(j);
}

OrderedJson VideoInfo::toJson() const
{
    return Wire::encodeFields(*this);
}

std::optional<Flight> Flight::fromJson(const Wire::Json &j)
{
    return Wire::decodeFields<Flight>(j);
}

OrderedJson Flight::toJson() const
{
    return Wire::encodeFields(*this);
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
    return Wire::decodeFields<Manifest>(j);
}

OrderedJson Manifest::toJson() const
{
    return Wire::encodeFields(*this);
}

std::optional<TrackSample> TrackSample::fromJson(const Wire::Json &j)
{
    return Wire::decodeFields<TrackSample>(j);
}

OrderedJson TrackSample::toJson() const
{
    return Wire::encodeFields(*this);
}

std::optional<SamplesStatus> SamplesStatus::fromJson(const Wire::Json &j)
{
    return Wire::decodeFields<SamplesStatus>(j);
}

OrderedJson SamplesStatus::toJson() const
{
    return Wire::encodeFields(*this);
}
