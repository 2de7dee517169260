#pragma once

#include "TestServer.h"

#include <string>
#include <vector>

/// @brief Flights with clips in a real library, for the stories' tests.
namespace StoryLibrary {

struct PlannedClip {
    std::string id;  ///< empty: a clip without an id
    double in = 0;
    double out = 0;
    std::string label;
};

struct PlannedFlight {
    std::string id;   ///< carries its date: "20240512_093000_0001"
    std::string place;
    double seconds = 2.0;
    bool vertical = false;
    std::vector<PlannedClip> clips;
};

/// Uploads each flight (real ffmpeg test pattern for its proxy) and writes its clips.
void put(TestServer &server, const std::vector<PlannedFlight> &flights);

/// A small library: two flights at two places, four clips, one of them vertical footage.
std::vector<PlannedFlight> twoFlights();

} // namespace StoryLibrary
