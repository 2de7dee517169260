#include "TrackNames.h"

#include <QRegularExpression>
#include <QStringList>

namespace TrackNames {

QString displayName(const QString &track)
{
    static const QRegularExpression leadingNumber(QStringLiteral("^\\d+\\."));
    QStringList parts = track.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    if (parts.isEmpty())
        return track;
    QString file = parts.takeLast();
    if (const qsizetype dot = file.lastIndexOf(QLatin1Char('.')); dot >= 0)
        file.truncate(dot);
    file.remove(leadingNumber);
    if (!parts.isEmpty())
        file += QStringLiteral("  ·  ") + parts.join(QLatin1Char('/'));
    return file;
}

} // namespace TrackNames
