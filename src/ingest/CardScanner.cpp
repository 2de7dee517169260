#include "CardScanner.h"

#include "FlightIDs.h"
#include "MediaProbe.h"
#include "ToolLocator.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QSet>

#include <algorithm>

namespace CardScanner {

namespace {

enum class FileClass { Lrf, Video, Other };

FileClass classify(const QString &path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == QLatin1String("lrf"))
        return FileClass::Lrf;
    if (FlightIDs::videoExtensions().contains(suffix))
        return FileClass::Video;
    return FileClass::Other;
}

QString upperStem(const QString &path)
{
    return QFileInfo(path).completeBaseName().toUpper();
}

FoundFlight identified(const QString &path, std::optional<QString> srt)
{
    const auto identity = FlightIDs::parseFileName(path);
    return FoundFlight{path, identity.id, identity.date, std::move(srt)};
}

} // namespace

std::optional<QString> sidecar(const QString &clip)
{
    const QFileInfo info(clip);
    const QString base = info.dir().filePath(info.completeBaseName());
    for (const char *suffix : {".SRT", ".srt"}) {
        const QString candidate = base + QLatin1String(suffix);
        if (QFileInfo::exists(candidate))
            return candidate;
    }
    return std::nullopt;
}

QList<FoundFlight> scan(const QString &folder)
{
    QStringList lrfs, videos;
    QDirIterator it(folder, QDir::Files | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        switch (classify(path)) {
        case FileClass::Lrf: lrfs << path; break;
        case FileClass::Video: videos << path; break;
        case FileClass::Other: break;
        }
    }
    QSet<QString> lrfStems;
    for (const QString &lrf : std::as_const(lrfs))
        lrfStems.insert(upperStem(lrf));

    QList<std::pair<QString, std::optional<QString>>> candidates;
    for (const QString &lrf : std::as_const(lrfs))
        candidates.append({lrf, std::nullopt});
    for (const QString &video : std::as_const(videos))
        if (!lrfStems.contains(upperStem(video)))
            candidates.append({video, sidecar(video)});
    std::stable_sort(candidates.begin(), candidates.end(), [](const auto &a, const auto &b) { return a.first < b.first; });

    QList<FoundFlight> out;
    QSet<QString> seen;
    for (const auto &[path, srt] : std::as_const(candidates)) {
        const QString location = QFileInfo(path).absoluteFilePath();
        if (seen.contains(location))
            continue;
        seen.insert(location);
        out << identified(path, srt);
    }
    return out;
}

QCoro::Task<QList<FoundFlight>> flights(QStringList files)
{
    QStringList lrfs, videos;
    for (const QString &file : std::as_const(files)) {
        switch (classify(file)) {
        case FileClass::Lrf: lrfs << file; break;
        case FileClass::Video: videos << file; break;
        case FileClass::Other: break;
        }
    }
    QSet<QString> lrfStems;
    QList<FoundFlight> out;
    for (const QString &lrf : std::as_const(lrfs)) {
        lrfStems.insert(upperStem(lrf));
        out << identified(lrf, std::nullopt);
    }
    const auto ffprobe = ToolLocator::ffprobe();
    for (const QString &video : std::as_const(videos)) {
        if (lrfStems.contains(upperStem(video)))
            continue;
        FoundFlight flight = identified(video, sidecar(video));
        if (!flight.date) {
            // A dropped video without a dated name: identify it by its content and the time the
            // camera stamped into it.
            std::optional<QString> creationTime;
            if (ffprobe)
                creationTime = (co_await MediaProbe::probeFormat(*ffprobe, video)).creationTime;
            const auto identity = FlightIDs::fallbackIdentity(video, creationTime);
            flight.id = identity.id;
            flight.date = identity.date;
        }
        out << flight;
    }
    co_return out;
}

} // namespace CardScanner
