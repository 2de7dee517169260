#pragma once

#include "Database.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <optional>
#include <string>

/// @brief One story as the projects table stores it (items as JSON text).
struct ProjectRow {
    std::string id, title, notes, items, created, updated;
};

/// @brief Writing stories and the times they carry.
///
/// Times are UTC in whole seconds, "2024-05-01T10:00:00Z": the form the desktop client reads.
/// Libraries made before carry milliseconds; they are read back without them.
namespace ProjectTable {
/// Now, in the stored form.
[[nodiscard]] std::string now();
/// A stored time in the form the client reads: any fraction of a second is dropped.
[[nodiscard]] std::string timeText(const std::string &stored);
/// A time in the form the client reads a video's or a link's: the machine's local clock,
/// "2024-05-01T12:00:00", without a zone.
[[nodiscard]] std::string localText(std::chrono::system_clock::time_point when);
/// A new story id.
[[nodiscard]] std::string newId();
/// The story with this id, if there is one.
[[nodiscard]] std::optional<ProjectRow> find(Database &db, const std::string &id);
/// Adds a story; false when the database refuses it.
bool insert(Database &db, const ProjectRow &row);
/// The `Project` reply: id, title, notes and items.
[[nodiscard]] nlohmann::ordered_json projectJson(const ProjectRow &row);
}
