#pragma once

#include "FlightData.h"

#include <Result.h>

#include <QByteArray>
#include <QString>

#include <nlohmann/json.hpp>

/// @brief Writing and strict reading of flight.json, the document shared with the library server.
///
/// Writing is compact, one line, keys in their fixed order; every sample carries all fifteen keys
/// (absent values as null), while `meta` leaves `created`, `place` and `video` out when absent.
/// Reading fails the whole document on a missing required key or a value of the wrong type;
/// unknown keys are ignored.
namespace FlightFile {

/// Failure codes of the "flightfile" domain.
enum Code { NotJSON = 1, BadShape = 2, NotFinite = 3, WriteFailed = 4, ReadFailed = 5 };

[[nodiscard]] nlohmann::ordered_json toJSON(const FlightData &data);
[[nodiscard]] Result<FlightData> fromJSON(const nlohmann::ordered_json &json);

/// Compact UTF-8 bytes; fails on a number that is not finite.
[[nodiscard]] Result<QByteArray> encode(const FlightData &data);
[[nodiscard]] Result<FlightData> decode(const QByteArray &bytes);

/// Writes `dir`/flight.json atomically: either the whole new file or the old state.
[[nodiscard]] Result<void> write(const FlightData &data, const QString &dir);
[[nodiscard]] Result<FlightData> read(const QString &path);

inline constexpr const char *fileName = "flight.json";

} // namespace FlightFile
