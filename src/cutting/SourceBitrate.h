#pragma once

#include <CancelToken.h>

#include <QByteArray>
#include <QCoroTask>
#include <QString>

#include <optional>

/// @brief The bit rate a re-encode of an original aims at: the container's overall rate, audio
/// included, clamped to 8–120 Mbit/s, and 50 Mbit/s whenever it can't be read.
namespace SourceBitrate {

inline constexpr double floorBitsPerSecond = 8'000'000;
inline constexpr double ceilingBitsPerSecond = 120'000'000;
inline const QString fallback = QStringLiteral("50000000");

/// Asks ffprobe for the file's `format=bit_rate`; no ffprobe, a failed run or an unreadable answer
/// give the fallback.
[[nodiscard]] QCoro::Task<QString> measure(std::optional<QString> ffprobe, QString source, CancelToken *token = nullptr);

/// ffprobe's answer as the decimal text ffmpeg's "-b:v" takes.
[[nodiscard]] QString fromOutput(const QByteArray &output);

[[nodiscard]] QStringList arguments(const QString &source);

} // namespace SourceBitrate
