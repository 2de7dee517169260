#pragma once

#include <FlightData.h>

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>

#include <optional>
#include <vector>

/// @brief GPS tracks as GPX 1.1 for mapping and editing programs: one track, one segment per span.
namespace GpxWriter {

/// @brief One stretch of flight: samples whose `t` counts from `started` (when that is known).
struct Segment {
    std::vector<TelemetrySample> samples;
    std::optional<QDateTime> started;
};

/// Points carry the absolute altitude as elevation (the relative one when that is all there
/// is) and a UTC time when the segment's start is known. An empty segment is left out.
[[nodiscard]] QByteArray write(const QString &name, const QList<Segment> &segments);

} // namespace GpxWriter
