#pragma once

#include "CutPlanRow.h"
#include "SourceTelemetry.h"

#include <CancelToken.h>
#include <H264Encoder.h>

#include <QCoroTask>
#include <QList>
#include <QStringList>

#include <functional>
#include <memory>

/// @brief The batch that turns planned rows into one MP4 each with ffmpeg, one at a time.
///
/// Fast mode copies the streams from the key frame at or before the start; frame-accurate mode
/// re-encodes from the exact frame with this machine's H.264 encoder at about the original's bit
/// rate. Every clip is written straight to its final name and removed again when ffmpeg fails or
/// is stopped, so a later run never finds half a clip there.
namespace ClipCutter {

/// Receives each row's new status by its index in the batch. It decides itself whether anyone
/// is still listening (a closed window is not).
using StatusSink = std::function<void(int row, CutPlanRow::Status status)>;

/// Cuts the rows that are ready (and the already cut ones when `force`); the others are skipped.
/// Ends early, between rows or by stopping ffmpeg, when `token` is cancelled. Failures end up in
/// the rows, never here. With `telemetry`, each clip whose original has telemetry gets its
/// sidecars (re-timed .SRT and .gpx).
QCoro::Task<> cutRows(QList<CutPlanRow> rows, bool fast, bool force, StatusSink setStatus,
                      std::shared_ptr<CancelToken> token, std::shared_ptr<SourceTelemetryCache> telemetry = {});

/// The ffmpeg arguments of one row.
[[nodiscard]] QStringList arguments(const CutPlanRow &row, bool fast, const QString &bitrate,
                                    const H264Encoder &encoder);

/// The encoder's part of a command line: codec, bit rate and the pixel format it takes.
[[nodiscard]] QStringList videoCodecArguments(const H264Encoder &encoder, const QString &bitrate);

} // namespace ClipCutter
