#include "CliCommand.h"

#include <CardScanner.h>

#include <QFileInfo>

#include <nlohmann/json.hpp>

namespace {

nlohmann::ordered_json toJson(const FoundFlight &f)
{
    nlohmann::ordered_json j;
    j["id"] = f.id.toStdString();
    j["url"] = f.url.toStdString();
    j["date"] = f.date ? nlohmann::ordered_json(f.date->toString(Qt::ISODate).toStdString()) : nlohmann::ordered_json();
    j["srt"] = f.srt ? nlohmann::ordered_json(f.srt->toStdString()) : nlohmann::ordered_json();
    return j;
}

QCoro::Task<int> runScan(QStringList args)
{
    if (args.isEmpty())
        co_return CliIO::fail(QStringLiteral("aeroloom-cli scan: name a folder, or files"));
    QList<FoundFlight> found;
    QStringList files;
    for (const QString &arg : std::as_const(args)) {
        if (QFileInfo(arg).isDir())
            found += CardScanner::scan(arg);
        else if (QFileInfo::exists(arg))
            files << arg;
        else
            co_return CliIO::fail(QStringLiteral("aeroloom-cli scan: “%1” doesn’t exist").arg(arg));
    }
    if (!files.isEmpty())
        found += co_await CardScanner::flights(files);
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const FoundFlight &f : std::as_const(found))
        list.push_back(toJson(f));
    CliIO::out(QByteArray::fromStdString(list.dump(2)) + '\n');
    co_return 0;
}

} // namespace

CliCommand scanCommand()
{
    return {QStringLiteral("scan"), QStringLiteral("the flights on a card or in a folder, as JSON"),
            QStringLiteral("usage: aeroloom-cli scan DIR|FILE...\n\n"
                           "Prints the flights found as a JSON array of {id, url, date, srt}, as the import\n"
                           "window finds them: a folder is walked (a .LRF wins over the .MP4 of the same\n"
                           "name, sidecars are attached); loose files are classified in the given order,\n"
                           "and a video whose name carries no date is known by its content.\n"),
            runScan};
}
