#pragma once

#include "FlightData.h"

#include <CancelToken.h>

#include <QByteArray>
#include <QCoroTask>
#include <QString>

#include <optional>

/// @brief What ffprobe's format section says about a file; every field may be unknown.
struct MediaInfo {
    std::optional<QString> encoder; ///< trimmed, absent when empty
    std::optional<double> duration; ///< seconds
    std::optional<QString> creationTime; ///< the raw `creation_time` tag
    bool operator==(const MediaInfo &) const = default;
};

/// @brief Small read-only questions put to ffprobe. They never fail: a missing answer is the answer.
namespace MediaProbe {

[[nodiscard]] QCoro::Task<MediaInfo> probeFormat(QString ffprobe, QString file, CancelToken *token = nullptr);
/// Display size: a quarter-turn rotation swaps width and height.
[[nodiscard]] QCoro::Task<std::optional<FlightVideo>> probeVideo(QString ffprobe, QString file,
                                                                 CancelToken *token = nullptr);

/// The same questions for headless callers on worker threads.
[[nodiscard]] MediaInfo probeFormatBlocking(const QString &ffprobe, const QString &file);
[[nodiscard]] std::optional<FlightVideo> probeVideoBlocking(const QString &ffprobe, const QString &file);

// The readings of ffprobe's output, apart from the runs.
[[nodiscard]] QStringList formatArguments(const QString &file);
[[nodiscard]] QStringList videoArguments(const QString &file);
[[nodiscard]] MediaInfo readFormat(const QByteArray &json);
[[nodiscard]] std::optional<FlightVideo> readVideo(const QByteArray &csv);

} // namespace MediaProbe
