#pragma once

#include <QByteArray>
#include <QCoroTask>
#include <QString>
#include <QStringList>

#include <functional>

/// @brief One subcommand of aeroloom-cli: its name, a one-line summary for the list, its usage
/// text for `--help`, and the routine that runs it and returns the exit code.
struct CliCommand {
    QString name;
    QString summary;
    QString usage;
    std::function<QCoro::Task<int>(QStringList args)> run;
};

/// Every subcommand, in the order the help lists them. A new subcommand is one file that
/// defines its `CliCommand` and one line here.
[[nodiscard]] QList<CliCommand> cliCommands();

CliCommand idCommand();
CliCommand probeCommand();
CliCommand telemetryCommand();
CliCommand scanCommand();
CliCommand ingestCommand();
CliCommand cutCommand();

/// Output of the subcommands: bytes exactly as given on standard output, words on standard error.
namespace CliIO {
void out(const QByteArray &bytes);
void err(const QString &words);
/// Prints the words of a failure on standard error and gives the exit code 1.
int fail(const QString &words);
} // namespace CliIO
