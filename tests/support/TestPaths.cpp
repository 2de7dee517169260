#include "TestPaths.h"

#include <QDir>

namespace TestPaths {

QString sourceDir()
{
    return qEnvironmentVariable("AEROLOOM_SOURCE_DIR", QDir::currentPath());
}

QString buildDir()
{
    return qEnvironmentVariable("AEROLOOM_BUILD_DIR", QDir::currentPath());
}

QString realData(const QString &relative)
{
    const QString root = QDir(sourceDir()).absoluteFilePath(QStringLiteral("../shared/realdata"));
    return relative.isEmpty() ? QDir::cleanPath(root) : QDir::cleanPath(root + QLatin1Char('/') + relative);
}

} // namespace TestPaths
