#include "ClipPool.h"

#include "APIClient.h"
#include "RecordFormats.h"
#include "Units.h"

#include <QDate>
#include <QHash>

#include <algorithm>
#include <cmath>

namespace ClipPool {

QList<PoolClip> sorted(QList<PoolClip> clips)
{
    std::stable_sort(clips.begin(), clips.end(), [](const PoolClip &a, const PoolClip &b) {
        const QString &da = a.date ? *a.date : QString();
        const QString &db = b.date ? *b.date : QString();
        if (da != db)
            return da > db;
        return a.start < b.start;
    });
    return clips;
}

bool isSuggestion(const PoolClip &clip)
{
    return clip.autoSuggested.value_or(false);
}

QList<PoolClip> visible(const QList<PoolClip> &all, ClipsFilter filter)
{
    if (filter == ClipsFilter::all)
        return all;
    const bool wantSuggestions = filter == ClipsFilter::suggested;
    QList<PoolClip> kept;
    for (const PoolClip &clip : all)
        if (isSuggestion(clip) == wantSuggestions)
            kept.append(clip);
    return kept;
}

namespace {
QString groupId(const PoolClip &clip, ClipsGroupMode mode)
{
    if (mode == ClipsGroupMode::place)
        return clip.place ? *clip.place : QStringLiteral("Unknown place");
    return clip.date ? clip.date->left(7) : QString();
}

QString monthLabel(const QString &id)
{
    const QDate month = id.size() == 7 ? QDate::fromString(id, QStringLiteral("yyyy-MM")) : QDate();
    if (!month.isValid())
        return QStringLiteral("Unknown date");
    return RecordFormats::monthLabel(month.startOfDay());
}
} // namespace

QList<ClipGroup> groups(const QList<PoolClip> &visible, ClipsGroupMode mode)
{
    if (mode == ClipsGroupMode::flat)
        return {ClipGroup{QStringLiteral("all"), QString(), visible}};

    QList<ClipGroup> found;
    QHash<QString, qsizetype> at;
    for (const PoolClip &clip : visible) {
        const QString id = groupId(clip, mode);
        auto slot = at.find(id);
        if (slot == at.end()) {
            slot = at.insert(id, found.size());
            found.append(ClipGroup{id, QString(), {}});
        }
        found[*slot].items.append(clip);
    }

    if (mode == ClipsGroupMode::month) {
        std::stable_sort(found.begin(), found.end(), [](const ClipGroup &a, const ClipGroup &b) { return a.id > b.id; });
        for (ClipGroup &group : found)
            group.label = monthLabel(group.id);
    } else {
        for (ClipGroup &group : found)
            group.label = group.id;
        std::stable_sort(found.begin(), found.end(), [](const ClipGroup &a, const ClipGroup &b) {
            if (a.items.size() != b.items.size())
                return a.items.size() > b.items.size();
            return a.label < b.label;
        });
    }
    return found;
}

QString countLine(const QList<PoolClip> &visible)
{
    double footage = 0;
    for (const PoolClip &clip : visible)
        footage += std::max(0.0, clip.end - clip.start);
    const auto n = visible.size();
    return QStringLiteral("%1 clip%2 · %3 of footage")
        .arg(n)
        .arg(n == 1 ? QString() : QStringLiteral("s"))
        .arg(Units::wholeTime(footage));
}

QString placeCount(int groups)
{
    return QStringLiteral("%1 place%2").arg(groups).arg(groups == 1 ? QString() : QStringLiteral("s"));
}

bool mixedAspect(const QList<PoolClip> &picks)
{
    bool tall = false, wide = false;
    for (const PoolClip &clip : picks) {
        if (!clip.vertical)
            continue;
        (*clip.vertical ? tall : wide) = true;
    }
    return tall && wide;
}

QString storyTitle(const QList<PoolClip> &picks)
{
    QStringList places;
    for (const PoolClip &clip : picks)
        if (clip.place && !clip.place->isEmpty() && !places.contains(*clip.place))
            places.append(*clip.place);
    return (places.size() == 1 ? places.first() : QStringLiteral("My clips")) + QStringLiteral(" story");
}

double hundredths(double seconds)
{
    return std::round(seconds * 100) / 100;
}

PoolClip retrimmed(PoolClip clip, double start, double end)
{
    clip.start = start;
    clip.end = end;
    clip.autoSuggested = false;
    if (clip.clipId)
        clip.thumb = APIClient::clipThumbPath(clip.flightId, *clip.clipId, start);
    return clip;
}

} // namespace ClipPool
