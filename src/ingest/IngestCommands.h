#pragma once

#include "H264Encoder.h"

#include <QString>
#include <QStringList>

/// @brief The ffmpeg command lines of the import: the light proxy of a flight and its still.
namespace IngestCommands {

/// A full-resolution video is re-encoded with `encoder` (short side 720, 4 Mbit/s, no audio);
/// anything else, the low-resolution file, is copied as it stands. With `progress` ffmpeg
/// reports on stdout for the progress reader. `output` comes last.
[[nodiscard]] QStringList proxy(const QString &source, bool isVideo, const H264Encoder &encoder, bool progress,
                                const QString &output);
/// One frame at two seconds into the proxy, 480 pixels wide.
[[nodiscard]] QStringList thumbnail(const QString &proxy, const QString &output);

} // namespace IngestCommands
