#include "StoryStitcher.h"

#include "SourceBitrate.h"
#include "StitchPlan.h"

#include <H264Encoder.h>
#include <MediaProbe.h>
#include <ProcessError.h>
#include <ProcessRunner.h>
#include <ProgressReader.h>
#include <ToolLocator.h>

#include <QFileInfo>

namespace StoryStitcher {

namespace {

QStringList probeArguments(const QString &entries, const QString &file, bool videoStream)
{
    QStringList args{QStringLiteral("-v"), QStringLiteral("error")};
    if (videoStream)
        args << QStringLiteral("-select_streams") << QStringLiteral("v:0");
    args << QStringLiteral("-show_entries") << entries << QStringLiteral("-of") << QStringLiteral("csv=p=0")
         << QFileInfo(file).absoluteFilePath();
    return args;
}

/// What ffprobe printed, or nothing when it failed.
QCoro::Task<QByteArray> ask(QString ffprobe, QStringList args, CancelToken *token)
{
    const auto result = co_await ProcessRunner::run(ffprobe, args, {}, token);
    if (!result.ok() || result->status != 0)
        co_return QByteArray();
    co_return result->stdOut;
}

QCoro::Task<double> durationOf(QString ffprobe, QString file, CancelToken *token)
{
    const QStringList args = probeArguments(QStringLiteral("format=duration"), file, false);
    const QByteArray output = co_await ask(ffprobe, args, token);
    co_return StitchPlan::duration(output);
}

Failure stitchFailure(const QString &words)
{
    return ProcessError::failed(QStringLiteral("stitch"), -1, words);
}

} // namespace

QCoro::Task<Result<void>> stitchStory(QStringList clips, std::optional<QString> bed, QString output, bool vertical,
                                      double xfade, double fade, std::function<void(double)> progress,
                                      std::shared_ptr<CancelToken> token)
{
    const auto ffmpeg = ToolLocator::ffmpeg();
    const auto ffprobe = ToolLocator::ffprobe();
    if (!ffmpeg || !ffprobe)
        co_return ProcessError::failed(QStringLiteral("ffmpeg"), -1, QStringLiteral("bundled ffmpeg/ffprobe not found"));
    if (clips.isEmpty())
        co_return stitchFailure(QStringLiteral("no clips to stitch"));

    QList<double> durations;
    for (const QString &clip : std::as_const(clips)) {
        const double d = co_await durationOf(*ffprobe, clip, token.get());
        if (d <= 0.05)
            co_return stitchFailure(QFileInfo(clip).fileName() + QStringLiteral(" has no readable duration"));
        durations << d;
    }
    const auto probed = co_await MediaProbe::probeVideo(*ffprobe, clips.first(), token.get());
    const QStringList rateQuery = probeArguments(QStringLiteral("stream=r_frame_rate"), clips.first(), true);
    const QByteArray rate = co_await ask(*ffprobe, rateQuery, token.get());
    const H264Encoder encoder = co_await H264Encoder::forMachine(*ffmpeg);

    StitchPlan::Graph graph;
    graph.clips = static_cast<int>(clips.size());
    graph.size = StitchPlan::outputSize(probed, vertical);
    graph.vertical = vertical;
    graph.rate = StitchPlan::frameRate(rate);
    graph.timing = StitchPlan::timing(durations, xfade, fade);
    graph.fade = fade;
    graph.bed = bed.has_value();
    graph.outputSuffix = encoder.filterSuffix;

    StitchPlan::Command command;
    command.clips = clips;
    command.bed = bed;
    if (bed) {
        // A bed whose length can't be read counts as too short: looped, then trimmed to the story.
        const double bedLength = co_await durationOf(*ffprobe, *bed, token.get());
        command.loopBed = bedLength < graph.timing.total;
    }
    command.graph = StitchPlan::filterGraph(graph);
    command.beforeInputs = encoder.beforeInput;
    const QString bitrate = co_await SourceBitrate::measure(ffprobe, clips.first(), token.get());
    command.videoCodec = encoder.codecOptions;
    command.videoCodec << QStringLiteral("-b:v") << bitrate;
    if (encoder.filterSuffix.isEmpty())
        command.videoCodec << QStringLiteral("-pix_fmt") << QStringLiteral("yuv420p");
    command.output = output;

    if (token && token->isCancelled())
        co_return ProcessError::failed(QFileInfo(*ffmpeg).fileName(), -1, QString());
    const double total = graph.timing.total;
    ProcessRunner::LineHandler onLine;
    if (progress && total > 0)
        onLine = progressReader(total, progress);
    const QStringList args = StitchPlan::arguments(command);
    const auto run = co_await ProcessRunner::run(*ffmpeg, args, onLine, token.get());
    if (!run.ok())
        co_return run.failure();
    if (run->status != 0 || (token && token->isCancelled()))
        co_return ProcessError::failed(QFileInfo(*ffmpeg).fileName(), run->status, run->stdErr);
    co_return Result<void>();
}

} // namespace StoryStitcher
