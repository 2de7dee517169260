#include "CliCommand.h"

#include <ClipTelemetry.h>
#include <FlightFile.h>

#include <QFileInfo>

namespace {

QCoro::Task<int> runTelemetry(QStringList args)
{
    std::optional<QString> srt;
    if (const auto at = args.indexOf(QStringLiteral("--srt")); at >= 0) {
        if (at + 1 >= args.size())
            co_return CliIO::fail(QStringLiteral("aeroloom-cli telemetry: --srt needs a sidecar"));
        srt = args.at(at + 1);
        args.remove(at, 2);
    }
    if (args.size() != 1)
        co_return CliIO::fail(QStringLiteral("aeroloom-cli telemetry: name exactly one clip"));
    const QString clip = args.first();
    QStringList files{clip};
    if (srt)
        files.append(*srt);
    for (const QString &file : files) {
        if (!QFileInfo(file).isFile())
            co_return CliIO::fail(QStringLiteral("%1: no such file").arg(file));
    }
    const auto data = co_await ClipTelemetry::read(clip, srt);
    if (!data.ok())
        co_return CliIO::fail(data.errorText());
    const auto bytes = FlightFile::encode(*data);
    if (!bytes.ok())
        co_return CliIO::fail(bytes.errorText());
    CliIO::out(*bytes);
    co_return 0;
}

} // namespace

CliCommand telemetryCommand()
{
    return {QStringLiteral("telemetry"), QStringLiteral("the flight.json of a clip's telemetry"),
            QStringLiteral("usage: aeroloom-cli telemetry CLIP [--srt SIDECAR]\n\n"
                           "Prints the flight.json that an import writes for the clip's telemetry, exactly\n"
                           "as written: read from the sidecar when one is named, else from the clip itself\n"
                           "by exiftool. A video without telemetry gives a flight with an empty track.\n"
                           "On failure the reason goes to standard error and the exit code is 1.\n"),
            runTelemetry};
}
