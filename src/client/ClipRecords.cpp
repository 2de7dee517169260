#include "ClipRecords.h"

#include "RecordFormats.h"

using Wire::OrderedJson;

std::optional<Clip> Clip::fromJson(const Wire::Json &j)
{
    return Wire::decodeFields<Clip>(j);
}

OrderedJson Clip::toJson() const
{
    return Wire::encodeFields(*this);
}

std::optional<Moment> Moment::fromJson(const Wire::Json &j)
{
    return Wire::decodeFields<Moment>(j);
}

OrderedJson Moment::toJson() const
{
    return Wire::encodeFields(*this);
}

QString Moment::identity() const
{
    if (mid)
        return *mid;
    return RecordFormats::doubleText(start) + QLatin1Char('-') + RecordFormats::doubleText(end);
}

std::optional<ClipRef> ClipRef::fromJson(const Wire::Json &j)
{
    return Wire::decodeFields<ClipRef>(j);
}

OrderedJson ClipRef::toJson() const
{
    return Wire::encodeFields(*this);
}

std::optional<PoolClip> PoolClip::fromJson(const Wire::Json &j)
{
    return Wire::decodeFields<PoolClip>(j);
}

OrderedJson PoolClip::toJson() const
{
    return Wire::encodeFields(*this);
}

QString PoolClip::identity() const
{
    return flightId + QLatin1Char('-') + clipId.value_or(QString()) + QLatin1Char('-')
        + RecordFormats::doubleText(start);
}
