#include "ToolLocator.h"

#include "ExifToolCommand.h"
#include "ProcessRunner.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace {

bool isExecutable(const QString &path)
{
    const QFileInfo info(path);
    return info.isFile() && info.isExecutable();
}

std::optional<QString> fromEnvironment(const char *key)
{
    // Taken as it stands: a wrong path shows up in the preflight as a tool that fails to run.
    const QString value = qEnvironmentVariable(key);
    if (value.isEmpty())
        return std::nullopt;
    return QFileInfo(value).absoluteFilePath();
}

const QStringList systemDirs{QStringLiteral("/opt/homebrew/bin"), QStringLiteral("/usr/local/bin"),
                             QStringLiteral("/usr/bin")};

} // namespace

namespace ToolLocator {

QStringList resourceDirs()
{
    QStringList dirs;
    if (QCoreApplication::instance())
        dirs.append(QDir::cleanPath(QCoreApplication::applicationDirPath() + QStringLiteral("/../libexec/aeroloom")));
#ifdef AEROLOOM_RESOURCE_DIR
    dirs.append(QStringLiteral(AEROLOOM_RESOURCE_DIR));
#endif
    return dirs;
}

std::optional<QString> find(const QString &name, const char *envKey)
{
    if (auto path = fromEnvironment(envKey))
        return path;
    for (const QString &dir : resourceDirs()) {
        const QString path = QDir(dir).filePath(name);
        if (isExecutable(path))
            return path;
    }
    for (const QString &dir : systemDirs) {
        const QString path = QDir(dir).filePath(name);
        if (isExecutable(path))
            return path;
    }
    return std::nullopt;
}

std::optional<QString> ffmpeg()
{
    return find(QStringLiteral("ffmpeg"), ffmpegEnv);
}

std::optional<QString> ffprobe()
{
    return find(QStringLiteral("ffprobe"), ffprobeEnv);
}

std::optional<ExifTool> findExifTool()
{
    if (auto path = fromEnvironment(exiftoolEnv))
        return ExifTool{*path, std::nullopt};
    // Our own copy runs through perl, so it only has to exist.
    for (const QString &dir : resourceDirs()) {
        const QString script = QDir(dir).filePath(QStringLiteral("exiftool/exiftool"));
        if (QFileInfo(script).isFile())
            return ExifTool{script, QDir(dir).filePath(QStringLiteral("exiftool/lib"))};
    }
    // Debian's own exiftool lives in /usr/bin; it is older but better than none.
    for (const QString &dir : systemDirs) {
        const QString path = QDir(dir).filePath(QStringLiteral("exiftool"));
        if (isExecutable(path))
            return ExifTool{path, std::nullopt};
    }
    return std::nullopt;
}

QCoro::Task<QStringList> preflight()
{
    QStringList problems;
    if (const auto ffmpegPath = ffmpeg()) {
        const QStringList args{QStringLiteral("-version")};
        const auto result = co_await ProcessRunner::run(*ffmpegPath, args);
        if (!result.ok() || result->status != 0)
            problems.append(QStringLiteral("ffmpeg at ") + *ffmpegPath + QStringLiteral(" failed to run"));
    } else {
        problems.append(QStringLiteral("ffmpeg not found"));
    }
    if (!ffprobe())
        problems.append(QStringLiteral("ffprobe not found"));
    if (const auto exif = findExifTool()) {
        const auto version = co_await exifToolVersion(*exif);
        if (!version.ok()) {
            problems.append(QStringLiteral("exiftool at ") + exif->script +
                            QStringLiteral(" failed to run (is /usr/bin/perl present?)"));
        }
    } else {
        problems.append(QStringLiteral("exiftool not found"));
    }
    co_return problems;
}

} // namespace ToolLocator
