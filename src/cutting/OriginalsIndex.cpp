#include "OriginalsIndex.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QFuture>
#include <QtConcurrent/QtConcurrentRun>

#include <QCoroFuture>

namespace OriginalsIndex {

Index build(const QStringList &folders, Index base)
{
    for (const QString &folder : folders) {
        QDirIterator it(folder, QDir::Files | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QFileInfo info = it.nextFileInfo();
            if (!info.isFile())
                continue;
            const QString extension = info.suffix().toLower();
            if (extension != QLatin1String("mp4") && extension != QLatin1String("mov"))
                continue;
            const QString stem = info.completeBaseName().toLower();
            if (!base.contains(stem))
                base.insert(stem, info.absoluteFilePath());
        }
    }
    return base;
}

QCoro::Task<Index> buildInBackground(QStringList folders, Index base)
{
    // Named, not a temporary: GCC 12 destroys temporaries of a co_await operand twice.
    QFuture<Index> walk = QtConcurrent::run([folders = std::move(folders), base = std::move(base)] {
        return build(folders, base);
    });
    Index result = co_await walk;
    co_return result;
}

} // namespace OriginalsIndex
