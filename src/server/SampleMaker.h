#pragma once

#include "FlightData.h"
#include "FlightIndex.h"
#include "Library.h"
#include "Result.h"

#include <mutex>
#include <string>

/// @brief The sample flights a new library starts with, made here with ffmpeg: a test-pattern
/// proxy, a thumbnail, a plausible flight path with altitude, a kept clip, and the suggestions and
/// moments the analysis finds in the path.
namespace SampleMaker {
/// Makes the samples and adds them to the library; returns how many were made.
[[nodiscard]] Result<int> make(const Library &library, FlightIndex &index, std::mutex &folderLock,
                               int seconds = 20);
/// A synthetic flight around a centre point, as `flight.json` holds it (exposed for tests).
[[nodiscard]] FlightData flightFile(double lat, double lon, double seconds, const std::string &source,
                                                const std::string &place);
}
