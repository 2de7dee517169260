#pragma once

#include "FlightData.h"
#include "FlightFile.h"
#include "Result.h"

#include <cstdio>
#include <cstdlib>

/// @brief What every harness asserts beyond "no crash": the promises a reader makes about what
/// it gives back. A broken promise aborts, so libFuzzer keeps the input as a finding.
namespace FuzzCheck {

inline void require(bool holds, const char *promise)
{
    if (!holds) {
        std::fprintf(stderr, "broken promise: %s\n", promise);
        std::abort();
    }
}

/// A flight that flight.json writes, and reads back unchanged.
inline void roundTrips(const FlightData &data)
{
    const auto bytes = FlightFile::encode(data);
    require(bytes.ok(), "a reading can be written as flight.json");
    const auto back = FlightFile::decode(*bytes);
    require(back.ok(), "written flight.json reads back");
    require(*back == data, "flight.json reads back what was written");
}

/// A failure with words, or a flight read from elsewhere whose count matches its track.
inline void readable(const Result<FlightData> &data)
{
    if (!data.ok()) {
        require(!data.errorText().isEmpty(), "a failure has words");
        return;
    }
    require(data->meta.samples == static_cast<std::int64_t>(data->track.size()), "samples counts the track");
    roundTrips(*data);
}

} // namespace FuzzCheck
