#include "ReelMatch.h"

#include <cmath>

namespace ReelMatch {

bool sameClip(const ReelItem &item, const PoolClip &clip)
{
    if (!item.flightId || *item.flightId != clip.flightId)
        return false;
    return item.clipId == clip.clipId || std::abs(item.start - clip.start) < 0.05;
}

ReelItem itemOf(const PoolClip &clip)
{
    ReelItem item;
    item.flightId = clip.flightId;
    item.clipId = clip.clipId;
    item.start = clip.start;
    item.end = clip.end;
    item.label = clip.label;
    return item;
}

std::optional<PoolClip> poolClip(const ReelItem &item, const QList<PoolClip> &pool)
{
    for (const PoolClip &clip : pool)
        if (sameClip(item, clip))
            return clip;
    return std::nullopt;
}

int count(const PoolClip &clip, const QList<ReelItem> &items)
{
    int n = 0;
    for (const ReelItem &item : items)
        n += sameClip(item, clip) ? 1 : 0;
    return n;
}

bool storyVertical(const QList<ReelItem> &items, const QList<PoolClip> &pool)
{
    if (items.isEmpty())
        return false;
    int vertical = 0;
    for (const ReelItem &item : items) {
        const auto clip = poolClip(item, pool);
        vertical += clip && clip->vertical.value_or(false) ? 1 : 0;
    }
    return vertical > int(items.size()) / 2;
}

double totalDuration(const QList<ReelItem> &items)
{
    double total = 0;
    for (const ReelItem &item : items)
        total += std::max(0.0, item.end - item.start);
    return total;
}

} // namespace ReelMatch
