#include "CliCommand.h"

#include <FlightIDs.h>
#include <MediaProbe.h>
#include <ToolLocator.h>

#include <QDateTime>
#include <QFileInfo>

namespace {

QCoro::Task<int> runId(QStringList args)
{
    const bool fallback = args.removeAll(QStringLiteral("--fallback")) > 0;
    if (args.isEmpty())
        co_return CliIO::fail(QStringLiteral("aeroloom-cli id: name at least one file"));
    const auto ffprobe = fallback ? ToolLocator::ffprobe() : std::nullopt;
    for (const QString &file : args) {
        FlightIDs::FlightIdentity identity = FlightIDs::parseFileName(file);
        // As for dropped files: a video whose name carries no date is known by its content.
        const bool video = FlightIDs::videoExtensions().contains(QFileInfo(file).suffix().toLower());
        if (fallback && video && !identity.date) {
            std::optional<QString> creationTime;
            if (ffprobe)
                creationTime = (co_await MediaProbe::probeFormat(*ffprobe, file)).creationTime;
            identity = FlightIDs::fallbackIdentity(file, creationTime);
        }
        const QString date = identity.date ? identity.date->toOffsetFromUtc(identity.date->offsetFromUtc())
                                                 .toString(Qt::ISODate)
                                           : QStringLiteral("-");
        CliIO::out((identity.id + QLatin1Char('\t') + date + QLatin1Char('\t') + file + QLatin1Char('\n')).toUtf8());
    }
    co_return 0;
}

} // namespace

CliCommand idCommand()
{
    return {QStringLiteral("id"), QStringLiteral("flight id and recording date of each file"),
            QStringLiteral("usage: aeroloom-cli id [--fallback] FILE...\n\n"
                           "Prints one line per file: the flight id, the recording date (ISO 8601, or \"-\"\n"
                           "when unknown) and the file, separated by tabs. Only the file name is read.\n\n"
                           "  --fallback  for a video whose name carries no date, use its creation time\n"
                           "              (read by ffprobe) and the digest of its first MiB instead,\n"
                           "              as for files dropped on the import window\n"),
            runId};
}
