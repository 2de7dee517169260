#include "ClipTelemetry.h"

#include "ExifToolReader.h"
#include "FlightIDs.h"
#include "MediaProbe.h"
#include "ProcessError.h"
#include "SrtReader.h"
#include "TelemetryError.h"
#include "ToolLocator.h"

#include <QFileInfo>

namespace ClipTelemetry {

bool isVideo(const QString &clip)
{
    return FlightIDs::videoExtensions().contains(QFileInfo(clip).suffix().toLower());
}

FlightData noTelemetryRecord(const QString &source, const std::optional<QString> &encoder,
                             std::optional<double> duration, const std::optional<QString> &created)
{
    FlightData data;
    const QString model = encoder ? encoder->trimmed() : QString();
    data.meta.model = model.isEmpty() ? QStringLiteral("DJI") : model;
    data.meta.duration = duration.value_or(0);
    data.meta.source = source;
    data.meta.created = created;
    return data;
}

QCoro::Task<Result<FlightData>> read(QString clip, std::optional<QString> srt, CancelToken *token)
{
    const auto ffprobe = ToolLocator::ffprobe();
    const auto exiftool = ToolLocator::findExifTool();
    if (!ToolLocator::ffmpeg() || !ffprobe || !exiftool)
        co_return ProcessError::failed(QStringLiteral("tools"), -1, QStringLiteral("ffmpeg/ffprobe/exiftool not found"));
    const QString source = QFileInfo(clip).fileName();

    std::optional<Result<FlightData>> telemetry;
    if (srt) {
        const MediaInfo info = co_await MediaProbe::probeFormat(*ffprobe, clip, token);
        telemetry = TelemetryParser::parseSRTFile(*srt, info.encoder, info.duration, source);
    } else {
        const auto json = co_await TelemetryParser::runExifTool(*exiftool, clip, token);
        telemetry = json.ok() ? TelemetryParser::parseExifTool(*json, source) : Result<FlightData>(json.failure());
    }
    if (telemetry->ok() || !TelemetryError::is(telemetry->failure()) || !isVideo(clip))
        co_return std::move(*telemetry);

    // A video from a camera without telemetry is still a flight, with nothing on its track.
    const MediaInfo info = co_await MediaProbe::probeFormat(*ffprobe, clip, token);
    co_return noTelemetryRecord(source, info.encoder, info.duration, info.creationTime);
}

} // namespace ClipTelemetry
