#pragma once

#include "Database.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// @brief One public link as the shares table keeps it.
struct ShareRow {
    std::string token;
    std::string project;
    std::string render;
    std::string title;
    std::optional<std::string> description;
    std::string created;  ///< local time "yyyy-MM-ddTHH:mm:ss", the form the client reads
    std::int64_t views = 0;
    std::int64_t hearts = 0;
};

/// @brief The library's public links to its videos. A revoked link is deleted: its token is
/// never served again, and sharing the video again makes a new one.
namespace ShareStore {
/// A new link to a video, or the live one it already has.
[[nodiscard]] std::optional<ShareRow> create(Database &db, const std::string &project, const std::string &render,
                                             const std::string &title, const std::string &created);
[[nodiscard]] std::optional<ShareRow> find(Database &db, const std::string &token);
[[nodiscard]] std::vector<ShareRow> all(Database &db);
/// False when there is no such link.
bool update(Database &db, const std::string &token, const std::string &title, const std::string &description);
bool remove(Database &db, const std::string &token);
void removeOfRender(Database &db, const std::string &render);
void removeOfProject(Database &db, const std::string &project);
/// Counts a view or a heart; the new count, or nothing when there is no such link.
[[nodiscard]] std::optional<std::int64_t> countView(Database &db, const std::string &token);
[[nodiscard]] std::optional<std::int64_t> countHeart(Database &db, const std::string &token);

/// The `ReelShare` reply; `base` is the address visitors reach the server at.
[[nodiscard]] nlohmann::ordered_json json(const ShareRow &row, const std::string &base,
                                          const std::optional<double> &duration);
}
