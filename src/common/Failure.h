#pragma once

#include <QString>

/// @brief A failure a person may read: where it came from, a code, and its fixed words.
///
/// Each subsystem names its own domain and codes (see `APIError`, `ProcessError`, ...) and
/// builds its failures through small factory functions, so the words live in one place.
struct Failure {
    QString domain;  ///< "api", "network", "decode", "process", "telemetry", "upload", ...
    int code = 0;    ///< HTTP status, or the case number inside the domain
    QString text;    ///< the words shown to the user, exactly

    [[nodiscard]] bool is(const QString &d, int c) const { return domain == d && code == c; }
    bool operator==(const Failure &) const = default;
};
