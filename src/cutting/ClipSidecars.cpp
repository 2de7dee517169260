#include "ClipSidecars.h"

#include "SrtRetimer.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace ClipSidecars {

namespace {

QString beside(const QString &video, const char *extension)
{
    const QFileInfo info(video);
    return info.dir().filePath(info.completeBaseName() + QLatin1String(extension));
}

bool save(const QString &path, const QByteArray &bytes)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    if (file.write(bytes) != bytes.size()) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}

} // namespace

QString srtPath(const QString &video)
{
    return beside(video, ".SRT");
}

QString gpxPath(const QString &video)
{
    return beside(video, ".gpx");
}

void remove(const QString &video)
{
    QFile::remove(srtPath(video));
    QFile::remove(gpxPath(video));
}

GpxWriter::Segment segment(const SourceTelemetry &telemetry, double start, double end)
{
    GpxWriter::Segment out{telemetry.span(start, end), std::nullopt};
    if (telemetry.started)
        out.started = telemetry.started->addMSecs(std::llround(start * 1000));
    return out;
}

bool writeClip(const SourceTelemetry &telemetry, double start, double end, const QString &video)
{
    bool written = true;
    const GpxWriter::Segment span = segment(telemetry, start, end);
    if (telemetry.sidecarText)
        written = save(srtPath(video), SrtRetimer::retime(*telemetry.sidecarText, start, end).toUtf8());
    else if (!span.samples.empty())
        written = save(srtPath(video), SrtRetimer::fromSamples(span.samples, end - start).toUtf8());
    if (!span.samples.empty())
        written = save(gpxPath(video), GpxWriter::write(QFileInfo(video).completeBaseName(), {span})) && written;
    return written;
}

bool writeStory(const QList<GpxWriter::Segment> &segments, const QString &video)
{
    const bool any = std::any_of(segments.cbegin(), segments.cend(), [](const auto &s) { return !s.samples.empty(); });
    if (!any)
        return true;
    return save(gpxPath(video), GpxWriter::write(QFileInfo(video).completeBaseName(), segments));
}

} // namespace ClipSidecars
