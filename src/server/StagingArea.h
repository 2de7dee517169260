#pragma once

#include "FlightIndex.h"
#include "Library.h"

#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>

/// @brief The staged upload: files of a flight arrive one by one, and a commit makes the
/// flight exist in one step.
///
/// An upload streams into tmp/ and is renamed into staging/<id>/ only when complete, so a
/// client that drops mid-file leaves nothing staged. A commit checks `flight.json`, then
/// renames the staging folder to flights/<id> and records the flight: a flight is whole or
/// absent, never half there. Every rename of flight folders happens under `folderLock()`.
class StagingArea
{
public:
    /// HTTP status and, for failures, the words of `detail`.
    struct Outcome {
        int status = 200;
        std::string detail;
        std::int64_t bytes = 0;
        bool bodyRead = false;  ///< the whole request body was read, kept or not
        [[nodiscard]] bool ok() const { return status == 200; }
    };
    using Sink = std::function<bool(const char *data, std::size_t length)>;
    /// Feeds the body to the sink; false when the body ended early.
    using BodyReader = std::function<bool(const Sink &sink)>;

    StagingArea(const Library &library, FlightIndex &index, std::int64_t quota)
        : m_library(library), m_index(index), m_quota(quota)
    {
    }

    Outcome receive(const std::string &id, const std::string &name, std::optional<std::int64_t> declaredLength,
                    const BodyReader &read);
    Outcome commit(const std::string &id);
    void discard(const std::string &id);
    /// Brings the index and the flight folders back in step after the server was stopped
    /// between the two steps of a commit or a delete: a folder without a record is recorded
    /// when it is a whole flight and removed otherwise; a record without a folder is dropped.
    void recover();

    /// Bytes the library may still take for flight `replacingId` (whose committed bytes are
    /// about to be replaced); a large number when there is no quota.
    [[nodiscard]] std::int64_t available(const std::string &replacingId);
    [[nodiscard]] std::int64_t quota() const { return m_quota; }
    [[nodiscard]] std::mutex &folderLock() { return m_folders; }

private:
    const Library &m_library;
    FlightIndex &m_index;
    const std::int64_t m_quota;
    std::mutex m_folders;
};
