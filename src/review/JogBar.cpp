#include "JogBar.h"

#include "JogShuttleEngine.h"

#include <algorithm>

namespace JogBar {

double travel(double barHeight)
{
    return std::max((barHeight - knobSize) * 0.5, 1.0);
}

double displacement(double translation, double barHeight)
{
    return std::clamp(translation / travel(barHeight), -1.0, 1.0);
}

QString hint(bool dragging, double displacement)
{
    // Scrubbing once the engine moves: past its dead zone.
    return dragging && JogShuttleEngine::speedFor(displacement) != 0 ? QStringLiteral("Scrubbing") : QStringLiteral("Drag");
}

QString knobText(bool dragging, double displacement)
{
    if (!dragging)
        return {};
    const QString arrow = displacement > 0 ? QStringLiteral("▼") : QStringLiteral("▲");
    const QString label = JogShuttleEngine::labelFor(displacement);
    return label.isEmpty() ? arrow : label + QStringLiteral(" ") + arrow;
}

} // namespace JogBar
