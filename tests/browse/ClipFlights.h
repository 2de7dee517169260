#pragma once

#include "TestServer.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

/// A flight for the clips tests: its id carries its date, and `clips` is its whole clips.json.
struct ClipFlight {
    std::string id;
    std::string place;
    bool vertical = false;
    nlohmann::ordered_json clips = nlohmann::ordered_json::object();
};

/// Uploads each flight to `server` with a real proxy of `seconds` (one encode, shared) and its
/// telemetry, then stores its clips.json through the library's own route.
void putClipFlights(TestServer &server, const std::vector<ClipFlight> &flights, double seconds = 12.0);

/// One entry of a clips.json; `why` makes it a suggestion.
nlohmann::ordered_json clipEntry(const std::string &id, double in, double out, const std::string &label,
                                 const std::string &why = {});

/// The flight's clips.json as the server now holds it.
nlohmann::json storedClips(const TestServer &server, const std::string &flightId);
