#pragma once

#include "Database.h"
#include "Library.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/// @brief One made video as the renders table keeps it.
struct RenderRow {
    std::string id;
    std::string project;
    std::string aspect;    ///< "landscape" or "vertical"
    std::string rendered;  ///< local time "yyyy-MM-ddTHH:mm:ss", the form the client reads
    std::int64_t millis = 0;
    std::int64_t bytes = 0;
    int width = 0;
    int height = 0;
    std::string settings;  ///< what it was made with, as the `settings` JSON
    std::string cut;       ///< fingerprint of the story's items it was made from
};

/// @brief The library's made videos: rows, files, and the replies that describe them.
///
/// Lists are newest first; of the two videos of one request the widescreen one comes first.
namespace RenderStore {
bool insert(Database &db, const RenderRow &row);
[[nodiscard]] std::optional<RenderRow> find(Database &db, const std::string &id);
[[nodiscard]] std::vector<RenderRow> ofProject(Database &db, const std::string &project);
[[nodiscard]] std::vector<RenderRow> all(Database &db);
/// Removes a video's row and its files (those too when it has no row); false when it had no row.
bool remove(Database &db, const Library &library, const std::string &id);
/// Removes every video of a story.
void removeProject(Database &db, const Library &library, const std::string &project);

[[nodiscard]] std::filesystem::path video(const Library &library, const std::string &id);
[[nodiscard]] std::filesystem::path poster(const Library &library, const std::string &id);
/// The path the client asks for the video under, relative to the server's address.
[[nodiscard]] std::string url(const std::string &id);

/// The fingerprint of a story's items: a video is stale once the story's differs from its own.
[[nodiscard]] std::string cutOf(const std::string &items);
/// The `RenderEntry` reply; `currentCut` is the story's fingerprint now (absent: the story is gone).
[[nodiscard]] nlohmann::ordered_json entryJson(const RenderRow &row, const std::optional<std::string> &currentCut,
                                               const std::string &projectTitle);
}
