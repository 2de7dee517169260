#pragma once

#include <array>
#include <span>

/// @brief Every libmpv name the playback layer uses: properties, commands, seek flags and the
/// options a player starts with. Nothing else spells an mpv name, so a rename in a newer mpv
/// is one edit here.
namespace MpvProperties {

// Properties read or observed.
inline constexpr char timePos[] = "time-pos";
inline constexpr char pause[] = "pause";
inline constexpr char duration[] = "duration";
inline constexpr char mute[] = "mute";
/// Headers sent with every HTTP request of the player ("Name: value" lines).
inline constexpr char httpHeaderFields[] = "http-header-fields";

// Commands.
inline constexpr char loadfile[] = "loadfile";
inline constexpr char loadReplace[] = "replace";
/// loadfile's per-file option: where the file starts, in seconds.
inline constexpr char loadStart[] = "start=";
inline constexpr char seek[] = "seek";
inline constexpr char stop[] = "stop";
/// Brings a video output back after the render context it drew into was freed.
inline constexpr char videoReload[] = "video-reload";
/// The key of loadfile's reply that names the entry the later file events carry.
inline constexpr char playlistEntryId[] = "playlist_entry_id";

// Seek flags. An absolute seek decodes from the keyframe before the target up to the target:
// exact. A keyframe seek only decodes the keyframe itself, which may lie seconds away.
inline constexpr char seekExact[] = "absolute+exact";
inline constexpr char seekKeyframe[] = "absolute+keyframes";

/// The log level whose messages are kept to explain a file that fails to load.
inline constexpr char errorLogLevel[] = "error";

struct Option {
    const char *name;
    const char *value;
};

/// Options of every player, set before the core starts.
inline constexpr std::array common{
    // A page that answers 401 would otherwise be handed to yt-dlp, which takes seconds to refuse.
    Option{"ytdl", "no"},
    // At the end the player pauses on the last frame instead of unloading the file.
    Option{"keep-open", "yes"},
    Option{"idle", "yes"},
    Option{"pause", "yes"},
    Option{"config", "no"},
    Option{"load-scripts", "no"},
    Option{"input-default-bindings", "no"},
    Option{"input-vo-keyboard", "no"},
    Option{"osc", "no"},
    Option{"terminal", "no"},
    Option{"audio-fallback-to-null", "yes"},
};
/// Video for an `MpvVideoItem` through the render API.
inline constexpr std::array render{
    Option{"vo", "libmpv"},
};
/// No window, no sound device: logic tests and benchmarks.
inline constexpr std::array headless{
    Option{"vo", "null"},
    Option{"ao", "null"},
};

inline std::span<const Option> outputOptions(bool isHeadless)
{
    if (isHeadless)
        return headless;
    return render;
}

} // namespace MpvProperties
