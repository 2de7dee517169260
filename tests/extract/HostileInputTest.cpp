// Input from a card is whatever is there: empty files, binary noise, files far larger than any
// real sidecar. Each reader answers in words and keeps its memory to what it needs.
#include "ExifToolReader.h"
#include "FlightFile.h"
#include "SrtReader.h"
#include "TelemetryError.h"

#include "TestTools.h"

#include <Fixtures.h>

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <sys/resource.h>

namespace {

QByteArray noise(qsizetype size, unsigned seed)
{
    QByteArray bytes(size, '\0');
    std::uint32_t x = seed;
    for (qsizetype i = 0; i < size; ++i) {
        x = x * 1664525u + 1013904223u;
        bytes[i] = static_cast<char>(x >> 24);
    }
    return bytes;
}

long peakResidentKiB()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

} // namespace

TEST(HostileInput, EmptyFilesAnswerInWords)
{
    QTemporaryDir dir;
    const QString empty = dir.filePath(QStringLiteral("empty"));
    ASSERT_TRUE(writeBytes(empty, QByteArray()));
    EXPECT_EQ(TelemetryParser::parseSRTFile(empty, std::nullopt, std::nullopt, QStringLiteral("a.MP4")).failure().code,
              TelemetryError::NoTelemetry);
    EXPECT_EQ(TelemetryParser::parseExifTool(QByteArray(), QStringLiteral("a.MP4")).failure().code, TelemetryError::BadJSON);
    EXPECT_EQ(FlightFile::read(empty).failure().code, FlightFile::NotJSON);
}

TEST(HostileInput, BinaryNoiseIsNoTelemetry)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("noise.SRT"));
    const QByteArray bytes = noise(4 << 20, 7);
    ASSERT_TRUE(writeBytes(path, bytes));
    // Read from disk it is no text at all; taken as text (bad bytes replaced) it holds no telemetry.
    const auto fromFile = TelemetryParser::parseSRTFile(path, std::nullopt, std::nullopt, QStringLiteral("a.MP4"));
    ASSERT_FALSE(fromFile.ok());
    EXPECT_EQ(fromFile.errorText(), QStringLiteral("Could not read noise.SRT: it is not UTF-8 text"));
    const auto asText = TelemetryParser::parseSRT(QString::fromUtf8(bytes), std::nullopt, std::nullopt, QStringLiteral("a.MP4"));
    EXPECT_EQ(asText.failure().code, TelemetryError::NoTelemetry);
    EXPECT_EQ(TelemetryParser::parseExifTool(bytes, QStringLiteral("a.MP4")).failure().code, TelemetryError::BadJSON);
    EXPECT_FALSE(FlightFile::read(path).ok());
}

TEST(HostileInput, DeeplyNestedJsonIsRefusedWithoutExhaustingTheStack)
{
    const QByteArray deep = "{\"meta\":" + QByteArray(1'000'000, '[') + QByteArray(1'000'000, ']') + "}";
    EXPECT_EQ(FlightFile::decode(deep).failure().code, FlightFile::BadShape);
    EXPECT_EQ(TelemetryParser::parseExifTool("[" + deep + "]", QStringLiteral("a.MP4")).failure().code,
              TelemetryError::NoTelemetry);
}

// A sidecar of 80 MB whose cues never get a fix: read as a stream, memory stays near one cue.
TEST(HostileInputSlow, VeryLargeSidecarIsStreamed)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("huge.SRT"));
    std::vector<Fixtures::Cue> cues = Fixtures::straightPath(2000, 0.02, 0, 0, 0, 0);
    const QByteArray block = Fixtures::srtText(cues);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    qint64 written = 0;
    int copies = 0;
    // Repeated blocks restart at t = 0: the times are not what this is about.
    while (written < 80LL * 1024 * 1024) {
        written += file.write(block);
        ++copies;
    }
    file.close();

    const long before = peakResidentKiB();
    const auto d = TelemetryParser::parseSRTFile(path, std::nullopt, std::nullopt, QStringLiteral("a.MP4"));
    const long grown = peakResidentKiB() - before;
    ASSERT_FALSE(d.ok());
    EXPECT_TRUE(d.failure().is(TelemetryError::domain, TelemetryError::NoGPSFix));
    EXPECT_TRUE(d.errorText().contains(QStringLiteral("all %1 samples").arg(2000LL * copies)));
    testing::Test::RecordProperty("peakGrowthKiB", static_cast<int>(grown));
#ifndef __SANITIZE_ADDRESS__  // the sanitizer's shadow memory and quarantine say nothing of the reader's own
    EXPECT_LT(grown, 32 * 1024) << "peak memory grew by " << grown << " KiB for an 80 MB sidecar";
#endif
}
