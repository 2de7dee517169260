#pragma once

#include "Database.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

/// @brief The list of committed flights: their manifest entries, sizes, flags and clips.
///
/// The files of a flight live on disk; this index is what lists and totals are made from, so
/// listing 10,000 flights never opens 10,000 files. The manifest body is built once per change.
class FlightIndex
{
public:
    struct Row {
        std::string id;
        std::string entry;   ///< the flight's manifest entry, compact JSON
        std::string source;  ///< the original file's stem
        std::int64_t bytes = 0;
        bool sample = false;
        std::optional<std::string> clips;  ///< clips.json as stored
    };
    struct SampleTotals {
        std::int64_t count = 0;
        std::int64_t bytes = 0;
        std::int64_t restorable = 0;
    };

    explicit FlightIndex(Database &db) : m_db(db) {}

    [[nodiscard]] std::vector<std::string> ids();
    [[nodiscard]] bool exists(const std::string &id);
    [[nodiscard]] std::optional<Row> row(const std::string &id);
    [[nodiscard]] std::int64_t usedBytes();
    /// Adds or replaces a flight; a replaced flight keeps its hidden flag.
    bool put(const Row &row);
    bool remove(const std::string &id);
    /// The whole `manifest.json` body, shared until the next change.
    [[nodiscard]] std::shared_ptr<const std::string> manifest();

    [[nodiscard]] std::vector<std::string> hidden();
    /// False when there is no such flight.
    bool setHidden(const std::string &id, bool hidden);
    bool setClips(const std::string &id, const std::string &clips);
    /// Changes a flight's manifest entry in place and sets its size; false when there is no such flight.
    bool updateEntry(const std::string &id, std::int64_t bytes,
                     const std::function<void(nlohmann::ordered_json &entry)> &change);
    /// Flights with clips, in id order: id, manifest entry, clips.
    [[nodiscard]] std::vector<Row> withClips();

    [[nodiscard]] SampleTotals samples();
    [[nodiscard]] std::vector<std::string> sampleIds();
    [[nodiscard]] std::vector<std::string> parkedIds();
    /// Moves a sample's row aside (removed) or back (restored).
    bool park(const std::string &id);
    bool unpark(const std::string &id);

private:
    void changed();
    /// Copies a row from one table to the other and deletes it from the first, in one step.
    bool moveRow(const char *copy, const char *remove, const std::string &id);

    Database &m_db;
    std::mutex m_cacheMutex;
    std::shared_ptr<const std::string> m_manifest;
    std::uint64_t m_generation = 0;
};
