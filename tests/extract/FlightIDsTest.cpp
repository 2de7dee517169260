#include "FlightIDs.h"

#include "Printers.h"

#include <gtest/gtest.h>

#include <QCryptographicHash>
#include <QFile>
#include <QTemporaryDir>
#include <QTimeZone>

using FlightIDs::fallbackIdentity;
using FlightIDs::parseFileName;

namespace {

QDateTime local(int y, int mo, int d, int h, int mi, int s)
{
    return QDateTime(QDate(y, mo, d), QTime(h, mi, s), Qt::LocalTime);
}

/// Runs a check under another machine time zone and puts the old one back.
class ScopedTimeZone
{
public:
    explicit ScopedTimeZone(const char *tz) : m_had(qEnvironmentVariableIsSet("TZ")), m_old(qgetenv("TZ"))
    {
        qputenv("TZ", tz);
        tzset();
    }
    ~ScopedTimeZone()
    {
        if (m_had)
            qputenv("TZ", m_old);
        else
            qunsetenv("TZ");
        tzset();
    }

private:
    bool m_had;
    QByteArray m_old;
};

} // namespace

TEST(FlightIDs, CameraFormKeepsNumberAndReadsLocalTime)
{
    const auto a = parseFileName(QStringLiteral("/card/DCIM/100MEDIA/DJI_20240102030405_0007_D.MP4"));
    EXPECT_EQ(a.id, QStringLiteral("20240102_030405_0007"));
    EXPECT_EQ(a.date, local(2024, 1, 2, 3, 4, 5));
    // Only the stem counts, the match may sit inside other text, and case does not matter.
    EXPECT_EQ(parseFileName(QStringLiteral("DJI_20240102030405_0007.LRF")).id, a.id);
    EXPECT_EQ(parseFileName(QStringLiteral("copy of DJI_20240102030405_0007_D (1).mp4")).id, a.id);
    EXPECT_EQ(parseFileName(QStringLiteral("dji_20240102030405_0007.mov")).id, a.id);
    EXPECT_EQ(parseFileName(QStringLiteral("DJI_20240102030405_123456.MP4")).id, QStringLiteral("20240102_030405_123456"));
}

TEST(FlightIDs, AppExportFormPadsOrCutsNumberToFour)
{
    const auto a = parseFileName(QStringLiteral("dji_fly_20240102_030405_12_1700000000000_video.mp4"));
    EXPECT_EQ(a.id, QStringLiteral("20240102_030405_0012"));
    EXPECT_EQ(a.date, local(2024, 1, 2, 3, 4, 5));
    EXPECT_EQ(parseFileName(QStringLiteral("dji_fly_20240102_030405_123456_x.mp4")).id, QStringLiteral("20240102_030405_3456"));
    EXPECT_EQ(parseFileName(QStringLiteral("DJI_FLY_20240102_030405_7.MP4")).id, QStringLiteral("20240102_030405_0007"));
}

TEST(FlightIDs, OtherNamesAndBadDatesKeepWhatTheyCan)
{
    const auto plain = parseFileName(QStringLiteral("/x/clip.mp4"));
    EXPECT_EQ(plain.id, QStringLiteral("clip"));
    EXPECT_FALSE(plain.date.has_value());
    // Month 13: the id stands, the date does not.
    const auto bad = parseFileName(QStringLiteral("DJI_20241302030405_0001.MP4"));
    EXPECT_EQ(bad.id, QStringLiteral("20241302_030405_0001"));
    EXPECT_FALSE(bad.date.has_value());
    // Digits of other scripts are no digits here: ids stay ASCII.
    EXPECT_EQ(parseFileName(QStringLiteral("DJI_٢٠٢٤٠١٠٢٠٣٠٤٠٥_0001.MP4")).id, QStringLiteral("DJI_٢٠٢٤٠١٠٢٠٣٠٤٠٥_0001"));
    EXPECT_TRUE(FlightIDs::videoExtensions().contains(QStringLiteral("mov")));
    EXPECT_FALSE(FlightIDs::videoExtensions().contains(QStringLiteral("lrf")));
}

TEST(FlightIDs, NameDatesFollowTheMachineZone)
{
    ScopedTimeZone tz("Asia/Tokyo");
    const auto a = parseFileName(QStringLiteral("DJI_20240102030405_0007.MP4"));
    ASSERT_TRUE(a.date.has_value());
    EXPECT_EQ(a.date->toUTC(), QDateTime(QDate(2024, 1, 1), QTime(18, 4, 5), QTimeZone::utc()));
}

TEST(FlightIDs, FallbackUsesUtcCreationTimeAndFirstMebibyteDigest)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("clip.mp4"));
    QByteArray body(FlightIDs::hashedBytes, 'a');
    body.append("tail that must not count");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(body);
    file.close();
    const QString digest = QString::fromLatin1(
        QCryptographicHash::hash(body.left(FlightIDs::hashedBytes), QCryptographicHash::Md5).toHex().left(4));

    for (const char *zone : {"UTC", "America/Los_Angeles", "Asia/Kolkata"}) {
        ScopedTimeZone tz(zone);
        const auto id = fallbackIdentity(path, QStringLiteral("2024-01-02T03:04:05.000000Z"));
        EXPECT_EQ(id.id, QStringLiteral("20240102_030405_") + digest) << zone;
        EXPECT_EQ(id.date, QDateTime(QDate(2024, 1, 2), QTime(3, 4, 5), QTimeZone::utc()));
    }
    // Anything after the 19th character is not looked at; 18 characters are too few.
    EXPECT_EQ(fallbackIdentity(path, QStringLiteral("2024-01-02T03:04:05+09:00 junk")).id.left(15),
              QStringLiteral("20240102_030405"));
    const auto shortTime = fallbackIdentity(path, QStringLiteral("2024-01-02T03:04:0"));
    EXPECT_EQ(shortTime.id, QStringLiteral("00000000_000000_") + digest);
    EXPECT_FALSE(shortTime.date.has_value());
    EXPECT_FALSE(fallbackIdentity(path, QStringLiteral("2024-13-02T03:04:05Z")).date.has_value());
}

TEST(FlightIDs, FallbackForEmptyOrMissingFilesIsAllZeros)
{
    QTemporaryDir dir;
    const QString empty = dir.filePath(QStringLiteral("empty.mp4"));
    QFile(empty).open(QIODevice::WriteOnly);
    EXPECT_EQ(fallbackIdentity(empty, std::nullopt).id, QStringLiteral("00000000_000000_0000"));
    EXPECT_EQ(fallbackIdentity(dir.filePath(QStringLiteral("missing.mp4")), std::nullopt).id,
              QStringLiteral("00000000_000000_0000"));
}
