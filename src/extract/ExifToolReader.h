#pragma once

#include "FlightData.h"
#include "ToolLocator.h"

#include <CancelToken.h>
#include <Result.h>

#include <QByteArray>
#include <QCoroTask>

#include <nlohmann/json.hpp>

#include <optional>

/// @brief Reads the telemetry embedded in a clip through exiftool's JSON (`-ee3 -G3 -j`), where
/// each timed sample's keys carry its document number ("Doc12:GPSLatitude").
namespace TelemetryParser {

/// Runs exiftool on the clip; its output counts whatever the exit status, and only an empty
/// output is a failure ("exiftool exited <status>" with the tail of its standard error).
[[nodiscard]] QCoro::Task<Result<QByteArray>> runExifTool(ToolLocator::ExifTool tool, QString path,
                                                          CancelToken *token = nullptr);

/// `source` is the clip's file name.
[[nodiscard]] Result<FlightData> parseExifTool(const QByteArray &data, const QString &source);

// The value rules, exposed for their tests.
/// A number, "37 deg 46' 29.64\" N", or a text whose first piece is a number.
[[nodiscard]] std::optional<double> coordinateValue(const nlohmann::json &value);
/// A number, or the first white-space separated piece of a text ("123.4 m").
[[nodiscard]] std::optional<double> numberValue(const nlohmann::json &value);
/// A number, "1.50 s", or "0:01:30.5".
[[nodiscard]] std::optional<double> timeValue(const nlohmann::json &value);

} // namespace TelemetryParser
