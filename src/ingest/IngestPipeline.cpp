#include "IngestPipeline.h"

#include "FlightFile.h"
#include "GeocodeClient.h"
#include "H264Encoder.h"
#include "MediaProbe.h"
#include "ProcessError.h"
#include "ProcessRunner.h"
#include "ProgressReader.h"
#include "TelemetryError.h"
#include "TelemetryParser.h"
#include "ToolLocator.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>

namespace IngestPipeline {

namespace {

struct Tools {
    QString ffmpeg;
    QString ffprobe;
    ToolLocator::ExifTool exiftool;
};

std::optional<Tools> findTools()
{
    const auto ffmpeg = ToolLocator::ffmpeg();
    const auto ffprobe = ToolLocator::ffprobe();
    const auto exiftool = ToolLocator::findExifTool();
    if (!ffmpeg || !ffprobe || !exiftool)
        return std::nullopt;
    return Tools{*ffmpeg, *ffprobe, *exiftool};
}

bool isVideo(const QString &path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    return suffix == QLatin1String("mp4") || suffix == QLatin1String("mov");
}

/// The sidecar as text; a file that is not UTF-8 is a read error, not a telemetry one.
Result<QString> readSidecar(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Failure{QStringLiteral("file"), 1, QStringLiteral("The file “%1” couldn’t be opened.").arg(QFileInfo(path).fileName())};
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = utf8.decode(file.readAll());
    if (utf8.hasError())
        return Failure{QStringLiteral("file"), 2,
                       QStringLiteral("The file “%1” couldn’t be opened because the text encoding of its contents can’t be determined.")
                           .arg(QFileInfo(path).fileName())};
    return text;
}

QCoro::Task<Result<FlightData>> readTelemetry(const Tools &tools, const Input &in, CancelToken *cancel)
{
    const QString fileName = QFileInfo(in.source).fileName();
    if (in.srt) {
        const auto text = readSidecar(*in.srt);
        if (!text)
            co_return text.failure();
        const MediaInfo info = co_await MediaProbe::probeFormat(tools.ffprobe, in.source);
        co_return TelemetryParser::parseSRT(*text, info.encoder, info.duration, fileName);
    }
    const auto json = co_await TelemetryParser::runExifTool(tools.exiftool, in.source, cancel);
    if (!json)
        co_return json.failure();
    co_return TelemetryParser::parseExifTool(*json, fileName);
}

QCoro::Task<FlightData> noTelemetryRecord(const Tools &tools, const QString &source)
{
    const MediaInfo info = co_await MediaProbe::probeFormat(tools.ffprobe, source);
    FlightData data;
    const QString model = info.encoder.value_or(QString()).trimmed();
    data.meta.model = model.isEmpty() ? QStringLiteral("DJI") : model;
    data.meta.duration = info.duration.value_or(0);
    data.meta.source = QFileInfo(source).fileName();
    data.meta.created = info.creationTime;
    co_return data;
}

QCoro::Task<Result<void>> makeProxy(const Tools &tools, const Input &in, double duration, CancelToken *cancel)
{
    const QString proxy = QDir(in.dir).filePath(QStringLiteral("proxy.mp4"));
    QStringList args = {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-y")};
    if (isVideo(in.source)) {
        // Full-resolution video is too heavy to stream: short side 720, 4 Mbit/s, no audio.
        const H264Encoder encoder = co_await H264Encoder::forMachine(tools.ffmpeg);
        args << encoder.beforeInput
             << QStringList{QStringLiteral("-i"), in.source, QStringLiteral("-map"), QStringLiteral("0:v:0"), QStringLiteral("-vf"),
                            encoder.filter(QStringLiteral("scale=if(gt(iw\\,ih)\\,-2\\,720):if(gt(iw\\,ih)\\,720\\,-2)"))}
             << encoder.codecOptions
             << QStringList{QStringLiteral("-b:v"), QStringLiteral("4M"), QStringLiteral("-an"), QStringLiteral("-movflags"),
                            QStringLiteral("+faststart")};
    } else {
        // The low-resolution file is already light: copied as it stands.
        args << QStringList{QStringLiteral("-i"), in.source,        QStringLiteral("-map"), QStringLiteral("0:0"),
                            QStringLiteral("-c:v"), QStringLiteral("copy"), QStringLiteral("-an"), QStringLiteral("-movflags"),
                            QStringLiteral("+faststart")};
    }
    ProcessRunner::LineHandler onLine;
    if (in.onProgress && duration > 0) {
        args << QStringLiteral("-progress") << QStringLiteral("pipe:1") << QStringLiteral("-nostats");
        onLine = ProgressReader::lineHandler(duration, in.onProgress);
    }
    args << proxy;
    const auto result = co_await ProcessRunner::run(tools.ffmpeg, args, onLine, cancel);
    if (!result)
        co_return stepError(Step::Proxy, result.failure());
    if (result->status != 0)
        co_return stepError(Step::Proxy, ProcessError::failed(QFileInfo(tools.ffmpeg).fileName(), result->status, result->stdErr));
    co_return Result<void>();
}

QCoro::Task<void> makeThumbnail(const Tools &tools, const QString &dir, CancelToken *cancel)
{
    // A proxy shorter than two seconds gives no still, and the flight simply has no thumbnail.
    const QStringList args = {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-y"), QStringLiteral("-ss"),
                              QStringLiteral("2.0"), QStringLiteral("-i"), QDir(dir).filePath(QStringLiteral("proxy.mp4")),
                              QStringLiteral("-frames:v"), QStringLiteral("1"), QStringLiteral("-vf"), QStringLiteral("scale=480:-1"),
                              QDir(dir).filePath(QStringLiteral("thumb.jpg"))};
    (void)co_await ProcessRunner::run(tools.ffmpeg, args, {}, cancel);
}

} // namespace

QString stepName(Step step)
{
    switch (step) {
    case Step::Telemetry: return QStringLiteral("telemetry");
    case Step::Proxy: return QStringLiteral("proxy");
    case Step::Probe: return QStringLiteral("probe");
    case Step::Geocode: return QStringLiteral("geocode");
    case Step::Thumbnail: return QStringLiteral("thumbnail");
    case Step::Write: return QStringLiteral("write");
    }
    return {};
}

Failure stepError(Step step, const Failure &underlying)
{
    return {errorDomain, int(step), stepName(step) + QStringLiteral(": ") + underlying.text};
}

QCoro::Task<Result<Output>> run(Input in, CancelToken *cancel)
{
    const auto tools = findTools();
    if (!tools)
        co_return stepError(Step::Telemetry, ProcessError::failed(QStringLiteral("tools"), -1,
                                                                  QStringLiteral("ffmpeg/ffprobe/exiftool not found")));
    const bool video = isVideo(in.source);
    if (!QDir().mkpath(in.dir))
        co_return Failure{QStringLiteral("file"), 3, QStringLiteral("Couldn’t create the folder “%1”.").arg(in.dir)};

    auto telemetry = co_await readTelemetry(*tools, in, cancel);
    FlightData data;
    if (telemetry) {
        data = std::move(telemetry).value();
    } else if (video && telemetry.failure().domain == TelemetryError::domain) {
        data = co_await noTelemetryRecord(*tools, in.source);  // a plain video: a flight without a path
    } else {
        co_return stepError(Step::Telemetry, telemetry.failure());
    }

    const auto proxy = co_await makeProxy(*tools, in, data.meta.duration, cancel);
    if (!proxy)
        co_return proxy.failure();

    if (const auto size = co_await MediaProbe::probeVideo(tools->ffprobe, QDir(in.dir).filePath(QStringLiteral("proxy.mp4"))))
        data.meta.video = FlightVideo{size->w, size->h, size->vertical};

    if (in.geocoder && !data.track.empty())
        data.meta.place = co_await in.geocoder->placeName(data.track.front().lat, data.track.front().lon);

    if (const auto written = FlightFile::write(data, in.dir); !written)
        co_return stepError(Step::Write, written.failure());

    co_await makeThumbnail(*tools, in.dir, cancel);
    co_return Output{in.dir, std::move(data)};
}

} // namespace IngestPipeline
