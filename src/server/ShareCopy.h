#pragma once

#include "StoryFacts.h"

#include <optional>
#include <string>
#include <vector>

/// @brief Titles and descriptions proposed for a story's public page, written from what the
/// library knows of it. Each proposal takes another angle (the place, the time, the shots, the
/// pilot's own labels), so cycling through them gives real choices; no two share a title.
namespace ShareCopy {

struct Suggestion {
    std::string title;
    std::optional<std::string> description;
};

[[nodiscard]] std::vector<Suggestion> suggest(const StoryFacts &facts);

}
