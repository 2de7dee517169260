#pragma once

#include "GpxWriter.h"
#include "SourceTelemetry.h"

#include <QList>
#include <QString>

/// @brief The telemetry files that travel with a cut clip or a stitched story: "<name>.SRT",
/// re-timed to the clip, and "<name>.gpx", the track of the same span. Both are written
/// atomically; a clip whose original has no telemetry gets neither.
namespace ClipSidecars {

[[nodiscard]] QString srtPath(const QString &video);
[[nodiscard]] QString gpxPath(const QString &video);

/// Removes both files of `video`, if any: they belong to a clip that is being replaced.
void remove(const QString &video);

/// Writes the files of a clip cut from [`start`, `end`) of the original. False when a file could
/// not be written (nothing is left half-written).
bool writeClip(const SourceTelemetry &telemetry, double start, double end, const QString &video);

/// One track for a whole story, a segment per clip; nothing when no clip has a position.
bool writeStory(const QList<GpxWriter::Segment> &segments, const QString &video);

/// A clip's segment: its span's samples, timed from the clip's first frame.
[[nodiscard]] GpxWriter::Segment segment(const SourceTelemetry &telemetry, double start, double end);

} // namespace ClipSidecars
