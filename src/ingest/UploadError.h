#pragma once

#include "Failure.h"

/// Failures of sending a flight to the library, with their fixed words.
namespace UploadError {
inline const QString domain = QStringLiteral("upload");
enum Code { QuotaExceeded = 1, Rejected = 2, ProxyTooLarge = 3 };

/// "Storage quota exceeded — <detail>"
[[nodiscard]] Failure quotaExceeded(const QString &detail);
/// "Server rejected the flight (<status>): <detail>"; status -1 when no HTTP reply came.
[[nodiscard]] Failure rejected(int status, const QString &detail);
/// "proxy.mp4 is <MB> MB — over the 2 GB per-file limit"
[[nodiscard]] Failure proxyTooLarge(qint64 bytes);

/// The server's explanation of a failed reply: its JSON `detail`, else the first 200 bytes.
[[nodiscard]] QString detailOf(const QByteArray &body);
} // namespace UploadError
