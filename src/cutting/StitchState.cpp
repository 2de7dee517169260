#include "StitchState.h"

#include <algorithm>
#include <cmath>

QString StitchState::name() const
{
    switch (kind) {
    case Kind::idle: return QStringLiteral("idle");
    case Kind::running: return QStringLiteral("running");
    case Kind::done: return QStringLiteral("done");
    case Kind::failed: return QStringLiteral("failed");
    }
    return {};
}

QString StitchState::words() const
{
    switch (kind) {
    case Kind::running:
        return QStringLiteral("Making the story video… ")
               + QString::number(static_cast<int>(std::floor(std::clamp(fraction, 0.0, 1.0) * 100))) + QLatin1Char('%');
    case Kind::failed:
        return message;
    case Kind::idle:
    case Kind::done:
        break;
    }
    return {};
}
