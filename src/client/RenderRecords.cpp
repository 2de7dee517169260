#include "RenderRecords.h"

#include "RecordFormats.h"

using Wire::OrderedJson;

std::optional<RenderSettings> RenderSettings::fromJson(const Wire::Json &j)
{
    return Wire::decodeFields<RenderSettings>(j);
}

OrderedJson RenderSettings::toJson() const
{
    return Wire::encodeFields(*this);
}

std::optional<RenderStatus> RenderStatus::fromJson(const Wire::Json &j)
{
    return Wire::decodeFields<RenderStatus>(j);
}

OrderedJson RenderStatus::toJson() const
{
    return Wire::encodeFields(*this);
}

std::optional<RenderEntry> RenderEntry::fromJson(const Wire::Json &j)
{
    return Wire::decodeFields<RenderEntry>(j);
}

OrderedJson RenderEntry::toJson() const
{
    return Wire::encodeFields(*this);
}

std::optional<ReelShare> ReelShare::fromJson(const Wire::Json &j)
{
    return Wire::decodeFields<ReelShare>(j);
}

OrderedJson ReelShare::toJson() const
{
    return Wire::encodeFields(*this);
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
    return Wire::decodeFields<ShareCopySuggestion>(j);
}

OrderedJson ShareCopySuggestion::toJson() const
{
    return Wire::encodeFields(*this);
}

OrderedJson RenderRequest::toJson() const
{
    return Wire::encodeFields(*this);
}
