// How much the cutting code adds to the tools it drives, measured in one run:
//  1. the batch (ClipCutter::cutRows, frame-accurate, sidecars included) against the same
//     ffprobe and ffmpeg commands run one after the other with nothing around them;
//  2. the story stitch (StoryStitcher::stitchStory) against its same probes and ffmpeg run bare;
//  3. frame-accurate against fast mode on one long 4K segment.
// Rounds alternate the two sides, so a machine that slows down hurts both alike.
//   bench_cutting [--clips N] [--seconds S] [--size WxH] [--rounds R] [--uhd-seconds S | --no-uhd]
// On a busy machine, time the sides as whole processes instead, alternately, with any timer that
// reports CPU time (e.g. /usr/bin/time -v) over the same prepared folder:
//   bench_cutting --prepare DIR [--clips N] [--seconds S] [--size WxH]
//   bench_cutting --run ours-batch|bare-batch|ours-stitch|bare-stitch DIR
// Run by hand, never by `make test`.
#include <ClipCutter.h>
#include <CutPlanRow.h>
#include <H264Encoder.h>
#include <MediaProbe.h>
#include <ProcessRunner.h>
#include <SourceBitrate.h>
#include <StitchPlan.h>
#include <StoryStitcher.h>
#include <ToolLocator.h>

#include <CutOriginals.h>
#include <Fixtures.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <QCoroTask>

#include <algorithm>
#include <cstdio>
#include <functional>

