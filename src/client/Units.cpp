#include "Units.h"

#include <cmath>
#include <cstdio>
#include <limits>

namespace Units {

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

int truncated(double value)
{
    if (std::isnan(value))
        return 0;
    if (value >= double(std::numeric_limits<int>::max()))
        return std::numeric_limits<int>::max();
    if (value <= double(std::numeric_limits<int>::min()))
        return std::numeric_limits<int>::min();
    return int(value);
}

QString wholeTime(double seconds)
{
    const int whole = std::max(0, truncated(seconds));
    return QString::asprintf("%d:%02d", whole / 60, whole % 60);
}

QString tenthsTime(double seconds)
{
    const double t = std::isnan(seconds) ? 0.0 : std::max(0.0, seconds);
    const int minutes = truncated(t) / 60;
    // C's printf, not Qt's own formatter: a tie such as 15.25 rounds to even (15.2) there.
    char buffer[48];
    std::snprintf(buffer, sizeof buffer, "%d:%04.1f", minutes, t - minutes * 60.0);
    return QString::fromLatin1(buffer);
}

} // namespace Units
