#include "CliCommand.h"

#include <MediaProbe.h>
#include <ToolLocator.h>

#include <QFileInfo>

#include <nlohmann/json.hpp>

namespace {

template <typename T>
nlohmann::ordered_json orNull(const std::optional<T> &value)
{
    return value ? nlohmann::ordered_json(*value) : nlohmann::ordered_json(nullptr);
}

nlohmann::ordered_json orNull(const std::optional<QString> &value)
{
    return value ? nlohmann::ordered_json(value->toStdString()) : nlohmann::ordered_json(nullptr);
}

QCoro::Task<int> runProbe(QStringList args)
{
    if (args.size() != 1)
        co_return CliIO::fail(QStringLiteral("aeroloom-cli probe: name exactly one file"));
    const QString file = args.first();
    if (!QFileInfo(file).isFile())
        co_return CliIO::fail(QStringLiteral("%1: no such file").arg(file));
    const auto ffprobe = ToolLocator::ffprobe();
    if (!ffprobe)
        co_return CliIO::fail(QStringLiteral("ffprobe not found"));
    const MediaInfo info = co_await MediaProbe::probeFormat(*ffprobe, file);
    const auto video = co_await MediaProbe::probeVideo(*ffprobe, file);

    nlohmann::ordered_json out;
    out["format"] = {{"encoder", orNull(info.encoder)},
                     {"duration", orNull(info.duration)},
                     {"creationTime", orNull(info.creationTime)}};
    out["video"] = video ? nlohmann::ordered_json{{"w", video->w}, {"h", video->h}, {"vertical", video->vertical}}
                         : nlohmann::ordered_json(nullptr);
    CliIO::out(QByteArray::fromStdString(out.dump() + "\n"));
    co_return 0;
}

} // namespace

CliCommand probeCommand()
{
    return {QStringLiteral("probe"), QStringLiteral("format and video facts of a file, as JSON"),
            QStringLiteral("usage: aeroloom-cli probe FILE\n\n"
                           "Prints what ffprobe tells of the file as one JSON object:\n"
                           "  {\"format\":{\"encoder\",\"duration\",\"creationTime\"},\"video\":{\"w\",\"h\",\"vertical\"}}\n"
                           "Unknown values are null; \"video\" is null for a file without a video stream.\n"),
            runProbe};
}
