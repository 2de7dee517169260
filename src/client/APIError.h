#pragma once

#include "Failure.h"

class QNetworkReply;

/// Failures of calls to the library server, with their fixed words.
namespace APIError {
inline const QString domain = QStringLiteral("api");
inline const QString networkDomain = QStringLiteral("network");
inline const QString decodeDomain = QStringLiteral("decode");
constexpr int unauthorizedCode = 401;

/// "Server returned 503."
[[nodiscard]] Failure status(int code);
/// "You’re not signed in — your session may have expired. Please sign in again."
[[nodiscard]] Failure unauthorized();
/// A body that does not decode into the expected record.
[[nodiscard]] Failure decoding(const QString &detail = {});
/// A transport failure, with the network layer's own words.
[[nodiscard]] Failure transport(const QNetworkReply &reply);

[[nodiscard]] inline bool isUnauthorized(const Failure &f) { return f.is(domain, unauthorizedCode); }
[[nodiscard]] inline bool isStatus(const Failure &f, int code) { return f.is(domain, code); }
} // namespace APIError
