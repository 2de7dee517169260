#include "StorageSettingsModel.h"

#include "FolderBookmarks.h"
#include "Preferences.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QLocale>

namespace {
const QString outputKey = QStringLiteral("cut.outputRoot");
} // namespace

StorageSettingsModel::StorageSettingsModel(Preferences &prefs, QString pendingDir, QObject *parent)
    : QObject(parent)
    , m_prefs(prefs)
    , m_pendingDir(std::move(pendingDir))
{
}

qint64 StorageSettingsModel::folderSize(const QString &dir)
{
    qint64 total = 0;
    QDirIterator it(dir, QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        it.next();
        total += it.fileInfo().size();
    }
    return total;
}

QString StorageSettingsModel::pendingText() const
{
    return QLocale::c().formattedDataSize(m_pendingBytes, 1, QLocale::DataSizeSIFormat);
}

void StorageSettingsModel::refreshPending()
{
    const qint64 bytes = folderSize(m_pendingDir);
    if (bytes == m_pendingBytes)
        return;
    m_pendingBytes = bytes;
    Q_EMIT pendingChanged();
}

void StorageSettingsModel::clearPending()
{
    QDir(m_pendingDir).removeRecursively();  // a failure leaves what it could not remove, and the sum says so
    refreshPending();
}

QString StorageSettingsModel::outputName() const
{
    const auto path = FolderBookmarks::load(m_prefs, outputKey);
    return path ? QFileInfo(*path).fileName() : QStringLiteral("~/Videos/Aeroloom");
}

void StorageSettingsModel::setOutputFolder(const QUrl &folder)
{
    const QString path = folder.toLocalFile();
    if (path.isEmpty())
        return;
    // The cut window reads the same bookmark.
    FolderBookmarks::save(m_prefs, path, outputKey);
    Q_EMIT outputChanged();
}
