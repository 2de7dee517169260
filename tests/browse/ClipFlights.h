#pragma once

#include "APIClient.h"
#include "ClipsBrowserModel.h"
#include "ClipsBrowserStore.h"
#include "TestServer.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

class QSettings;

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

/// Two flights of clips, shown in this order (newest flight first, then by start):
/// Cedar Ridge (upright video) c1 1–3 s and the suggestion s2 4–6.5 s; Saltmarsh Lagoon (wide)
/// c1 2–5 s and the suggestion s1 6–8.5 s. The lagoon's clips.json carries a key of its own.
namespace TwoFlights {
inline const std::string lagoon = "20240512_093000_0001";
inline const std::string ridge = "20240601_184512_0002";
[[nodiscard]] std::vector<ClipFlight> flights();
} // namespace TwoFlights

/// The clips section over a real library: a server holding `flights`, a client of it, and the
/// section's store and model, loaded.
struct ClipsSection {
    TestServer server;
    std::shared_ptr<APIClient> client;
    std::unique_ptr<ClipsBrowserStore> store;
    std::unique_ptr<ClipsBrowserModel> browser;

    explicit ClipsSection(const std::vector<ClipFlight> &flights, std::chrono::milliseconds toastStand = Toast::standTime,
                          QSettings *settings = nullptr);
    /// Kept-alive connections close before the server stops, so its stop doesn't wait them out.
    ~ClipsSection();
};
