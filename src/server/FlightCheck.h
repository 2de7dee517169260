#pragma once

#include "Result.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <optional>
#include <string>

/// @brief Reading an uploaded `flight.json` and turning its meta into the library's list entry.
namespace FlightCheck {
/// Largest `flight.json` accepted, in bytes.
inline constexpr std::int64_t maxFlightFileBytes = 64LL * 1024 * 1024;

/// Reads the whole document with the flight file reader the program writes it with; on
/// success its `meta` object as written.
[[nodiscard]] Result<nlohmann::ordered_json> readMeta(const std::filesystem::path &file);
/// The entry of `manifest.json` for a flight, from its id and meta.
[[nodiscard]] nlohmann::ordered_json manifestEntry(const std::string &id, const nlohmann::ordered_json &meta,
                                                   bool p480);
/// The original file's name without its extension, from meta `source`.
[[nodiscard]] std::string sourceStem(const nlohmann::ordered_json &meta);
/// "yyyy-MM-ddTHH:mm:ss" from an id of the form yyyyMMdd_HHmmss_N.
[[nodiscard]] std::optional<std::string> dateFromId(const std::string &id);
}
