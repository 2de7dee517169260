// The telemetry that travels with a cut clip: the original's sidecar re-timed to the clip, and
// the GPX track of the same span. Our own reader must find exactly the span's samples in it.
#include <ClipSidecars.h>
#include <GpxWriter.h>
#include <SrtReader.h>
#include <SrtRetimer.h>

#include <Fixtures.h>
#include <TestPaths.h>

#include <gtest/gtest.h>

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

namespace {

std::vector<TelemetrySample> samplesOf(const QString &srt)
{
    auto parsed = TelemetryParser::parseSRT(srt, std::nullopt, std::nullopt, QStringLiteral("clip.MP4"));
    EXPECT_TRUE(parsed.ok()) << parsed.errorText().toStdString();
    return parsed.ok() ? parsed.value().track : std::vector<TelemetrySample>{};
}

/// Position, altitudes and exposure must survive; speeds and headings are derived anew by the
/// reader from the neighbours it sees, which differ at a span's ends.
void expectSameFixes(const std::vector<TelemetrySample> &got, const std::vector<TelemetrySample> &want)
{
    ASSERT_EQ(got.size(), want.size());
    for (std::size_t i = 0; i < got.size(); ++i) {
        EXPECT_NEAR(got[i].t, want[i].t, 1e-9) << i;
        EXPECT_EQ(got[i].lat, want[i].lat) << i;
        EXPECT_EQ(got[i].lon, want[i].lon) << i;
        EXPECT_EQ(got[i].relAlt, want[i].relAlt) << i;
        EXPECT_EQ(got[i].absAlt, want[i].absAlt) << i;
        EXPECT_EQ(got[i].iso, want[i].iso) << i;
        EXPECT_EQ(got[i].shutter, want[i].shutter) << i;
        EXPECT_EQ(got[i].fnum, want[i].fnum) << i;
    }
}

SourceTelemetry fromSidecar(const QString &text)
{
    SourceTelemetry t;
    t.sidecarText = text;
    t.samples = samplesOf(text);
    return t;
}

} // namespace

TEST(TelemetrySidecar, ARetimedSidecarReadsAsTheSamplesOfItsSpan)
{
    const QString original = QString::fromUtf8(Fixtures::srtText(Fixtures::straightPath(60, 0.1)));
    const SourceTelemetry source = fromSidecar(original);
    ASSERT_EQ(source.samples.size(), 60u);

    const QString clip = SrtRetimer::retime(original, 1.5, 3.0);
    EXPECT_TRUE(clip.startsWith(QStringLiteral("1\n00:00:00,000 --> 00:00:00,100\n<font size=\"28\">FrameCnt: 16,")))
        << clip.left(120).toStdString();
    // The last cue ends where the clip does, never after it.
    EXPECT_TRUE(clip.contains(QStringLiteral("15\n00:00:01,400 --> 00:00:01,500\n")));
    expectSameFixes(samplesOf(clip), source.span(1.5, 3.0));
    EXPECT_EQ(source.span(1.5, 3.0).size(), 15u);

    // An embedded track has no sidecar: the cues are written from the samples themselves.
    const auto span = source.span(1.5, 3.0);
    expectSameFixes(samplesOf(SrtRetimer::fromSamples(span, 1.5)), span);
}

TEST(TelemetrySidecar, TheAircraftsOwnWordsAndLineEndsAreKept)
{
    QFile file(TestPaths::realData(QStringLiteral("python_DJI_SRT_parser/DJI_0023.SRT")));
    if (!file.open(QIODevice::ReadOnly))
        GTEST_SKIP() << "no real sidecars beside this checkout";
    const QString original = QString::fromUtf8(file.readAll());
    const QString clip = SrtRetimer::retime(original, 10.0, 12.0);

    // Each kept cue's text is the original's, to the byte: the frame counter and the clock
    // included, so the clip still says when and where it was filmed.
    const QRegularExpression cue(QStringLiteral("\\d+\\n(\\d\\d:\\d\\d:\\d\\d,\\d{3}) --> [^\\n]*\\n((?:.+\\n)+)"));
    int kept = 0;
    for (auto it = cue.globalMatch(clip); it.hasNext(); ++kept) {
        const auto m = it.next();
        EXPECT_TRUE(original.contains(m.captured(2))) << m.captured(2).toStdString();
        if (kept == 0) {
            EXPECT_EQ(m.captured(1), QStringLiteral("00:00:00,000"));
        }
    }
    EXPECT_GE(kept, 59);
    EXPECT_LE(kept, 61);
    expectSameFixes(samplesOf(clip), fromSidecar(original).span(10.0, 12.0));

    QString crlf = original;
    crlf.replace(QStringLiteral("\n"), QStringLiteral("\r\n"));
    const QString crlfClip = SrtRetimer::retime(crlf, 10.0, 12.0);
    EXPECT_EQ(crlfClip, QString(clip).replace(QStringLiteral("\n"), QStringLiteral("\r\n")));
}

TEST(TelemetrySidecar, FilesBesideTheClipCarryTheSpanAndItsClock)
{
    QTemporaryDir dir;
    SourceTelemetry source = fromSidecar(QString::fromUtf8(Fixtures::srtText(Fixtures::straightPath(30, 0.1))));
    source.started = QDateTime(QDate(2024, 1, 2), QTime(3, 4, 5), Qt::UTC);
    const QString video = dir.filePath(QStringLiteral("ridge_01.mp4"));
    ASSERT_TRUE(ClipSidecars::writeClip(source, 1.0, 2.0, video));

    QFile gpx(dir.filePath(QStringLiteral("ridge_01.gpx")));
    ASSERT_TRUE(gpx.open(QIODevice::ReadOnly));
    const QString track = QString::fromUtf8(gpx.readAll());
    EXPECT_EQ(track.count(QStringLiteral("<trkpt ")), 10);
    // The first point is the original's at 1.0 s: its altitude, and its time on the clock.
    EXPECT_TRUE(track.contains(QStringLiteral("<trkpt lat=\"47.0000000\" lon=\"%1\"><ele>400.50</ele>"
                                              "<time>2024-01-02T03:04:06.000Z</time></trkpt>")
                                   .arg(QString::number(source.samples[10].lon, 'f', 7))))
        << track.toStdString();
    EXPECT_TRUE(QFile::exists(dir.filePath(QStringLiteral("ridge_01.SRT"))));

    // A clip from an original without telemetry gets nothing beside it.
    const QString plain = dir.filePath(QStringLiteral("plain.mp4"));
    EXPECT_TRUE(ClipSidecars::writeClip(SourceTelemetry{}, 0, 1, plain));
    EXPECT_FALSE(QFile::exists(ClipSidecars::srtPath(plain)));
    EXPECT_FALSE(QFile::exists(ClipSidecars::gpxPath(plain)));

    // A story's track has one segment per clip.
    ASSERT_TRUE(ClipSidecars::writeStory({ClipSidecars::segment(source, 0, 1), ClipSidecars::segment(source, 2, 2.5)},
                                         dir.filePath(QStringLiteral("ridge_story.mp4"))));
    QFile story(dir.filePath(QStringLiteral("ridge_story.gpx")));
    ASSERT_TRUE(story.open(QIODevice::ReadOnly));
    const QString storyTrack = QString::fromUtf8(story.readAll());
    EXPECT_EQ(storyTrack.count(QStringLiteral("<trkseg>")), 2);
    EXPECT_EQ(storyTrack.count(QStringLiteral("<trkpt ")), 15);
}
