#pragma once

#include <Failure.h>

#include <QStringList>

/// @brief Why a clip yields no telemetry, in the words the import window shows.
/// All of them are failures of the "telemetry" domain; the code tells the case.
namespace TelemetryError {

inline const QString domain = QStringLiteral("telemetry");
enum Code { NoTelemetry = 1, NoGPSFix = 2, UnknownProtocol = 3, BadJSON = 4 };

[[nodiscard]] Failure noTelemetry(const QString &file);
[[nodiscard]] Failure noGPSFix(const QString &file, qint64 samples);
[[nodiscard]] Failure unknownProtocol(const QString &file, const QStringList &protocols);
[[nodiscard]] Failure badJSON();

[[nodiscard]] inline bool is(const Failure &f)
{
    return f.domain == domain;
}

} // namespace TelemetryError