namespace {

struct Settings {
    int clips = 4;
    double seconds = 8;
    int width = 1920;
    int height = 1080;
    int rounds = 3;
    double uhdSeconds = 60;
};

QByteArray tool(const QString &program, const QStringList &args)
{
    const auto result = ProcessRunner::runBlocking(program, args);
    if (!result.ok() || result->status != 0) {
        std::fprintf(stderr, "%s failed: %s\n", qPrintable(program), result.ok() ? qPrintable(result->stdErr) : "not started");
        std::exit(1);
    }
    return result->stdOut;
}

double seconds(const std::function<void()> &work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e9;
}

double median(QList<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void report(const char *what, const QList<double> &ours, const QList<double> &bare, const char *goal)
{
    QList<double> ratios;
    for (qsizetype i = 0; i < ours.size(); ++i)
        ratios << ours[i] / bare[i];
    std::printf("%-34s ours %7.2f s   bare %7.2f s   ratio %.3f (min %.3f, max %.3f)   %s\n", what, median(ours),
                median(bare), median(ratios), *std::min_element(ratios.begin(), ratios.end()),
                *std::max_element(ratios.begin(), ratios.end()), goal);
}

QString ffmpeg()
{
    return ToolLocator::ffmpeg().value_or(QStringLiteral("ffmpeg"));
}
QString ffprobe()
{
    return ToolLocator::ffprobe().value_or(QStringLiteral("ffprobe"));
}

/// The batch's own commands for `rows`, one after the other.
void bareBatch(const QList<CutPlanRow> &rows, const H264Encoder &encoder)
{
    for (const CutPlanRow &row : rows) {
        const QString bitrate = SourceBitrate::fromOutput(tool(ffprobe(), SourceBitrate::arguments(*row.sourceURL)));
        tool(ffmpeg(), ClipCutter::arguments(row, false, bitrate, encoder));
    }
}

/// The stitcher's own probes and ffmpeg command for `clips` and `bed`.
void bareStitch(const QStringList &clips, const QString &bed, const QString &output, const H264Encoder &encoder)
{
    const auto probe = [](const QString &entries, const QString &file, bool video) {
        QStringList args{"-v", "error"};
        if (video)
            args << "-select_streams" << "v:0";
        args << "-show_entries" << entries << "-of" << "csv=p=0" << file;
        return tool(ffprobe(), args);
    };
    QList<double> durations;
    for (const QString &clip : clips)
        durations << StitchPlan::duration(probe("format=duration", clip, false));
    StitchPlan::Graph graph;
    graph.clips = int(clips.size());
    graph.size = StitchPlan::outputSize(MediaProbe::readVideo(tool(ffprobe(), MediaProbe::videoArguments(clips.first()))), false);
    graph.rate = StitchPlan::frameRate(probe("stream=r_frame_rate", clips.first(), true));
    graph.timing = StitchPlan::timing(durations, 0.5, 0.75);
    graph.fade = 0.75;
    graph.bed = true;
    StitchPlan::Command command;
    command.clips = clips;
    command.bed = bed;
    command.loopBed = StitchPlan::duration(probe("format=duration", bed, false)) < graph.timing.total;
    command.graph = StitchPlan::filterGraph(graph);
    command.videoCodec = ClipCutter::videoCodecArguments(
        encoder, SourceBitrate::fromOutput(tool(ffprobe(), SourceBitrate::arguments(clips.first()))));
    command.output = output;
    QStringList args = StitchPlan::arguments(command);
    tool(ffmpeg(), args);
}

QList<CutPlanRow> plan(const QStringList &originals, double start, double length, const QString &folder)
{
    QList<CutPlanRow> rows;
    for (qsizetype i = 0; i < originals.size(); ++i) {
        CutPlanRow row;
        row.item.seq = int(i + 1);
        row.item.start = start;
        row.item.end = start + length;
        row.sourceURL = originals[i];
        row.outURL = QDir(folder).filePath(QStringLiteral("bench_%1.mp4").arg(i + 1, 2, 10, QLatin1Char('0')));
        rows << row;
    }
    return rows;
}

void ours(const QList<CutPlanRow> &rows, bool fast)
{
    QCoro::waitFor(ClipCutter::cutRows(rows, fast, true, [](int, const CutPlanRow::Status &) {},
                                       std::make_shared<CancelToken>(), std::make_shared<SourceTelemetryCache>()));
}

QStringList prepareOriginals(const QString &folder, const Settings &s)
{
    QStringList originals;
    for (int i = 0; i < s.clips; ++i) {
        const QString path = QDir(folder).filePath(
            QStringLiteral("DJI_2024010203%1_%2_D.MP4").arg(1000 + i).arg(i, 4, 10, QLatin1Char('0')));
        if (!QFileInfo::exists(path)) {
            if (!Fixtures::makeOriginal(path, {s.seconds + 2, s.width, s.height, 30, 30, true, std::nullopt, "ultrafast"}).ok())
                std::exit(1);
            const int cues = int((s.seconds + 2) * 30);
            (void)Fixtures::writeFile(QFileInfo(path).path() + '/' + QFileInfo(path).completeBaseName() + ".SRT",
                                      Fixtures::srtText(Fixtures::straightPath(cues, 1.0 / 30)));
        }
        originals << path;
    }
    return originals;
}

void oursStitch(const QStringList &clips, const QString &bed, const QString &output)
{
    const auto made = QCoro::waitFor(
        StoryStitcher::stitchStory(clips, bed, output, false, 0.5, 0.75, [](double) {}, std::make_shared<CancelToken>()));
    if (!made.ok())
        std::fprintf(stderr, "stitch failed: %s\n", qPrintable(made.errorText()));
}

/// One side of one comparison over a folder made by --prepare, for timing as a whole process.
int runOne(const QString &what, const QString &folder)
{
    QStringList originals;
    for (const QFileInfo &file : QDir(folder).entryInfoList({"DJI_*.MP4"}, QDir::Files, QDir::Name))
        originals << file.absoluteFilePath();
    const H264Encoder encoder = QCoro::waitFor(H264Encoder::forMachine(ffmpeg()));
    QFile lengthFile(QDir(folder).filePath("seconds.txt"));
    if (!lengthFile.open(QIODevice::ReadOnly))
        return 2;
    const double length = lengthFile.readAll().trimmed().toDouble();
    const auto rows = plan(originals, 1.0, length, QDir(folder).filePath(what));
    QDir().mkpath(QDir(folder).filePath(what));
    QStringList clips;
    for (const auto &row : plan(originals, 1.0, length, QDir(folder).filePath("clips")))
        clips << row.outURL;
    const QString bed = QDir(folder).filePath("bed.m4a");
    if (what == "ours-batch")
        ours(rows, false);
    else if (what == "bare-batch")
        bareBatch(rows, encoder);
    else if (what == "ours-stitch")
        oursStitch(clips, bed, QDir(folder).filePath("ours_story.mp4"));
    else if (what == "bare-stitch")
        bareStitch(clips, bed, QDir(folder).filePath("bare_story.mp4"), encoder);
    else
        return 2;
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    Settings s;
    bool uhd = true;
    QString prepare, run, runFolder;
    const QStringList args = app.arguments();
    for (qsizetype i = 1; i < args.size(); ++i) {
        const QString next = i + 1 < args.size() ? args[i + 1] : QString();
        if (args[i] == "--clips") s.clips = next.toInt(), ++i;
        else if (args[i] == "--seconds") s.seconds = next.toDouble(), ++i;
        else if (args[i] == "--rounds") s.rounds = next.toInt(), ++i;
        else if (args[i] == "--uhd-seconds") s.uhdSeconds = next.toDouble(), ++i;
        else if (args[i] == "--no-uhd") uhd = false;
        else if (args[i] == "--size") s.width = next.section('x', 0, 0).toInt(), s.height = next.section('x', 1, 1).toInt(), ++i;
        else if (args[i] == "--prepare") prepare = next, ++i;
        else if (args[i] == "--run" && i + 2 < args.size()) run = next, runFolder = args[i + 2], i += 2;
    }
    if (!run.isEmpty())
        return runOne(run, runFolder);
    if (!prepare.isEmpty()) {
        // The originals, the clips a stitch joins (cut once, here) and the bed.
        QDir().mkpath(prepare);
        const auto rows = plan(prepareOriginals(prepare, s), 1.0, s.seconds, QDir(prepare).filePath("clips"));
        ours(rows, false);
        (void)Fixtures::makeBed(QDir(prepare).filePath("bed.m4a"), 20);
        (void)Fixtures::writeFile(QDir(prepare).filePath("seconds.txt"), QByteArray::number(s.seconds));
        return 0;
    }

    QTemporaryDir dir;
    const H264Encoder encoder = QCoro::waitFor(H264Encoder::forMachine(ffmpeg()));
    std::printf("encoder %s; %d clips of %.0f s from %dx%d originals; %d rounds\n", qPrintable(encoder.name), s.clips,
                s.seconds, s.width, s.height, s.rounds);
    const QStringList originals = prepareOriginals(dir.path(), s);

    QList<double> batchOurs, batchBare, stitchOurs, stitchBare;
    const QString bed = dir.filePath("bed.m4a");
    (void)Fixtures::makeBed(bed, 20);
    for (int round = 0; round < s.rounds; ++round) {
        const auto oursRows = plan(originals, 1.0, s.seconds, dir.filePath("ours"));
        const auto bareRows = plan(originals, 1.0, s.seconds, dir.filePath("bare"));
        QDir().mkpath(dir.filePath("bare"));
        batchOurs << seconds([&] { ours(oursRows, false); });
        batchBare << seconds([&] { bareBatch(bareRows, encoder); });

        QStringList clips;
        for (const auto &row : oursRows)
            clips << row.outURL;
        stitchOurs << seconds([&] { oursStitch(clips, bed, dir.filePath("ours_story.mp4")); });
        stitchBare << seconds([&] { bareStitch(clips, bed, dir.filePath("bare_story.mp4"), encoder); });
    }
    report("batch, frame-accurate", batchOurs, batchBare, "(goal <= 1.05)");
    report("story stitch with a bed", stitchOurs, stitchBare, "(goal <= 1.05)");

    if (uhd) {
        const QString source = dir.filePath("DJI_20240102040000_0100_D.MP4");
        if (!Fixtures::makeOriginal(source, {s.uhdSeconds + 2, 3840, 2160, 25, 25, true, std::nullopt, "ultrafast"}).ok())
            return 1;
        const auto accurateRows = plan({source}, 1.0, s.uhdSeconds, dir.filePath("uhd-accurate"));
        const auto fastRows = plan({source}, 1.0, s.uhdSeconds, dir.filePath("uhd-fast"));
        const double accurate = seconds([&] { ours(accurateRows, false); });
        const double fast = seconds([&] { ours(fastRows, true); });
        std::printf("%-34s frame-accurate %7.2f s   fast %7.2f s   ratio %.1f\n",
                    qPrintable(QStringLiteral("%1 s of 4K, one clip").arg(s.uhdSeconds)), accurate, fast, accurate / fast);
    }
    return 0;
}
