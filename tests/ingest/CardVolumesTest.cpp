#include "CardVolumes.h"

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
}

CardVolumes::MountFacts removableAt(const QString &root)
{
    CardVolumes::MountFacts m;
    m.root = root;
    m.name = QStringLiteral("DJI SD");
    m.removable = true;
    return m;
}

} // namespace

TEST(CardVolumes, SeesClipsUpToTwoLevelsBelowDCIMAndNoDeeper)
{
    QTemporaryDir dir;
    touch(dir.filePath("shallow/DCIM/100MEDIA/DJI_0001.MP4"));
    touch(dir.filePath("lrf/DCIM/DJI_0001.LRF"));
    touch(dir.filePath("deep/DCIM/100MEDIA/x/y/DJI_0001.MP4"));
    touch(dir.filePath("hidden/DCIM/100MEDIA/._DJI_0001.MP4"));  // the companions some systems leave
    touch(dir.filePath("photos/DCIM/100MEDIA/DJI_0001.JPG"));
    touch(dir.filePath("nodcim/100MEDIA/DJI_0001.MP4"));
    touch(dir.filePath("lower/dcim/100MEDIA/DJI_0001.MP4"));  // the folder name is exact

    QList<CardVolumes::MountFacts> mounts;
    for (const char *name : {"shallow", "lrf", "deep", "hidden", "photos", "nodcim", "lower"})
        mounts << removableAt(dir.filePath(name));
    QStringList roots;
    for (const auto &v : CardVolumes::qualifying(mounts))
        roots << QFileInfo(v.root).fileName();
    EXPECT_EQ(roots, QStringList({"shallow", "lrf"}));
}

TEST(CardVolumes, OnlyRemovableOrKnownExternalBrowsableVolumesQualify)
{
    QTemporaryDir dir;
    touch(dir.filePath("DCIM/100MEDIA/DJI_0001.MP4"));
    auto facts = removableAt(dir.path());

    auto check = [&](auto change) {
        auto m = facts;
        change(m);
        return !CardVolumes::qualifying({m}).isEmpty();
    };
    EXPECT_TRUE(check([](auto &) {}));
    EXPECT_FALSE(check([](auto &m) { m.removable = false; m.internal = true; }))
        << "an internal disk with a DCIM folder is no card";
    EXPECT_FALSE(check([](auto &m) { m.removable.reset(); m.internal.reset(); })) << "unknown internal does not pass";
    EXPECT_TRUE(check([](auto &m) { m.removable = false; m.internal = false; })) << "a USB reader that says not removable";
    EXPECT_TRUE(check([](auto &m) { m.browsable.reset(); })) << "unknown counts as browsable";
    EXPECT_FALSE(check([](auto &m) { m.browsable = false; }));
    EXPECT_FALSE(check([](auto &m) { m.hidden = true; }));
    EXPECT_FALSE(check([&](auto &m) { m.root = dir.filePath("unmounted-meanwhile"); }));
}

TEST(CardVolumes, ThisMachinesMountsAreReadWithoutTrouble)
{
    // Whatever this machine has mounted, the root file system is listed and no virtual one qualifies.
    const auto mounts = CardVolumes::mountedVolumes();
    EXPECT_TRUE(std::any_of(mounts.cbegin(), mounts.cend(), [](const auto &m) { return m.root == QLatin1String("/"); }));
    for (const auto &v : CardVolumes::cardVolumes())
        EXPECT_TRUE(QDir(v.root).exists(QStringLiteral("DCIM")));
}
