#pragma once

#include "FlightData.h"
#include "FlightIndex.h"
#include "Library.h"
#include "Result.h"
#include "Shot.h"

#include <atomic>
#include <filesystem>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

/// @brief Analyses the library's flights: names their shots from the telemetry and stores them
/// as moments.json and as suggested clips in clips.json.
///
/// A commit analyses its flight at once (it takes milliseconds for a usual flight). Flights that
/// were never analysed, or by an older version, are done by one background thread started with
/// the server, which serves meanwhile. Files are replaced under the library's folder lock, the
/// one the clip routes take, so a pilot's save and an analysis never interleave.
class FlightAnalyst
{
public:
    /// What an analysis found and stored.
    struct Outcome {
        bool stored = false;  ///< the flight was read and its files written
        int suggested = 0;    ///< suggested clips now in clips.json
        int moments = 0;      ///< shots found

        /// The commit's "analysis" words: "2 clips suggested", or "ok" when there is none.
        [[nodiscard]] std::string text() const;
    };
    /// The shots of one flight.json and the length they are measured against.
    struct Findings {
        std::vector<Shot> shots;
        double duration = 0;
    };

    FlightAnalyst(const Library &library, FlightIndex &index, std::mutex &folderLock, bool log);
    ~FlightAnalyst();
    FlightAnalyst(const FlightAnalyst &) = delete;
    FlightAnalyst &operator=(const FlightAnalyst &) = delete;

    /// Analyses flight `id` now and stores the result. Safe from any thread.
    Outcome analyse(const std::string &id);
    /// Starts the background pass over flights whose analysis is missing or out of date.
    void startSweep();
    /// Ends the background pass after the flight in hand; returns once it has ended.
    void stop();
    /// True until the background pass has been through every flight (or was stopped).
    [[nodiscard]] bool sweeping() const { return m_sweeping; }

    [[nodiscard]] static Findings findings(const FlightData &flight);
    /// Reads and analyses a flight.json without storing anything.
    [[nodiscard]] static Result<Findings> findings(const std::filesystem::path &flightFile);

private:
    void sweep();
    [[nodiscard]] bool upToDate(const std::string &id) const;

    const Library &m_library;
    FlightIndex &m_index;
    std::mutex &m_folderLock;
    const bool m_log;
    std::thread m_thread;
    std::atomic<bool> m_stop{false};
    std::atomic<bool> m_sweeping{false};
};
