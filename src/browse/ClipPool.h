#pragma once

#include "ClipRecords.h"
#include "ClipsEnums.h"

#include <QList>
#include <QString>

/// @brief One section of the clips browser: its key, its heading ("" draws none) and its clips
/// in display order.
struct ClipGroup {
    QString id;
    QString label;
    QList<PoolClip> items;
    bool operator==(const ClipGroup &) const = default;
};

/// @brief The rules of the library-wide clip list, as plain functions over values: order,
/// filter, sections, the count line, the new-story title and the retrim of a clip.
namespace ClipPool {

/// Newest flight date first (an absent date reads as "", so undated clips come last), compared
/// as plain text; within one date by start time. Equal keys keep the server's order.
[[nodiscard]] QList<PoolClip> sorted(QList<PoolClip> clips);

/// A suggestion is a clip whose `auto` is true; anything else is the pilot's own.
[[nodiscard]] bool isSuggestion(const PoolClip &clip);
[[nodiscard]] QList<PoolClip> visible(const QList<PoolClip> &all, ClipsFilter filter);

/// Sections of `visible` in display order: one unlabelled group for `flat`; for `place`, the
/// place ("Unknown place" without one), the biggest first; for `month`, the date's first seven
/// characters, newest first, labelled "MMMM yyyy" or "Unknown date".
[[nodiscard]] QList<ClipGroup> groups(const QList<PoolClip> &visible, ClipsGroupMode mode);

/// "3 clips · 1:05 of footage"
[[nodiscard]] QString countLine(const QList<PoolClip> &visible);
/// "2 places" (for the place grouping's heading).
[[nodiscard]] QString placeCount(int groups);

/// True when the clips of known orientation hold both a vertical and a horizontal one.
[[nodiscard]] bool mixedAspect(const QList<PoolClip> &picks);
/// "<place> story" when the picks name exactly one place, else "My clips story".
[[nodiscard]] QString storyTitle(const QList<PoolClip> &picks);

/// The server keeps clip times in hundredths of a second: halves round away from zero.
[[nodiscard]] double hundredths(double seconds);
/// The clip as it stands after a successful retrim to (`start`, `end`), already rounded: the
/// pilot's own, and with a thumbnail named after the new start, so no cached picture of the old
/// first frame can show.
[[nodiscard]] PoolClip retrimmed(PoolClip clip, double start, double end);

} // namespace ClipPool
