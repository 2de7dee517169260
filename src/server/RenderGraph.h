#pragma once

#include "CutPlan.h"

#include <QString>
#include <QStringList>

#include <filesystem>
#include <optional>
#include <vector>

/// @brief Everything one ffmpeg run needs to make a story's video (or both of its shapes).
struct RenderSetup {
    struct Frame {
        int width = 0;
        int height = 0;
    };

    CutPlan plan;
    std::vector<std::filesystem::path> sources;  ///< the video of each piece of the plan
    Frame landscape;                             ///< 16:9; each clip fits inside, padded
    Frame vertical;                              ///< 9:16; each clip fills it, its middle kept
    std::optional<std::filesystem::path> music;  ///< looped when shorter than the video
    std::optional<std::filesystem::path> hud;    ///< an ASS script drawn on the widescreen video
    std::optional<std::filesystem::path> landscapeFile;  ///< where each shape goes; at least one
    std::optional<std::filesystem::path> verticalFile;

    /// The two frames for clips whose largest short side is `shortSide`, kept to 720 at most.
    static void frameFor(int shortSide, Frame &landscape, Frame &vertical);
};

/// @brief The ffmpeg command line of a story video: each piece trimmed from its source, made
/// 30 frames a second and the size of the video, the pieces joined by `xfade`, the music trimmed
/// to the video with a fade at each end, the overlay burned in, and each shape encoded to H.264
/// (and AAC) in one run, with its progress on standard output.
namespace RenderGraph {
[[nodiscard]] QString filter(const RenderSetup &setup);
[[nodiscard]] QStringList arguments(const RenderSetup &setup);
/// A file name as the value of a filter's option inside a graph, escaped for both of the
/// parsers it passes through, so that any folder name reaches the filter as it is.
[[nodiscard]] QString filterPath(const std::filesystem::path &file);
}
