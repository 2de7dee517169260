// The batch with real ffmpeg on originals made for the purpose: where a cut starts, how long it
// is, what stopping and failing leave behind, and the telemetry beside each clip.
#include "CutTestKit.h"

#include <ClipCutter.h>
#include <ClipSidecars.h>
#include <SrtReader.h>

#include <CoroTest.h>
#include <CutOriginals.h>
#include <DjiTelemetry.h>
#include <ExifToolReader.h>
#include <ToolLocator.h>

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

using namespace CutTestKit;
using Kind = CutPlanRow::Status::Kind;

namespace {

constexpr double frame = 1.0 / 25;

CutPlanRow row(const QString &source, double start, double end, const QString &out)
{
    CutPlanRow r;
    r.item.seq = 1;
    r.item.start = start;
    r.item.end = end;
    r.item.label = QStringLiteral("clip");
    r.sourceURL = source;
    r.outURL = out;
    return r;
}

/// The samples our own reader finds in the sidecar beside `clip`.
std::vector<TelemetrySample> sidecarTrack(const QString &clip)
{
    QFile srt(ClipSidecars::srtPath(clip));
    EXPECT_TRUE(srt.open(QIODevice::ReadOnly)) << clip.toStdString();
    const auto parsed = TelemetryParser::parseSRT(QString::fromUtf8(srt.readAll()), std::nullopt, std::nullopt, "c");
    EXPECT_TRUE(parsed.ok()) << parsed.errorText().toStdString();
    return parsed.ok() ? parsed.value().track : std::vector<TelemetrySample>{};
}

class ClipCutterTest : public ::testing::Test
{
protected:
    /// One 4 s original of 25 frames a second with a key frame every second and sound, with a
    /// sidecar beside it; made once for the suite.
    static void SetUpTestSuite()
    {
        folder = new QTemporaryDir;
        original = folder->filePath(QStringLiteral("DJI_20240102030405_0007_D.MP4"));
        ASSERT_TRUE(Fixtures::makeOriginal(original).ok());
        ASSERT_TRUE(Fixtures::writeFile(folder->filePath(QStringLiteral("DJI_20240102030405_0007_D.SRT")),
                                        Fixtures::srtText(Fixtures::straightPath(100, 0.04)))
                        .ok());
    }
    static void TearDownTestSuite()
    {
        delete folder;
        folder = nullptr;
    }

    /// Runs the batch; each row's statuses as they came.
    QList<QList<CutPlanRow::Status>> cut(const QList<CutPlanRow> &rows, bool fast,
                                         std::function<void(int, const CutPlanRow::Status &)> watch = {})
    {
        QList<QList<CutPlanRow::Status>> seen(rows.size());
        auto sink = [&](int i, const CutPlanRow::Status &s) {
            seen[i].append(s);
            if (watch)
                watch(i, s);
        };
        run(ClipCutter::cutRows(rows, fast, false, sink, token, std::make_shared<SourceTelemetryCache>()));
        return seen;
    }

    static inline QTemporaryDir *folder = nullptr;
    static inline QString original;
    QTemporaryDir out;
    std::shared_ptr<CancelToken> token = std::make_shared<CancelToken>();
};

} // namespace

TEST_F(ClipCutterTest, FrameAccurateStartsOnTheExactFrameAndLastsTheSpan)
{
    const QString clip = out.filePath(QStringLiteral("ridge_01.mp4"));
    const auto seen = cut({row(original, 1.52, 2.72, clip)}, false);
    ASSERT_EQ(seen[0].last().kind, Kind::done) << seen[0].last().words().toStdString();
    EXPECT_EQ(seen[0].first(), CutPlanRow::Status::cutting(0));

    // Re-encoded, so not the same bytes: the first picture must be nearer frame 38 than to 37 or 39.
    const QList<QByteArray> first = greyFrames(clip, 0, 1, {320, 240});
    const QList<QByteArray> around = greyFrames(original, 37, 3, {320, 240});
    ASSERT_EQ(first.size(), 1);
    ASSERT_EQ(around.size(), 3);
    const double atStart = difference(first[0], around[1]);
    EXPECT_LT(atStart, difference(first[0], around[0]));
    EXPECT_LT(atStart, difference(first[0], around[2]));

    EXPECT_NEAR(streamDuration(clip, "v:0").value_or(0), 1.2, frame);
    EXPECT_TRUE(streamDuration(clip, "a:0").has_value());  // the original's sound is kept

    // The sidecar beside the clip holds the samples of its span, timed from the clip's start.
    const auto track = sidecarTrack(clip);
    ASSERT_EQ(track.size(), 30u);
    EXPECT_EQ(track.front().t, 0);
    EXPECT_NEAR(track.back().t, 1.16, 1e-9);
    EXPECT_TRUE(QFile::exists(ClipSidecars::gpxPath(clip)));
}

