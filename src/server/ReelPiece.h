#pragma once

#include <optional>
#include <string>

/// @brief A stretch of one flight that an automatic story may use: a kept clip, a suggested clip
/// or a moment, with what the draft needs to choose among them.
struct ReelPiece {
    enum class Source { Kept, Suggested, Moment };

    Source source = Source::Moment;
    std::string flightId;
    std::optional<std::string> clipId;  ///< clips only
    double start = 0;
    double end = 0;
    std::string label;
    std::string shot;    ///< "orbit", "climb"…; empty when not known
    double score = 0;    ///< kept clips 1, the analysis's score otherwise
    std::string place;   ///< the flight's place, empty when not known
    bool vertical = false;
    std::string date;    ///< the flight's date, for a stable order among equals

    [[nodiscard]] double length() const { return end - start; }
};
