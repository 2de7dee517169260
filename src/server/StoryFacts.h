#pragma once

#include "FlightIndex.h"
#include "Library.h"
#include "ProjectTable.h"

#include <string>
#include <vector>

/// @brief What the library knows of a story, for proposing the words of its public page:
/// where and when its flights were, which shots it holds and what the pilot called its clips.
struct StoryFacts {
    std::string title;
    std::vector<std::string> places;  ///< most screen time first
    std::vector<std::string> days;    ///< "yyyy-MM-dd" of its flights, in order
    std::vector<std::string> shots;   ///< shot kinds ("orbit", "fast-pass"…), most screen time first
    std::vector<std::string> labels;  ///< the clips' own labels, in story order, each once
    int clips = 0;
    double seconds = 0;

    /// Reads the story's flights: their places and dates, their clips' labels and shot kinds,
    /// and the shots the analysis found under each item.
    [[nodiscard]] static StoryFacts of(const ProjectRow &story, const Library &library, FlightIndex &flights);
};
