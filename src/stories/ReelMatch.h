#pragma once

#include "ClipRecords.h"
#include "StoryRecords.h"

#include <QList>

#include <optional>

/// @brief How a story's items are tied back to the library's clips.
///
/// An item and a pool clip are the same clip when their flights match and either their clip ids
/// are equal (both absent counts as equal) or, with different ids, their starts lie less than
/// 0.05 s apart. So two unnamed clips of one flight count as one clip whatever their start:
/// "Hide added" relies on that.
namespace ReelMatch {
[[nodiscard]] bool sameClip(const ReelItem &item, const PoolClip &clip);
/// A new item of a story for this clip, with a fresh uid.
[[nodiscard]] ReelItem itemOf(const PoolClip &clip);
/// The first clip of `pool` that is the item's clip.
[[nodiscard]] std::optional<PoolClip> poolClip(const ReelItem &item, const QList<PoolClip> &pool);
/// How many items of the story are this clip.
[[nodiscard]] int count(const PoolClip &clip, const QList<ReelItem> &items);
/// Whether most items are vertical clips: more than half, in whole numbers (2 of 3 is, 1 of 2
/// isn't). An item without a pool clip counts as not vertical; no items is not vertical.
[[nodiscard]] bool storyVertical(const QList<ReelItem> &items, const QList<PoolClip> &pool);
/// The sum of the items' lengths, each at least 0.
[[nodiscard]] double totalDuration(const QList<ReelItem> &items);
} // namespace ReelMatch
