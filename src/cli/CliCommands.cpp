#include "CliCommand.h"

#include <cstdio>

QList<CliCommand> cliCommands()
{
    return {idCommand(), probeCommand(), telemetryCommand(), scanCommand(), ingestCommand(), cutCommand()};
}

namespace CliIO {

void out(const QByteArray &bytes)
{
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stdout);
    std::fflush(stdout);
}

void err(const QString &words)
{
    const QByteArray bytes = words.toUtf8() + '\n';
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stderr);
    std::fflush(stderr);
}

int fail(const QString &words)
{
    err(words);
    return 1;
}

} // namespace CliIO
