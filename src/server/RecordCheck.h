#pragma once

#include <nlohmann/json.hpp>

#include <functional>
#include <string>

/// @brief What the server stores of clips and stories must read back as the client's records.
///
/// The client decodes a flight's whole clip list at once: one clip with a text for a time, or
/// without a label, makes the list unreadable and the player shows none. So these are checked
/// before anything is stored, and a failure names the entry and what is wrong with it. Keys the
/// server doesn't know are not looked at: they are kept as sent.
namespace RecordCheck {
/// Why a flight's clips.json can't be stored; empty when it can.
[[nodiscard]] std::string clips(const nlohmann::ordered_json &document);
/// Why a story's items can't be stored; empty when they can. An item without a label gets an
/// empty one. `knownFlight` tells whether an item may name that flight.
[[nodiscard]] std::string storyItems(nlohmann::ordered_json &items,
                                     const std::function<bool(const std::string &)> &knownFlight);
}
