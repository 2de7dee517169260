#include "CardScanner.h"

#include "CoroTest.h"
#include "Fixtures.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

void touch(const QString &path)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("x");
}

QStringList describe(const QList<FoundFlight> &found, const QString &root)
{
    QStringList out;
    for (const auto &f : found)
        out << QDir(root).relativeFilePath(f.url) + " " + f.id + (f.srt ? " +" + QFileInfo(*f.srt).suffix() : QString());
    return out;
}

} // namespace

TEST(CardScanner, ScanPrefersTheLightFileAndAttachesSidecars)
{
    QTemporaryDir card;
    const QString m = card.filePath("DCIM/100MEDIA/");
    touch(m + "DJI_20240102030405_0001.MP4");
    touch(m + "DJI_20240102030405_0001.LRF");
    touch(m + "DJI_20240102030405_0001.SRT");  // an LRF never takes a sidecar
    touch(m + "dji_20240102030405_0002.lrf");
    touch(m + "DJI_20240102030405_0002.MP4");  // pairs with the lower-case LRF
    touch(m + "DJI_20240102040000_0003.MP4");
    touch(m + "DJI_20240102040000_0003.srt");
    touch(m + "DJI_20240102040000_0003.SRT");  // upper case wins
    touch(m + "clip.mov");
    touch(m + "._DJI_20240102040000_0003.MP4");  // a hidden companion
    touch(card.filePath("DCIM/101MEDIA/deep/er/DJI_20240102050000_0004.MP4"));  // no depth limit
    touch(m + "DJI_0005.JPG");

    const auto found = CardScanner::scan(card.path());
    EXPECT_EQ(describe(found, card.path()),
              QStringList({"DCIM/100MEDIA/DJI_20240102030405_0001.LRF 20240102_030405_0001",
                           "DCIM/100MEDIA/DJI_20240102040000_0003.MP4 20240102_040000_0003 +SRT",
                           "DCIM/100MEDIA/clip.mov clip",
                           "DCIM/100MEDIA/dji_20240102030405_0002.lrf 20240102_030405_0002",
                           "DCIM/101MEDIA/deep/er/DJI_20240102050000_0004.MP4 20240102_050000_0004"}));
    ASSERT_TRUE(found.first().date.has_value());
    EXPECT_EQ(found.first().date->time().hour(), 3) << "names carry local wall-clock time";

    QTemporaryDir empty;
    EXPECT_TRUE(CardScanner::scan(empty.path()).isEmpty());
    EXPECT_TRUE(CardScanner::scan(empty.filePath("gone")).isEmpty());
}

TEST(CardScanner, DroppedFilesKeepTheirOrderAndUndatedVideosGetAContentId)
{
    QTemporaryDir dir;
    Fixtures::ClipOptions options;
    options.seconds = 1;
    options.creationTime = QStringLiteral("2024-01-02T03:04:05.000000Z");
    ASSERT_TRUE(Fixtures::makeClip(dir.filePath("holiday clip.mp4"), options).ok());
    touch(dir.filePath("DJI_20240102030405_0009.MP4"));
    touch(dir.filePath("DJI_20240102030405_0009.LRF"));
    touch(dir.filePath("notes.txt"));

    const auto found = run(CardScanner::flights({dir.filePath("holiday clip.mp4"), dir.filePath("notes.txt"),
                                                 dir.filePath("DJI_20240102030405_0009.MP4"),
                                                 dir.filePath("DJI_20240102030405_0009.LRF")}));
    ASSERT_EQ(found.size(), 2);
    EXPECT_EQ(found[0].id, QStringLiteral("20240102_030405_0009"));
    EXPECT_TRUE(found[0].url.endsWith(".LRF"));
    // The dropped video's id comes from its creation time (UTC) and its first mebibyte.
    EXPECT_TRUE(found[1].id.startsWith(QStringLiteral("20240102_030405_"))) << found[1].id.toStdString();
    EXPECT_EQ(found[1].id.size(), 20);
    // The folder scan of the same file keeps the plain stem: the two entry points differ.
    EXPECT_EQ(CardScanner::scan(dir.path()).last().id, QStringLiteral("holiday clip"));
}
