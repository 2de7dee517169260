#include "SrtReader.h"
#include "TelemetryError.h"

#include "Printers.h"

#include <TestPaths.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using TelemetryParser::parseSRT;
using TelemetryParser::parseSRTFile;

namespace {

Result<FlightData> parse(const QString &text, std::optional<QString> model = std::nullopt,
                         std::optional<double> duration = std::nullopt)
{
    return parseSRT(text, model, duration, QStringLiteral("DJI_0001.MP4"));
}

QString cue(int n, const QString &time, const QString &body)
{
    return QStringLiteral("%1\n%2 --> 00:00:09,999\n%3\n\n").arg(n).arg(time, body);
}

QString fix(double lat, double lon)
{
    return QStringLiteral("[latitude: %1] [longitude: %2]").arg(lat, 0, 'f', 6).arg(lon, 0, 'f', 6);
}

/// Figures computed once, outside this code, by a separate Python reading of the same files
/// (same patterns, haversine on the 6,371 km sphere).
struct Reference {
    const char *file;
    int samples;
    double minLat, maxLat, minLon, maxLon;
    double pathLength;
    std::optional<FlightRelAlt> relAlt;
    double lastT;
};

const Reference references[] = {
    {"DJI_SRT_Parser/MAVIC3.srt", 12318, 3.41090, 3.41601, -3.37937, -3.37242, 2757.244124, FlightRelAlt{-5.3, 11.2}, 246.340},
    {"DJI_SRT_Parser/air2s.srt", 17, 41.424724, 41.424730, 2.234102, 2.234156, 4.566572, std::nullopt, 0.533},
    {"DJI_SRT_Parser/air2s_full_06d97a7.srt", 1008, 41.424724, 41.426910, 2.231330, 2.234156, 361.744626, std::nullopt, 33.598},
    {"DJI_SRT_Parser/mavic_air2.srt", 25, 41.420684, 41.420686, 2.162162, 2.162162, 0.222390, std::nullopt, 0.400},
    {"dji-drone-metadata-embedder/Avata360__clip.SRT", 5, 53.365080, 53.365080, 6.460739, 6.460739, 0, FlightRelAlt{5.4, 5.4}, 0.166},
    {"dji-drone-metadata-embedder/Mini5PRO__clip.SRT", 5, 53.365108, 53.365109, 6.460718, 6.460719, 0.129487, FlightRelAlt{6.0, 6.0}, 0.160},
    {"dji-drone-metadata-embedder/air3S__clip.SRT", 5, 34.270373, 34.270373, -84.176160, -84.176160, 0, FlightRelAlt{0, 0}, 0.066},
    {"dji-drone-metadata-embedder/mavic4pro__clip.SRT", 5, 59.3294, 59.3294, 18.0686, 18.0686, 0, FlightRelAlt{59.764, 59.764}, 0.066},
    {"dji-drone-metadata-embedder/neo2__clip.SRT", 5, 45.607181, 45.607181, 13.753859, 13.753860, 0.077789, FlightRelAlt{0, 0.1}, 0.133},
    {"dji-drone-metadata-embedder/neo2__clip_nogps.SRT", 3, 32.848932, 32.848932, -84.861966, -84.861966, 0, FlightRelAlt{0.4, 0.4}, 0.165},
    {"dji_srt2gpx/DJI.SRT", 7, 49.379442, 49.379443, 15.032166, 15.032166, 0.111195, FlightRelAlt{43.22, 43.225}, 0.200},
    {"dji_srt2gpx/DJI_M300RTK.SRT", 7, 49.125749, 49.125749, 14.634775, 14.634775, 0, FlightRelAlt{54.821, 54.876}, 0.200},
    {"dji_srt2gpx/DJI_MAVIC_3T.SRT", 12, 50.106373, 50.106374, 14.495168, 14.495169, 0.253828, FlightRelAlt{80.503, 80.507}, 0.466},
    {"python_DJI_SRT_parser/DJI_0023.SRT", 1203, 41.151572, 41.153834, 16.412771, 16.413295, 277.789368, FlightRelAlt{37.8, 52.4}, 40.102},
};

// Older layouts (HOME/GPS lines, compact "GPS (lon, lat)" lines, the misspelt "longtitude"),
// broken files and CR LF files carry no bracketed position this reader takes.
const char *const withoutTelemetry[] = {
    "DJI_SRT_Parser/broken_empty.SRT",       "DJI_SRT_Parser/broken_empty2.SRT",
    "DJI_SRT_Parser/broken_incomplete.SRT",  "DJI_SRT_Parser/broken_incomplete2.SRT",
    "DJI_SRT_Parser/m2zoom.SRT",             "DJI_SRT_Parser/matrice_300.srt",
    "DJI_SRT_Parser/mavic_2_style.SRT",      "DJI_SRT_Parser/mavic_2pro_new.SRT",
    "DJI_SRT_Parser/mavic_air.SRT",          "DJI_SRT_Parser/mavic_mini.SRT",
    "DJI_SRT_Parser/mavic_pro.SRT",          "DJI_SRT_Parser/mavic_pro_buggy.SRT",
    "DJI_SRT_Parser/mix_p4rtk_mavic2pro.srt", "DJI_SRT_Parser/old_format.SRT",
    "DJI_SRT_Parser/p4_rtk.SRT",             "DJI_SRT_Parser/p4p_sample.SRT",
    "DJI_SRT_Parser/sample2.SRT",            "dji-srt-viewer/sample1.SRT",
    "dji-srt-viewer/sample3.SRT",            "dji_srt2gpx/DJI_MAVIC.SRT",
    "dji_srt2gpx/DJI_MAVIC_2_ZOOM.SRT",      "dji_srt2gpx/DJI_MAVIC_ENTERPRISE.SRT",
    "dji_srt2gpx/DJI_MAVIC_ENTERPRISE_ADVANCED.SRT",
};

} // namespace

