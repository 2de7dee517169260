#include "CardVolumes.h"

#include <QDir>
#include <QFileInfo>
#include <QStorageInfo>

namespace CardVolumes {

namespace {

const QStringList clipSuffixes = {QStringLiteral("lrf"), QStringLiteral("mp4"), QStringLiteral("mov")};

// File systems that are never a card, whatever /sys says.
const QStringList virtualFileSystems = {
    QStringLiteral("proc"),  QStringLiteral("sysfs"),   QStringLiteral("tmpfs"),    QStringLiteral("devtmpfs"),
    QStringLiteral("cgroup"), QStringLiteral("cgroup2"), QStringLiteral("overlay"), QStringLiteral("squashfs"),
    QStringLiteral("devpts"), QStringLiteral("mqueue"),  QStringLiteral("autofs"),  QStringLiteral("fusectl"),
    QStringLiteral("debugfs"), QStringLiteral("tracefs"), QStringLiteral("securityfs"), QStringLiteral("pstore"),
    QStringLiteral("bpf"),   QStringLiteral("binfmt_misc"), QStringLiteral("hugetlbfs"), QStringLiteral("configfs"),
    QStringLiteral("nsfs"),  QStringLiteral("ramfs"),   QStringLiteral("efivarfs")};

QString readSys(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? QString::fromLatin1(f.readAll()).trimmed() : QString();
}

/// The whole-disk block device of a partition: /dev/sdb1 -> sdb, /dev/mmcblk0p1 -> mmcblk0.
QString diskOf(const QString &device, const QString &sysRoot)
{
    const QString name = QFileInfo(device).fileName();
    if (name.isEmpty())
        return {};
    const QString classPath = sysRoot + QStringLiteral("/class/block/") + name;
    if (QFileInfo::exists(classPath + QStringLiteral("/partition")))
        return QFileInfo(QFileInfo(classPath).canonicalFilePath()).dir().dirName();
    return name;
}

} // namespace

QList<MountFacts> mountedVolumes(const QString &sysRoot)
{
    QList<MountFacts> out;
    for (const QStorageInfo &storage : QStorageInfo::mountedVolumes()) {
        MountFacts facts;
        facts.root = storage.rootPath();
        facts.name = storage.displayName();
        facts.device = QString::fromLocal8Bit(storage.device());
        facts.fileSystem = QString::fromLatin1(storage.fileSystemType());
        facts.hidden = QFileInfo(facts.root).fileName().startsWith(QLatin1Char('.'));
        facts.browsable = storage.isValid() && storage.isReady() && !virtualFileSystems.contains(facts.fileSystem);
        const QString disk = facts.device.startsWith(QLatin1String("/dev/")) ? diskOf(facts.device, sysRoot) : QString();
        if (!disk.isEmpty()) {
            const QString removable = readSys(sysRoot + QStringLiteral("/block/") + disk + QStringLiteral("/removable"));
            if (!removable.isEmpty())
                facts.removable = removable == QLatin1String("1");
            // A disk reached over USB or an SD slot is external, whatever its removable flag says
            // (many USB card readers report 0).
            const QString path = QFileInfo(sysRoot + QStringLiteral("/block/") + disk).canonicalFilePath();
            if (!path.isEmpty())
                facts.internal = !(path.contains(QLatin1String("/usb")) || disk.startsWith(QLatin1String("mmcblk")));
        }
        out << facts;
    }
    return out;
}

bool hasMedia(const QString &dcim, int depth)
{
    const QDir dir(dcim);
    const QFileInfoList entries = dir.entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot);  // hidden ones skipped
    for (const QFileInfo &entry : entries)
        if (entry.isFile() && clipSuffixes.contains(entry.suffix().toLower()))
            return true;
    if (depth <= 0)
        return false;
    for (const QFileInfo &entry : entries)
        if (entry.isDir() && hasMedia(entry.filePath(), depth - 1))
            return true;
    return false;
}

QList<Volume> qualifying(const QList<MountFacts> &mounts)
{
    QList<Volume> out;
    for (const MountFacts &m : mounts) {
        if (m.hidden || !m.browsable.value_or(true))
            continue;
        const bool external = m.removable.value_or(false) || (m.internal.has_value() && !*m.internal);
        if (!external)
            continue;
        const QDir root(m.root);
        if (!root.entryList(QDir::Dirs | QDir::NoDotAndDotDot).contains(QStringLiteral("DCIM")))
            continue;
        if (!hasMedia(root.filePath(QStringLiteral("DCIM"))))
            continue;
        out << Volume{m.root, m.name.isEmpty() ? QFileInfo(m.root).fileName() : m.name};
    }
    return out;
}

QList<Volume> cardVolumes()
{
    return qualifying(mountedVolumes());
}

} // namespace CardVolumes
