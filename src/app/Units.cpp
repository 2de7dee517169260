#include "Units.h"

#include <cmath>
#include <cstdio>

namespace Units {

double altitude(double metres, bool metric)
{
    return metric ? metres : metres * feetPerMetre;
}

double speed(double metresPerSecond, bool metric)
{
    return metresPerSecond * (metric ? kmhPerMps : mphPerMps);
}

double distance(double metres, bool metric)
{
    return metres * (metric ? kmPerMetre : milesPerMetre);
}

QString altitudeUnit(bool metric)
{
    return metric ? QStringLiteral("m") : QStringLiteral("ft");
}

QString speedUnit(bool metric)
{
    return metric ? QStringLiteral("km/h") : QStringLiteral("mph");
}

QString distanceUnit(bool metric)
{
    return metric ? QStringLiteral("km") : QStringLiteral("mi");
}

namespace {
double clamped(double seconds)
{
    // NaN and negatives both read as the start.
    return (std::isnan(seconds) || seconds < 0) ? 0.0 : seconds;
}
} // namespace

QString timeText(double seconds)
{
    const long long whole = static_cast<long long>(clamped(seconds));
    return QString::asprintf("%lld:%02lld", whole / 60, whole % 60);
}

QString timeTextTenths(double seconds)
{
    const double t = clamped(seconds);
    const long long minutes = static_cast<long long>(t) / 60;
    const double rest = t - double(minutes) * 60.0;
    // C's own formatting: Qt's rounds half away from zero, C rounds the binary value, and
    // 75.25 must read 1:15.2 like everywhere else these texts appear.
    char text[48];
    std::snprintf(text, sizeof text, "%lld:%04.1f", minutes, rest);
    return QString::fromLatin1(text);
}

} // namespace Units
