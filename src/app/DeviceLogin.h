#pragma once

#include "CancelToken.h"
#include "Failure.h"
#include "Result.h"

#include <QString>

#include <QCoroTask>

#include <chrono>
#include <optional>

class QNetworkAccessManager;

/// @brief Passwordless sign-in: the server mails a link, the program polls until it is
/// clicked and receives an API token.
///
/// Stateless. Calls go out without any client (none exists yet) and without Authorization.
namespace DeviceLogin {

inline const QString domain = QStringLiteral("deviceLogin");
enum class Case { server = 1, unsupported = 2, expired = 3 };

/// "Server returned 500." (0 when no HTTP reply was had)
[[nodiscard]] Failure server(int status);
/// The server has no device endpoints.
[[nodiscard]] Failure unsupported();
/// The link was not clicked in time, or the server gave up on it.
[[nodiscard]] Failure expired();
[[nodiscard]] inline bool isDeviceLoginFailure(const Failure &f) { return f.domain == domain; }

/// How long the poll waits in all and between two steps; tests shorten both.
struct Timing {
    std::chrono::milliseconds deadline = std::chrono::minutes(16);
    std::chrono::milliseconds spacing = std::chrono::seconds(2);
};

/// The name this computer gives the server for its list of devices.
[[nodiscard]] QString deviceName();

/// Asks the server to mail a sign-in link; returns the secret of this attempt.
QCoro::Task<Result<QString>> request(QNetworkAccessManager *network, QString email, QString base,
                                     CancelToken *cancel = nullptr);

/// Polls until the link is clicked (the token), the deadline passes (`expired`), the server
/// refuses (`server`, `unsupported`, `expired`), or `cancel` fires (no value and no failure).
/// Transport failures and unreadable replies in between are forgiven: a hiccup during the
/// long wait must not end it.
QCoro::Task<Result<std::optional<QString>>> poll(QNetworkAccessManager *network, QString secret, QString base,
                                                 CancelToken *cancel = nullptr, Timing timing = {});

} // namespace DeviceLogin
