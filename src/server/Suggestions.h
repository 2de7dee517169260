#pragma once

#include "Shot.h"

#include <nlohmann/json.hpp>

#include <utility>
#include <vector>

/// @brief How the shots of an analysis become a flight's suggested clips and moments, around
/// what the pilot did: the pilot's own clips are never touched, and a span they tossed (recorded
/// under "dismissed" in clips.json) is never offered again.
///
/// Suggestions are the clips with "auto" true; each analysis replaces them all. Their ids,
/// "auto-<shot>-<tenths of the start>", stay the same when a flight is analysed again.
namespace Suggestions {
/// Recorded in moments.json; a flight analysed by an older version is analysed again at start.
inline constexpr int analysisVersion = 1;
/// Start of the ids of what the analysis wrote, in clips.json and moments.json alike.
inline constexpr const char *idPrefix = "auto-";

using Span = std::pair<double, double>;

/// clips.json after an analysis of a flight `duration` seconds long: the pilot's clips, the
/// "dismissed" list and any other key as they were, and the best shots as suggestions, one per
/// stretch of footage, none on a stretch the pilot has clipped or tossed. `suggested` is set to
/// how many there are.
[[nodiscard]] nlohmann::ordered_json clips(const nlohmann::ordered_json &current, const std::vector<Shot> &shots,
                                           double duration, int &suggested);
/// moments.json after an analysis: every shot found, apart from tossed stretches; moments that
/// came with the upload stay.
[[nodiscard]] nlohmann::ordered_json moments(const nlohmann::ordered_json &current, const std::vector<Shot> &shots,
                                             const nlohmann::ordered_json &clips);
/// Whether moments.json was written by this version of the analysis.
[[nodiscard]] bool upToDate(const nlohmann::ordered_json &moments);

/// The player tosses a suggestion by saving the clip list without it: every suggestion of
/// `before` that `after` no longer holds goes into `after`'s "dismissed", so it is not offered again.
void rememberTossed(const nlohmann::ordered_json &before, nlohmann::ordered_json &after);
/// The spans under "dismissed"; entries without numeric "in" and "out" are skipped.
[[nodiscard]] std::vector<Span> dismissed(const nlohmann::ordered_json &clips);
/// Whether an entry of "clips" is a suggestion not yet kept ("auto" is true).
[[nodiscard]] bool isSuggestion(const nlohmann::ordered_json &clip);
/// The span of a clip or moment entry, when it has numeric "in" and "out".
[[nodiscard]] std::optional<Span> spanOf(const nlohmann::ordered_json &entry);
}
