#include "StoryRecords.h"

#include "RecordFormats.h"

using Wire::OrderedJson;

std::optional<ReelItem> ReelItem::fromJson(const Wire::Json &j)
{
    return Wire::decodeFields<ReelItem>(j);
}

OrderedJson ReelItem::toJson() const
{
    return Wire::encodeFields(*this);
}

std::optional<Project> Project::fromJson(const Wire::Json &j)
{
    return Wire::decodeFields<Project>(j);
}

OrderedJson Project::toJson() const
{
    return Wire::encodeFields(*this);
}

std::optional<ProjectSummary::CoverRef> ProjectSummary::CoverRef::fromJson(const Wire::Json &j)
{
    return Wire::decodeFields<CoverRef>(j);
}

OrderedJson ProjectSummary::CoverRef::toJson() const
{
    return Wire::encodeFields(*this);
}

std::optional<ProjectSummary> ProjectSummary::fromJson(const Wire::Json &j)
{
    return Wire::decodeFields<ProjectSummary>(j);
}

OrderedJson ProjectSummary::toJson() const
{
    return Wire::encodeFields(*this);
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
    return Wire::decodeFields<EDLItem>(j);
}

OrderedJson EDLItem::toJson() const
{
    return Wire::encodeFields(*this);
}

std::optional<EDL> EDL::fromJson(const Wire::Json &j)
{
    return Wire::decodeFields<EDL>(j);
}

OrderedJson EDL::toJson() const
{
    return Wire::encodeFields(*this);
}
