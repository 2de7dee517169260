#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// @brief What every command that talks to a library takes: "--server URL" and the credentials,
/// "--token T" or "--user U --password P".
struct ServerArguments {
    QString server;
    std::optional<QString> authHeader;  ///< "Bearer …" or "Basic …"; absent without credentials

    /// Takes those options and their values out of `args`, leaving the rest in order. An option
    /// without a value stays, for the command to report.
    [[nodiscard]] static ServerArguments take(QStringList &args);
};
