#pragma once

#include <QString>

/// @brief The shuttle bar's reading of a drag: a vertical pull, down being forwards, turned into
/// a displacement of -1…1, and the words the bar shows.
namespace JogBar {

/// The knob's side, in points.
inline constexpr double knobSize = 32;
/// The knob's travel to full speed: half of the bar's height less the knob, at least 1 point.
[[nodiscard]] double travel(double barHeight);
/// The displacement of a drag moved `translation` points down (negative: up).
[[nodiscard]] double displacement(double translation, double barHeight);
/// "Scrubbing" while a drag is outside the dead zone, "Drag" otherwise.
[[nodiscard]] QString hint(bool dragging, double displacement);
/// While dragging: the speed's label (empty in the dead zone) beside "▼" forwards or "▲" back.
[[nodiscard]] QString knobText(bool dragging, double displacement);

} // namespace JogBar
