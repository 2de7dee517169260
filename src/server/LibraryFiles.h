#pragma once

#include "Library.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <string>

/// @brief Reading and replacing the small JSON files of a flight's folder.
namespace LibraryFiles {
/// Replaces a file in one step: the text goes to a file under tmp/ that is renamed over the
/// target, so a reader sees the old file or the new one, never half of one. False (and nothing
/// changed) when the text can't be written or the target's folder is gone.
[[nodiscard]] bool replace(const Library &library, const std::filesystem::path &target, const std::string &text);
/// A JSON file's document; null when the file is missing or isn't JSON.
[[nodiscard]] nlohmann::ordered_json readJson(const std::filesystem::path &file);
}