TEST(SrtReaderRealData, ModernSidecarsMatchIndependentFigures)
{
    for (const Reference &r : references) {
        SCOPED_TRACE(r.file);
        const auto d = parseSRTFile(TestPaths::realData(QString::fromLatin1(r.file)), std::nullopt, std::nullopt,
                                    QStringLiteral("clip.MP4"));
        ASSERT_TRUE(d.ok()) << d.errorText().toStdString();
        EXPECT_EQ(d->meta.samples, r.samples);
        EXPECT_EQ(static_cast<int>(d->track.size()), r.samples);
        ASSERT_TRUE(d->meta.bounds.has_value());
        EXPECT_NEAR(d->meta.bounds->minLat, r.minLat, 1e-9);
        EXPECT_NEAR(d->meta.bounds->maxLat, r.maxLat, 1e-9);
        EXPECT_NEAR(d->meta.bounds->minLon, r.minLon, 1e-9);
        EXPECT_NEAR(d->meta.bounds->maxLon, r.maxLon, 1e-9);
        EXPECT_NEAR(d->meta.pathLength, r.pathLength, 1e-5);
        EXPECT_EQ(d->meta.relAlt.has_value(), r.relAlt.has_value());
        if (r.relAlt && d->meta.relAlt) {
            EXPECT_NEAR(d->meta.relAlt->min, r.relAlt->min, 1e-9);
            EXPECT_NEAR(d->meta.relAlt->max, r.relAlt->max, 1e-9);
        }
        EXPECT_NEAR(d->meta.duration, r.lastT, 1e-9);
        EXPECT_EQ(d->meta.model, QStringLiteral("DJI"));
        for (const TelemetrySample &s : d->track)
            ASSERT_TRUE(s.yaw.has_value()); // sidecars get headings from motion
    }
}

TEST(SrtReaderRealData, OlderAndBrokenSidecarsHaveNoTelemetry)
{
    for (const char *file : withoutTelemetry) {
        SCOPED_TRACE(file);
        const auto d = parseSRTFile(TestPaths::realData(QString::fromLatin1(file)), std::nullopt, std::nullopt,
                                    QStringLiteral("clip.MP4"));
        ASSERT_FALSE(d.ok());
        EXPECT_TRUE(d.failure().is(TelemetryError::domain, TelemetryError::NoTelemetry)) << d.errorText().toStdString();
    }
}

TEST(SrtReaderRealData, ZeroFixCuesAreCountedAndLeaveNoTrace)
{
    QFile file(TestPaths::realData(QStringLiteral("dji-drone-metadata-embedder/neo2__clip_nogps.SRT")));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());

    // Three cues before the lock, then three with a position: t keeps the clip's clock.
    const auto locked = parse(text);
    ASSERT_TRUE(locked.ok());
    EXPECT_NEAR(locked->track.front().t, 0.099, 1e-9);

    // Only the cues before the lock: no fix for the whole flight.
    const QString beforeLock = text.left(text.indexOf(QStringLiteral("4\n00:00:00,099")));
    const auto none = parse(beforeLock);
    ASSERT_FALSE(none.ok());
    EXPECT_TRUE(none.failure().is(TelemetryError::domain, TelemetryError::NoGPSFix));
    EXPECT_EQ(none.errorText(), QStringLiteral("No GPS fix for the whole flight in DJI_0001.MP4 — all 3 samples read "
                                               "0,0 (indoor flight?)."));
}

