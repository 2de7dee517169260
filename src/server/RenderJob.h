#pragma once

#include "Library.h"
#include "MusicMaker.h"
#include "RenderGraph.h"
#include "RenderOrder.h"
#include "RenderStore.h"
#include "Result.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <functional>
#include <stop_token>
#include <string>
#include <vector>

/// @brief One request to make a story's video, from the story's items to finished files in
/// renders/: the footage, the music and its beats, the plan of the cuts and the overlay are
/// worked out first (`prepare`), then one ffmpeg run makes the video or both its shapes (`run`).
///
/// Files are made under tmp/ and moved into place only when whole, so a failed or stopped job
/// leaves nothing behind; the destructor removes what is left in tmp/.
class RenderJob
{
public:
    RenderJob(const Library &library, MusicMaker &music, RenderOrder order, std::string items);
    ~RenderJob();
    RenderJob(const RenderJob &) = delete;
    RenderJob &operator=(const RenderJob &) = delete;

    /// The ids the videos will have: the widescreen one first.
    [[nodiscard]] const std::vector<std::string> &ids() const { return m_ids; }
    [[nodiscard]] const RenderOrder &order() const { return m_order; }

    /// Everything but the encoding. Blocking; milliseconds for the usual story.
    [[nodiscard]] Result<void> prepare();
    /// The ffmpeg run `prepare` worked out.
    [[nodiscard]] const RenderSetup &setup() const { return m_setup; }
    /// Encodes, makes the posters and moves the files into place; the rows to store (without
    /// their `rendered` time). `onProgress` hears the fraction done.
    [[nodiscard]] Result<std::vector<RenderRow>> run(std::stop_token stop, std::function<void(double)> onProgress);

private:
    [[nodiscard]] std::optional<std::filesystem::path> chooseMusic();
    [[nodiscard]] std::filesystem::path temporary(const std::string &suffix);
    /// What a video was made with, as replies show it; the overlay is on the widescreen one only.
    [[nodiscard]] nlohmann::ordered_json settings(bool wide) const;
    void makePoster(const std::filesystem::path &video, const std::filesystem::path &poster) const;

    const Library &m_library;
    MusicMaker &m_music;
    RenderOrder m_order;
    std::string m_items;
    std::vector<std::string> m_ids;
    RenderSetup m_setup;
    std::string m_track;  ///< the track used, relative to music/; empty without music
    std::vector<std::filesystem::path> m_temporary;
};
