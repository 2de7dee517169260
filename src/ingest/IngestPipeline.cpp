#include "IngestPipeline.h"

#include "FlightFile.h"
#include "GeocodeClient.h"
#include "H264Encoder.h"
#include "IngestCommands.h"
#include "MediaProbe.h"
#include "ProcessError.h"
#include "ProcessRunner.h"
#include "ProgressReader.h"
#include "ClipTelemetry.h"
#include "ToolLocator.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPointer>

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

QCoro::Task<Result<void>> makeProxy(const Tools &tools, const Input &in, double duration, CancelToken *cancel)
{
    const bool video = ClipTelemetry::isVideo(in.source);
    H264Encoder encoder = H264Encoder::software();  // unused by the stream copy
    if (video)
        encoder = co_await H264Encoder::forMachine(tools.ffmpeg);
    const bool progress = in.onProgress && duration > 0;
    const QStringList args = IngestCommands::proxy(in.source, video, encoder, progress,
                                                   QDir(in.dir).filePath(QStringLiteral("proxy.mp4")));
    ProcessRunner::LineHandler onLine;
    if (progress)
        onLine = progressReader(duration, in.onProgress);
    const auto result = co_await ProcessRunner::run(tools.ffmpeg, args, onLine, cancel);
    if (!result)
        co_return stepError(Step::Proxy, result.failure());
    if (result->status != 0)
        co_return stepError(Step::Proxy, ProcessError::failed(QFileInfo(tools.ffmpeg).fileName(), result->status, result->stdErr));
    co_return Result<void>();
}

QCoro::Task<void> makeThumbnail(const Tools &tools, const QString &dir, CancelToken *cancel)
{
    const QDir folder(dir);
    const QStringList args = IngestCommands::thumbnail(folder.filePath(QStringLiteral("proxy.mp4")),
                                                       folder.filePath(QStringLiteral("thumb.jpg")));
    (void)co_await ProcessRunner::run(tools.ffmpeg, args, {}, cancel);
}

bool isCancelled(const CancelToken *cancel)
{
    return cancel && cancel->isCancelled();
}

Failure stopped()
{
    return {ProcessError::domain, -15, QStringLiteral("stopped")};
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
    if (!QDir().mkpath(in.dir))
        co_return Failure{QStringLiteral("file"), 3, QStringLiteral("Couldn’t create the folder “%1”.").arg(in.dir)};

    // The runner starts a child even for a token cancelled already, so each step asks first.
    if (isCancelled(cancel))
        co_return stepError(Step::Telemetry, stopped());
    H264Encoder::prepare(tools->ffmpeg);
    // A plain video without telemetry comes back as a flight without a path; only a
    // low-resolution file without it, or a sidecar that can't be read, fails here.
    auto telemetry = co_await ClipTelemetry::read(in.source, in.srt, cancel);
    if (!telemetry)
        co_return stepError(Step::Telemetry, telemetry.failure());
    FlightData data = std::move(telemetry).value();

    if (isCancelled(cancel))
        co_return stepError(Step::Proxy, stopped());
    const auto proxy = co_await makeProxy(*tools, in, data.meta.duration, cancel);
    if (!proxy)
        co_return proxy.failure();

    data.meta.video = co_await MediaProbe::probeVideo(tools->ffprobe, QDir(in.dir).filePath(QStringLiteral("proxy.mp4")));

    if (in.geocoder && !data.track.empty())
        data.meta.place = co_await in.geocoder->placeName(data.track.front().lat, data.track.front().lon);

    if (const auto written = FlightFile::write(data, in.dir); !written)
        co_return stepError(Step::Write, written.failure());

    co_await makeThumbnail(*tools, in.dir, cancel);
    co_return Output{in.dir, std::move(data)};
}

IngestQueue::Process asQueueStep(GeocodeClient *geocoder)
{
    QPointer<GeocodeClient> geo(geocoder);
    return [geo](QString source, std::optional<QString> srt, QString dir, bool geocode,
                 std::function<void(double)> onProgress, CancelToken *cancel) -> QCoro::Task<Result<void>> {
        Input in{std::move(source), std::move(srt), std::move(dir), geocode ? geo.data() : nullptr, std::move(onProgress)};
        const auto result = co_await run(std::move(in), cancel);
        if (!result)
            co_return result.failure();
        co_return Result<void>();
    };
}

} // namespace IngestPipeline
