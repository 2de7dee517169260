#pragma once

#include <Failure.h>

#include <QString>

/// @brief The failure of a tool that ended badly, in the words a person reads:
/// "<tool> exited <status>", then the last four non-empty lines of its standard error.
namespace ProcessError {

inline const QString domain = QStringLiteral("process");
/// Failure code of a child that could not be started at all.
inline constexpr int startFailedCode = -2;

/// `code` of the failure is the exit status. Callers use -1 with a made-up text for missing tools.
[[nodiscard]] Failure failed(const QString &tool, int status, const QString &stdErr);
[[nodiscard]] QString text(const QString &tool, int status, const QString &stdErr);
/// The system's reason why a child did not start.
[[nodiscard]] Failure startFailed(const QString &program, const QString &reason);

} // namespace ProcessError
