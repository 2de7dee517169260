#pragma once

#include "FlightIndex.h"
#include "Library.h"
#include "ReelPiece.h"

#include <optional>
#include <string>
#include <vector>

/// @brief What the library holds for an automatic story: the kept and suggested clips and the
/// moments of the flights asked for.
namespace ReelPool {

struct Request {
    std::optional<std::vector<std::string>> flightIds;  ///< absent: every flight not hidden
    std::optional<std::string> place;                   ///< only flights of this place
    bool clipsOnly = false;                             ///< kept clips only
};

/// Suggested clips and moments on a stretch the pilot tossed are left out, and so are moments
/// on a stretch some clip already covers.
[[nodiscard]] std::vector<ReelPiece> gather(const Library &library, FlightIndex &index, const Request &request);

}
