#pragma once

#include "FlightData.h"

#include <string>
#include <vector>

/// @brief The overlay burned into a widescreen story video, as a script that libass draws
/// (ffmpeg's `ass` filter): the speed and altitude of the flight on screen, bottom left, and a
/// minimap of its path with a dot that moves along it, bottom right.
///
/// Readings are in miles per hour and feet, the program's default units.
namespace HudScript {

/// One clip of the video and the flight it comes from.
struct Piece {
    const std::vector<TelemetrySample> *track = nullptr;  ///< without samples the clip shows no overlay
    double sourceStart = 0;  ///< seconds into the flight's video at the clip's first frame
    double videoStart = 0;   ///< the video's time of that frame
    double showFrom = 0;     ///< the clip's overlay stands from this time of the video…
    double showTo = 0;       ///< …to this one
};

/// The script for a video of `width` × `height` pixels.
[[nodiscard]] std::string make(const std::vector<Piece> &pieces, int width, int height);

}
