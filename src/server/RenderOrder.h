#pragma once

#include <nlohmann/json.hpp>

#include <optional>
#include <string>

/// @brief What a story video is to be made with: the body of a render request, checked.
struct RenderOrder {
    enum class Aspect { Landscape, Vertical, Both };
    /// Where cuts fall: where the story puts them, or on the music's bars or beats.
    enum class Sync { Off, Bar, Beat };

    static constexpr const char *randomTrack = "random";
    static constexpr const char *noTrack = "none";
    /// Longest cross-fade taken, in seconds.
    static constexpr double longestXfade = 2.0;

    std::string projectId;
    std::string track = randomTrack;  ///< "random", "none" or a track path under music/
    Sync sync = Sync::Off;
    bool hud = false;
    double xfade = 0.2;
    Aspect aspect = Aspect::Landscape;

    /// Reads a render body. Absent "beatSync" or an empty one is no sync, absent "aspect" is
    /// widescreen. Gives nothing, with the words of the refusal in `why`, when it won't do.
    [[nodiscard]] static std::optional<RenderOrder> parse(const nlohmann::ordered_json &body, std::string &why);

    [[nodiscard]] bool wantsMusic() const { return track != noTrack; }
    /// "bar" or "beat"; empty when off.
    [[nodiscard]] std::string syncName() const;
};
