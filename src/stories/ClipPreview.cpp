#include "ClipPreview.h"

#include "RecordFormats.h"

#include <QDateTime>

QString ClipPreview::dateText(const PoolClip &clip)
{
    if (!clip.date)
        return {};
    // Flights carry their local clock time without a zone; ISO 8601 allows either.
    const QDateTime when = QDateTime::fromString(*clip.date, Qt::ISODate);
    return when.isValid() ? RecordFormats::monthDayYear(when) : QString();
}

QString ClipPreview::subtitleOf(const PoolClip &clip)
{
    QStringList parts;
    if (clip.place && !clip.place->isEmpty())
        parts.append(*clip.place);
    if (const QString date = dateText(clip); !date.isEmpty())
        parts.append(date);
    return parts.join(QStringLiteral(" · "));
}

ClipPreview ClipPreview::of(const PoolClip &clip)
{
    ClipPreview preview;
    preview.flightId = clip.flightId;
    preview.start = clip.start;
    preview.end = clip.end;
    preview.label = clip.label;
    preview.subtitle = subtitleOf(clip);
    preview.p480 = clip.p480;
    return preview;
}

ClipPreview ClipPreview::of(const ReelItem &item, const std::optional<PoolClip> &clip)
{
    ClipPreview preview;
    preview.id = item.uid;
    preview.flightId = item.flightId.value_or(QString());
    preview.start = item.start;
    preview.end = item.end;
    preview.label = item.label;
    if (clip) {
        preview.subtitle = subtitleOf(*clip);
        preview.p480 = clip->p480;
    }
    return preview;
}
