#include "GpxWriter.h"

#include <cmath>

namespace GpxWriter {

namespace {
QString escaped(QString text)
{
    return text.toHtmlEscaped();
}
} // namespace

QByteArray write(const QString &name, const QList<Segment> &segments)
{
    QString out = QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                 "<gpx version=\"1.1\" creator=\"Aeroloom\" xmlns=\"http://www.topografix.com/GPX/1/1\">\n"
                                 "  <trk>\n    <name>%1</name>\n").arg(escaped(name));
    for (const Segment &segment : segments) {
        if (segment.samples.empty())
            continue;
        out += QStringLiteral("    <trkseg>\n");
        for (const TelemetrySample &s : segment.samples) {
            out += QStringLiteral("      <trkpt lat=\"%1\" lon=\"%2\">")
                       .arg(QString::number(s.lat, 'f', 7), QString::number(s.lon, 'f', 7));
            if (const auto ele = s.absAlt ? s.absAlt : s.relAlt)
                out += QStringLiteral("<ele>%1</ele>").arg(QString::number(*ele, 'f', 2));
            if (segment.started) {
                const QDateTime at = segment.started->addMSecs(std::llround(s.t * 1000)).toUTC();
                out += QStringLiteral("<time>%1</time>").arg(at.toString(Qt::ISODateWithMs));
            }
            out += QStringLiteral("</trkpt>\n");
        }
        out += QStringLiteral("    </trkseg>\n");
    }
    out += QStringLiteral("  </trk>\n</gpx>\n");
    return out.toUtf8();
}

} // namespace GpxWriter
