#include "CutPlanRow.h"

#include <algorithm>
#include <cmath>

QString CutPlanRow::Status::words() const
{
    switch (kind) {
    case Kind::cutting:
        // A late report from ffmpeg may say more than the whole: never above 100 %.
        return QString::number(static_cast<int>(std::floor(std::clamp(fraction, 0.0, 1.0) * 100))) + QLatin1Char('%');
    case Kind::failed:
        return message;
    case Kind::pending:
        return QStringLiteral("Ready");
    case Kind::missingSource:
        return QStringLiteral("No original");
    case Kind::zeroDuration:
        return QStringLiteral("Zero-length");
    case Kind::existing:
        return QStringLiteral("Already cut");
    case Kind::done:
        return QStringLiteral("Done");
    }
    return {};
}

QString CutPlanRow::Status::name() const
{
    switch (kind) {
    case Kind::cutting: return QStringLiteral("cutting");
    case Kind::failed: return QStringLiteral("failed");
    case Kind::pending: return QStringLiteral("pending");
    case Kind::missingSource: return QStringLiteral("missingSource");
    case Kind::zeroDuration: return QStringLiteral("zeroDuration");
    case Kind::existing: return QStringLiteral("existing");
    case Kind::done: return QStringLiteral("done");
    }
    return {};
}

double CutPlanRow::length() const
{
    if (!item.start || !item.end)
        return 0;
    return std::max(0.0, *item.end - *item.start);
}

QString CutPlanRow::labelText() const
{
    return item.label + QStringLiteral("  (") + QString::asprintf("%.1fs", length()) + QLatin1Char(')');
}
