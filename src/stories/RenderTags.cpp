#include "RenderTags.h"

#include "RecordFormats.h"
#include "TrackNames.h"
#include "Units.h"

#include <QLocale>

namespace RenderTags {

Facts of(const RenderEntry &entry)
{
    return {entry.settings, entry.aspect, entry.duration, entry.size, entry.stale.value_or(false)};
}

Facts of(const RenderStatus &status)
{
    return {status.settings, status.aspect, status.duration, std::nullopt, status.stale.value_or(false)};
}

QStringList tags(const Facts &facts)
{
    QStringList out;
    if (facts.settings && facts.settings->beatSync)
        out.append(*facts.settings->beatSync + QStringLiteral("-sync"));
    if (facts.settings && facts.settings->hud.value_or(false))
        out.append(QStringLiteral("HUD"));
    if (isVertical(facts.aspect))
        out.append(QStringLiteral("▯ vertical"));
    if (facts.duration)
        out.append(Units::wholeTime(*facts.duration));
    if (facts.size)
        out.append(QString::number(*facts.size / 1'000'000) + QStringLiteral("MB"));
    if (facts.stale)
        out.append(QStringLiteral("⚠ stale"));
    return out;
}

QString music(const std::optional<RenderSettings> &settings)
{
    if (!settings || !settings->track || settings->track->isEmpty() || *settings->track == QLatin1String("none"))
        return QStringLiteral("no music");
    return TrackNames::displayName(*settings->track);
}

QString dateText(const std::optional<QString> &rendered)
{
    if (!rendered)
        return QStringLiteral("?");
    auto when = RecordFormats::parseLocal(*rendered);
    if (!when)
        when = RecordFormats::parseISO8601(*rendered);
    if (!when)
        return QStringLiteral("?");
    return QLocale().toString(when->toLocalTime(), QStringLiteral("MMM d, h:mm AP"));
}

bool isVertical(const std::optional<QString> &aspect)
{
    return aspect && *aspect == QLatin1String("vertical");
}

} // namespace RenderTags
