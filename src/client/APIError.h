#pragma once

#include "Failure.h"
#include "Result.h"

#include <optional>

class QNetworkReply;

/// Failures of calls to the library server, with their fixed words.
namespace APIError {
inline const QString domain = QStringLiteral("api");
inline const QString networkDomain = QStringLiteral("network");
inline const QString decodeDomain = QStringLiteral("decode");
inline const QString fileDomain = QStringLiteral("file");
constexpr int unauthorizedCode = 401;

/// "Server returned 503."
[[nodiscard]] Failure status(int code);
/// "You’re not signed in — your session may have expired. Please sign in again."
[[nodiscard]] Failure unauthorized();
/// A body that does not decode into the expected record.
[[nodiscard]] Failure decoding(const QString &detail = {});
/// A transport failure, with the network layer's own words; a reply given up because nothing
/// moved for its whole timeout is `timedOut()`.
[[nodiscard]] Failure transport(const QNetworkReply &reply);
/// "The request timed out." A transport failure like a dropped connection, not a stop.
[[nodiscard]] Failure timedOut();
/// Aborts `reply` on the user's behalf, so its end reads as cancelled rather than timed out.
void stop(QNetworkReply &reply);

// Failures of a download to a local file.
enum FileCode { badFileName = 1, cannotWrite = 2, cannotMove = 3 };
/// A destination name that would leave the temporary folder.
[[nodiscard]] Failure badDownloadName(const QString &fileName);
/// The bytes couldn't be written (disk full, no permission).
[[nodiscard]] Failure downloadNotWritten(const QString &detail);
/// The finished file couldn't take its final name.
[[nodiscard]] Failure downloadNotMoved(const QString &fileName);

/// A decoded record, or the decoding failure when there is none.
template <typename T>
[[nodiscard]] Result<T> decoded(std::optional<T> value)
{
    if (!value)
        return decoding();
    return std::move(*value);
}

[[nodiscard]] inline bool isUnauthorized(const Failure &f) { return f.is(domain, unauthorizedCode); }
[[nodiscard]] inline bool isStatus(const Failure &f, int code) { return f.is(domain, code); }
/// The user's own stop of a transfer (see `stop`).
[[nodiscard]] bool isCancelled(const Failure &f);
} // namespace APIError
