#include "CliCommand.h"
#include "ServerArguments.h"

#include <APIClient.h>
#include <CardScanner.h>
#include <GeocodeClient.h>
#include <IngestPipeline.h>
#include <IngestQueue.h>

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include <QCoroSignal>

namespace {

struct Options {
    QString server;
    std::optional<QString> authHeader;
    bool geocode = true;
    bool keep = false;
    QString nominatim;
    QString contact;
    QString work = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/Aeroloom");
    QStringList sources;
};

std::optional<QString> parse(QStringList args, Options &o)
{
    const ServerArguments server = ServerArguments::take(args);
    o.server = server.server;
    o.authHeader = server.authHeader;
    while (!args.isEmpty()) {
        const QString arg = args.takeFirst();
        auto value = [&]() -> std::optional<QString> { return args.isEmpty() ? std::nullopt : std::optional(args.takeFirst()); };
        std::optional<QString> v;
        if (arg == QLatin1String("--nominatim") && (v = value()))
            o.nominatim = *v;
        else if (arg == QLatin1String("--contact") && (v = value()))
            o.contact = *v;
        else if (arg == QLatin1String("--work") && (v = value()))
            o.work = *v;
        else if (arg == QLatin1String("--no-geocode"))
            o.geocode = false;
        else if (arg == QLatin1String("--keep"))
            o.keep = true;
        else if (arg.startsWith(QLatin1String("--")))
            return QStringLiteral("aeroloom-cli ingest: unknown or incomplete option “%1”").arg(arg);
        else
            o.sources << arg;
    }
    if (o.server.isEmpty())
        return QStringLiteral("aeroloom-cli ingest: --server URL is needed");
    if (o.sources.isEmpty())
        return QStringLiteral("aeroloom-cli ingest: name a card folder or files");
    return std::nullopt;
}

QCoro::Task<int> runIngest(QStringList args)
{
    Options o;
    if (const auto problem = parse(args, o))
        co_return CliIO::fail(*problem);

    GeocodeClient::Options geoOptions;
    if (!o.nominatim.isEmpty())
        geoOptions.server = QUrl(o.nominatim);
    geoOptions.contact = o.contact;
    GeocodeClient geocoder(geoOptions);

    IngestQueue::Services services;
    services.client = std::make_shared<APIClient>(o.server, o.authHeader);
    services.workRoot = o.work;
    services.process = IngestPipeline::asQueueStep(&geocoder);
    services.geocode = [&o] { return o.geocode; };
    services.keepProcessed = [&o] { return o.keep; };
    IngestQueue queue(services);

    QStringList files;
    for (const QString &source : std::as_const(o.sources)) {
        if (QFileInfo(source).isDir())
            queue.add(CardScanner::scan(source));
        else
            files << source;
    }
    if (!files.isEmpty())
        queue.add(co_await CardScanner::flights(files));
    if (queue.rowCount() == 0)
        co_return CliIO::fail(QStringLiteral("aeroloom-cli ingest: no flights found"));

    // One line per change of phase (progress within a phase is not repeated).
    QHash<QString, QString> shown;
    auto report = [&] {
        for (const auto &item : queue.items()) {
            IngestPhase phase = item.phase;
            if (phase.kind == IngestPhase::Kind::Uploading)
                phase.progress = 0;
            else
                phase.progress.reset();
            const QString line = phase.text();
            if (shown.value(item.id) != line) {
                shown.insert(item.id, line);
                CliIO::out((item.id + QLatin1Char('\t') + line + QLatin1Char('\n')).toUtf8());
            }
        }
    };
    report();
    QObject::connect(&queue, &QAbstractItemModel::dataChanged, &queue, report);
    QObject::connect(&queue, &QAbstractItemModel::rowsRemoved, &queue, report);

    queue.start();
    if (queue.running())
        co_await qCoro(&queue, &IngestQueue::finished);
    if (!queue.lastError().isEmpty())
        CliIO::err(queue.lastError());
    CliIO::err(queue.summary());
    const bool allThere = std::all_of(queue.items().cbegin(), queue.items().cend(), [](const IngestQueue::Item &i) {
        return i.phase.kind == IngestPhase::Kind::Done || i.phase.kind == IngestPhase::Kind::Skipped;
    });
    co_return allThere ? 0 : 1;
}

} // namespace

CliCommand ingestCommand()
{
    return {QStringLiteral("ingest"), QStringLiteral("process flights and upload them to a library"),
            QStringLiteral("usage: aeroloom-cli ingest DIR|FILE... --server URL [--token T | --user U --password P]\n"
                           "                           [--contact ADDRESS | --no-geocode] [--keep] [--nominatim URL]\n"
                           "                           [--work DIR]\n\n"
                           "Runs the import queue headless: finds the flights, processes two at a time and\n"
                           "uploads one at a time, printing each change of phase as \"<id><TAB><phase>\".\n"
                           "Exits 0 only when every flight is in the library (uploaded or already there).\n\n"
                           "  --contact ADDRESS  your e-mail address, which OpenStreetMap asks of whoever looks\n"
                           "                   up places; without it no place names are looked up\n"
                           "  --no-geocode     don't look up place names\n"
                           "  --keep           keep the processed files after upload\n"
                           "  --nominatim URL  the reverse-geocoding server (default: OpenStreetMap's)\n"
                           "  --work DIR       where Pending/ and Inbox/ live (default: the app's data folder)\n"),
            runIngest};
}
