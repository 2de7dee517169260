#pragma once

#include <FlightData.h>

#include <QString>

#include <vector>

/// @brief Subtitle telemetry for a cut clip: the cues of one span of an original, timed from 0.
namespace SrtRetimer {

/// The cues of `text` (a whole sidecar) shown during [`start`, `end`) seconds, renumbered from 1
/// and shifted by −`start`: the one on screen at `start` begins at 0, the last one ends at
/// `end`. Each cue's text stays exactly as the aircraft wrote it, and so do the line ends
/// (CR LF or LF). Times are compared in whole milliseconds, as the file writes them.
[[nodiscard]] QString retime(const QString &text, double start, double end);

/// Cues written from samples whose `t` already counts from the clip's start, in the bracketed
/// form of recent aircraft: one cue per sample, lasting until the next one (the last one until
/// `duration`).
[[nodiscard]] QString fromSamples(const std::vector<TelemetrySample> &samples, double duration);

/// "HH:MM:SS,mmm" of a time in milliseconds.
[[nodiscard]] QString stamp(qint64 ms);

} // namespace SrtRetimer
