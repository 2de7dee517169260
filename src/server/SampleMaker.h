#pragma once

#include "FlightIndex.h"
#include "Library.h"
#include "Result.h"

#include <nlohmann/json.hpp>

#include <mutex>
#include <string>

/// @brief The sample flights a new library starts with, made here with ffmpeg: a test-pattern
/// proxy, a thumbnail, a plausible flight path with altitude, a kept clip and a suggestion.
namespace SampleMaker {
/// Makes the samples and adds them to the library; returns how many were made.
[[nodiscard]] Result<int> make(const Library &library, FlightIndex &index, std::mutex &folderLock,
                               int seconds = 20);
/// The `flight.json` document of a synthetic flight around a centre point (exposed for tests).
[[nodiscard]] nlohmann::ordered_json flightFile(double lat, double lon, double seconds, const std::string &source,
                                                const std::string &place);
}
