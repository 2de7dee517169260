#pragma once

#include "FlightData.h"
#include "Library.h"
#include "Result.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

/// @brief The footage behind a story's items: each item's span of its flight's proxy, the
/// proxy's length and picture size, and the flight's telemetry when it is asked for.
namespace StoryFootage {

struct Clip {
    std::string flightId;
    std::filesystem::path video;
    double start = 0;  ///< seconds, within the video
    double end = 0;
    double videoSeconds = 0;
    int width = 0;
    int height = 0;
    std::shared_ptr<const std::vector<TelemetrySample>> track;  ///< empty when not asked or not known
};

/// The clips of `items` in order. An item whose flight is gone from the library, or whose span
/// lies outside its video, is left out; a video that is there but can't be read fails the whole.
[[nodiscard]] Result<std::vector<Clip>> gather(const Library &library, const nlohmann::ordered_json &items,
                                               bool telemetry);

}
