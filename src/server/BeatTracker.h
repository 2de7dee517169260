#pragma once

#include <filesystem>
#include <optional>
#include <vector>

/// @brief Finds the beats of a music file with aubio's beat tracker, and the lines cuts may
/// snap to when the track plays under a story.
namespace BeatTracker {

struct Beats {
    std::vector<double> times;  ///< seconds from the start of the track, increasing
    double seconds = 0;         ///< length of the track
};

/// The beats of a track, as aubio's tracker finds them with its default settings (the same
/// as `aubiotrack`'s); nothing when the file can't be read as audio.
[[nodiscard]] std::optional<Beats> track(const std::filesystem::path &file);

/// The lines in the time of a video `until` seconds long that plays the track from its start
/// and loops it when it ends: every beat, or with `bars` every fourth one, counted from the
/// first beat of each pass.
[[nodiscard]] std::vector<double> grid(const Beats &beats, bool bars, double until);

}