TEST(SrtReader, ReadsBlocksFieldsAndTimes)
{
    const QString text = QStringLiteral("junk before the first cue [latitude: 9] [longitude: 9]\n") +
                         cue(1, QStringLiteral("00:00:01,5"),
                             fix(47.5, 8.25) + QStringLiteral(" [rel_alt: 1.5 abs_alt: 401.25] [iso: 200] "
                                                              "[shutter: 1/60.0] [fnum: 280]")) +
                         cue(2, QStringLiteral("  01:02:03.250"),
                             QStringLiteral("[latitude: -33.5]\n[shutter: 0.0] more\n[longitude: -70.25]"));
    const auto d = parse(text, QStringLiteral("  Mini 4 Pro\t"), 4000.0);
    ASSERT_TRUE(d.ok()) << d.errorText().toStdString();
    ASSERT_EQ(d->track.size(), 2u);
    const TelemetrySample &a = d->track[0];
    EXPECT_DOUBLE_EQ(a.t, 1.005); // ",5" is five milliseconds
    EXPECT_EQ(a.lat, 47.5);
    EXPECT_EQ(a.relAlt, 1.5);
    EXPECT_EQ(a.absAlt, 401.25);
    EXPECT_EQ(a.iso, 200);
    EXPECT_EQ(a.fnum, 280); // no scaling
    EXPECT_EQ(a.shutter, RawJSON::text(QStringLiteral("1/60")));
    EXPECT_FALSE(a.pitch || a.roll || a.gimbalYaw || a.gimbalPitch);
    const TelemetrySample &b = d->track[1];
    EXPECT_DOUBLE_EQ(b.t, 3723.25);
    EXPECT_EQ(b.lat, -33.5); // the position crosses line ends
    EXPECT_EQ(b.lon, -70.25);
    EXPECT_EQ(b.shutter, RawJSON::text(QStringLiteral("0")));
    EXPECT_FALSE(b.relAlt.has_value());
    EXPECT_EQ(d->meta.model, QStringLiteral("Mini 4 Pro"));
    EXPECT_EQ(d->meta.duration, 4000);
}

TEST(SrtReader, WhatIsNotTelemetry)
{
    EXPECT_TRUE(parse(QString()).failure().is(TelemetryError::domain, TelemetryError::NoTelemetry));
    EXPECT_EQ(parse(QString()).errorText(), QStringLiteral("No GPS telemetry found in DJI_0001.MP4 — is this a DJI clip?"));
    // A CR LF file is one line: no cue line is ever seen.
    QString crlf = cue(1, QStringLiteral("00:00:00,000"), fix(47, 8)) + cue(2, QStringLiteral("00:00:01,000"), fix(47, 8));
    EXPECT_TRUE(parse(QString(crlf).replace(QLatin1Char('\n'), QStringLiteral("\r\n"))).failure().code ==
                TelemetryError::NoTelemetry);
    EXPECT_TRUE(parse(crlf).ok());
    // Numbers the patterns let through but that are none; cues without position are no zero fixes.
    EXPECT_EQ(parse(cue(1, QStringLiteral("00:00:00,000"), QStringLiteral("[latitude: 1.2.3] [longitude: 5]")) +
                    cue(2, QStringLiteral("00:00:01,000"), QStringLiteral("[iso: 100]")))
                  .failure()
                  .code,
              TelemetryError::NoTelemetry);
    // A cue line with an absurd hour is no cue line; its block stays with the previous cue.
    const auto d = parse(cue(1, QStringLiteral("00:00:00,000"), fix(1, 1)) +
                         cue(2, QStringLiteral("99999999999999999999:00:00,000"), fix(2, 2)));
    ASSERT_TRUE(d.ok());
    EXPECT_EQ(d->track.size(), 1u);
    EXPECT_EQ(d->track[0].lat, 1);
}

TEST(SrtReader, FileReadingMatchesTextReadingAndRefusesNonUtf8)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.SRT"));
    const QString source = TestPaths::realData(QStringLiteral("python_DJI_SRT_parser/DJI_0023.SRT"));
    QFile in(source);
    ASSERT_TRUE(in.open(QIODevice::ReadOnly));
    const QByteArray bytes = in.readAll();
    EXPECT_EQ(*parseSRTFile(source, std::nullopt, std::nullopt, QStringLiteral("x")),
              *parseSRT(QString::fromUtf8(bytes), std::nullopt, std::nullopt, QStringLiteral("x")));

    QFile out(path);
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    out.write(bytes.left(2000) + "\xff\xfe" + bytes.mid(2000));
    out.close();
    const auto bad = parseSRTFile(path, std::nullopt, std::nullopt, QStringLiteral("x"));
    ASSERT_FALSE(bad.ok());
    EXPECT_FALSE(TelemetryError::is(bad.failure())); // a read error, not a clip without telemetry
    EXPECT_EQ(bad.errorText(), QStringLiteral("Could not read a.SRT: it is not UTF-8 text"));
    EXPECT_FALSE(parseSRTFile(dir.filePath(QStringLiteral("none.SRT")), std::nullopt, std::nullopt, QStringLiteral("x")).ok());
}
