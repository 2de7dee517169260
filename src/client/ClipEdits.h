#pragma once

#include "ClipRecords.h"
#include "Wire.h"

/// @brief Edits of a flight's "clips.json" as a generic tree.
///
/// The document carries more than `Clip` knows, so a clip is changed in place and every other
/// key and number passes through untouched. `doc` must be an object.
namespace ClipEdits {
/// An entry matches a pool clip with a `clipId` when its "id" is that string, and a pool clip
/// without one when it has no string "id".
[[nodiscard]] bool matches(const Wire::Json &entry, const PoolClip &clip);
/// Drops "auto" from every matching entry: a suggestion becomes a kept clip.
void keep(Wire::Json &doc, const PoolClip &clip);
/// Removes matching entries and remembers the span under "dismissed" so it isn't suggested again.
void toss(Wire::Json &doc, const PoolClip &clip);
/// Sets "in"/"out" on every matching entry and keeps it (drops "auto").
void retrim(Wire::Json &doc, const PoolClip &clip, double start, double end);
} // namespace ClipEdits
