#include "ClipCutter.h"

#include "ClipSidecars.h"
#include "SourceBitrate.h"

#include <ProcessError.h>
#include <ProgressReader.h>
#include <ProcessRunner.h>
#include <ToolLocator.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace ClipCutter {

namespace {

using Kind = CutPlanRow::Status::Kind;

bool wanted(const CutPlanRow &row, bool force)
{
    return row.status.kind == Kind::pending || (force && row.status.kind == Kind::existing);
}

double durationOf(const CutPlanRow &row)
{
    return std::max(0.0, row.item.end.value_or(0) - *row.item.start);
}

} // namespace

QStringList videoCodecArguments(const H264Encoder &encoder, const QString &bitrate)
{
    QStringList args = encoder.codecOptions;
    args << QStringLiteral("-b:v") << bitrate;
    // A hardware encoder takes its frames uploaded to the device rather than as yuv420p.
    if (encoder.filterSuffix.isEmpty())
        args << QStringLiteral("-pix_fmt") << QStringLiteral("yuv420p");
    else
        args << QStringLiteral("-vf") << encoder.filterSuffix.mid(1);
    return args;
}

QStringList arguments(const CutPlanRow &row, bool fast, const QString &bitrate, const H264Encoder &encoder)
{
    QStringList args{QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-y")};
    if (!fast)
        args << encoder.beforeInput;
    args << QStringLiteral("-ss") << QString::asprintf("%.3f", row.item.start.value_or(0)) << QStringLiteral("-i")
         << QFileInfo(row.sourceURL.value_or(QString())).absoluteFilePath() << QStringLiteral("-t")
         << QString::asprintf("%.3f", durationOf(row));
    if (fast) {
        args << QStringLiteral("-c") << QStringLiteral("copy");
    } else {
        args << videoCodecArguments(encoder, bitrate) << QStringLiteral("-c:a") << QStringLiteral("aac")
             << QStringLiteral("-b:a") << QStringLiteral("192k");
    }
    args << QStringLiteral("-movflags") << QStringLiteral("+faststart") << QStringLiteral("-progress")
         << QStringLiteral("pipe:1") << QStringLiteral("-nostats") << QFileInfo(row.outURL).absoluteFilePath();
    return args;
}

QCoro::Task<> cutRows(QList<CutPlanRow> rows, bool fast, bool force, StatusSink setStatus,
                      std::shared_ptr<CancelToken> token, std::shared_ptr<SourceTelemetryCache> telemetry)
{
    const auto ffmpeg = ToolLocator::ffmpeg();
    if (!ffmpeg)
        co_return;
    const auto ffprobe = ToolLocator::ffprobe();
    // A folder that can't be made shows as each row's failure in ffmpeg's words.
    QDir().mkpath(rows.isEmpty() ? QDir::tempPath() : QFileInfo(rows.first().outURL).absolutePath());
    const QString tool = QFileInfo(*ffmpeg).fileName();

    std::optional<H264Encoder> encoder;
    for (int i = 0; i < rows.size(); ++i) {
        if (token->isCancelled())
            co_return;
        const CutPlanRow &row = rows[i];
        if (!wanted(row, force) || !row.sourceURL || !row.item.start)
            continue;
        setStatus(i, CutPlanRow::Status::cutting(0));
        const double duration = durationOf(row);

        QString bitrate;
        if (!fast) {
            if (!encoder)
                encoder = co_await H264Encoder::forMachine(*ffmpeg);
            bitrate = co_await SourceBitrate::measure(ffprobe, *row.sourceURL, token.get());
        }
        if (token->isCancelled()) {
            // Stopped before ffmpeg started: the row is as it was.
            setStatus(i, row.status);
            co_return;
        }
        ClipSidecars::remove(row.outURL);
        // The telemetry is read while ffmpeg works: it costs nothing beside an encode.
        std::optional<QCoro::Task<SourceTelemetry>> reading;
        if (telemetry)
            reading.emplace(SourceTelemetryCache::read(telemetry, *row.sourceURL, token.get()));

        ProcessRunner::LineHandler onLine;
        if (duration > 0)
            onLine = progressReader(duration, [setStatus, i](double p) { setStatus(i, CutPlanRow::Status::cutting(p)); });
        const QStringList args = arguments(row, fast, bitrate, encoder.value_or(H264Encoder()));
        const auto run = co_await ProcessRunner::run(*ffmpeg, args, onLine, token.get());
        std::optional<SourceTelemetry> read;
        if (reading)
            read = co_await std::move(*reading);

        // A stopped ffmpeg may still exit 0 with half a clip written.
        std::optional<Failure> failure;
        if (!run.ok())
            failure = run.failure();
        else if (run->status != 0 || token->isCancelled())
            failure = ProcessError::failed(tool, run->status, run->stdErr);
        if (failure) {
            QFile::remove(row.outURL);
            setStatus(i, CutPlanRow::Status::failed(failure->text));
            continue;
        }
        if (read && !read->isEmpty())
            ClipSidecars::writeClip(*read, *row.item.start, *row.item.start + duration, row.outURL);
        setStatus(i, CutPlanRow::Status::of(Kind::done));
    }
}

} // namespace ClipCutter
