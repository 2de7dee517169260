#pragma once

#include "FlightData.h"

#include <CancelToken.h>
#include <Result.h>

#include <QCoroTask>
#include <QString>

#include <optional>

/// @brief The telemetry of one clip as the ingest pipeline records it: from the sidecar when
/// there is one, else from exiftool; a video without telemetry gets the no-telemetry record
/// (empty track, probed duration and `created`), while a low-resolution file without it fails.
namespace ClipTelemetry {

[[nodiscard]] QCoro::Task<Result<FlightData>> read(QString clip, std::optional<QString> srt, CancelToken *token = nullptr);

/// "mp4" or "mov", by the lower-cased extension.
[[nodiscard]] bool isVideo(const QString &clip);

/// The record of a video that carries no telemetry.
[[nodiscard]] FlightData noTelemetryRecord(const QString &source, const std::optional<QString> &encoder,
                                           std::optional<double> duration, const std::optional<QString> &created);

} // namespace ClipTelemetry