TEST_F(ClipCutterTest, FastCopiesFromTheKeyFrameAtOrBeforeTheStart)
{
    // A clip with the aircraft's own embedded track, read by exiftool, and no sidecar.
    const QString dji = out.filePath(QStringLiteral("DJI_20240102040000_0008_D.MP4"));
    ASSERT_TRUE(Fixtures::makeDjiClip(dji, Fixtures::straightPath(40, 0.1)).ok());

    const QString clip = out.filePath(QStringLiteral("fast_01.mp4"));
    const QString telemetryClip = out.filePath(QStringLiteral("fast_02.mp4"));
    const auto seen = cut({row(original, 1.5, 2.5, clip), row(dji, 1.0, 2.0, telemetryClip)}, true);
    ASSERT_EQ(seen[0].last().kind, Kind::done) << seen[0].last().words().toStdString();
    ASSERT_EQ(seen[1].last().kind, Kind::done) << seen[1].last().words().toStdString();

    // The copy starts on the original's key frame at 1.0 s; the edit list hides the lead-in.
    const QList<Packet> packets = videoPackets(clip);
    ASSERT_FALSE(packets.isEmpty());
    EXPECT_TRUE(packets.first().key);
    const double copiedFrom = 1.5 + packets.first().pts;
    EXPECT_LE(copiedFrom, 1.5 + frame / 2);
    EXPECT_NEAR(copiedFrom, 1.0, frame);

    const auto track = sidecarTrack(telemetryClip);
    ASSERT_EQ(track.size(), 10u);
    EXPECT_EQ(track.front().t, 0);
}

TEST_F(ClipCutterTest, AStopMidClipLeavesNoPartialFile)
{
    const QString longOriginal = out.filePath(QStringLiteral("DJI_0100.MP4"));
    ASSERT_TRUE(Fixtures::makeOriginal(longOriginal, {20.0, 640, 360, 25, 25, true, std::nullopt, "ultrafast"}).ok());
    const QString clip = out.filePath(QStringLiteral("stopped_01.mp4"));
    const QString next = out.filePath(QStringLiteral("stopped_02.mp4"));
    bool stopped = false;
    const auto seen = cut({row(longOriginal, 0.5, 19.5, clip), row(original, 0, 1, next)}, false,
                          [&](int, const CutPlanRow::Status &s) {
                              if (s.kind == Kind::cutting && s.fraction > 0 && !stopped) {
                                  stopped = true;
                                  EXPECT_TRUE(QFile::exists(clip));  // ffmpeg is writing it
                                  token->cancel();
                              }
                          });
    ASSERT_TRUE(stopped);
    EXPECT_EQ(seen[0].last().kind, Kind::failed);
    EXPECT_FALSE(QFile::exists(clip));
    EXPECT_TRUE(seen[1].isEmpty());  // the batch ended there
    EXPECT_FALSE(QFile::exists(next));
}

TEST_F(ClipCutterTest, AFailingToolSpeaksInTheRowAndTheBatchGoesOn)
{
    const QString broken = out.filePath(QStringLiteral("DJI_0101.MP4"));
    ASSERT_TRUE(Fixtures::writeFile(broken, QByteArray(4096, 'x')).ok());
    const QString bad = out.filePath(QStringLiteral("bad_01.mp4"));
    const QString good = out.filePath(QStringLiteral("bad_02.mp4"));
    CutPlanRow skipped = row(original, 0, 1, out.filePath(QStringLiteral("bad_03.mp4")));
    skipped.status = CutPlanRow::Status::of(Kind::missingSource);

    const auto seen = cut({row(broken, 0, 1, bad), row(original, 0, 0.5, good), skipped}, true);
    const QString words = seen[0].last().words();
    EXPECT_TRUE(words.startsWith(QStringLiteral("ffmpeg exited 1:\n"))) << words.toStdString();
    EXPECT_TRUE(words.contains(QStringLiteral("Invalid data found when processing input"))) << words.toStdString();
    EXPECT_FALSE(QFile::exists(bad));
    EXPECT_EQ(seen[1].last().kind, Kind::done);
    EXPECT_TRUE(seen[2].isEmpty());
}
