#pragma once

#include "FlightData.h"

#include <Result.h>

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

/// @brief Reads the bracketed telemetry of a DJI subtitle sidecar, one line at a time, so a
/// sidecar of any length is read without holding it whole.
///
/// A line is the text up to a line feed that does not follow a carriage return (CR LF is one
/// character and ends no line). Cue lines ("00:00:01,500 -->") start a block; at the next cue or
/// at the end each block is searched for its position, altitudes and exposure. Cues at 0,0 are
/// counted as missing fixes and give no sample.
class SrtReader
{
public:
    /// One line, without its line feed.
    void addLine(const QString &line);
    /// Closes the last block and computes the flight, or says why there is none.
    [[nodiscard]] Result<FlightData> finish(const std::optional<QString> &model, std::optional<double> duration,
                                            const QString &source);

    [[nodiscard]] qint64 zeroFixes() const { return m_zeroFixes; }

private:
    void closeBlock();

    std::optional<double> m_time;
    QStringList m_lines;
    qint64 m_zeroFixes = 0;
    std::vector<TelemetrySample> m_samples;
};

namespace TelemetryParser {

/// `text` is the whole sidecar; `model` and `duration` come from the clip's probe, `source` is
/// the clip's file name.
[[nodiscard]] Result<FlightData> parseSRT(const QString &text, const std::optional<QString> &model,
                                          std::optional<double> duration, const QString &source);

/// Streams the sidecar at `path`; text that is not UTF-8 fails as a read error, not as telemetry.
[[nodiscard]] Result<FlightData> parseSRTFile(const QString &path, const std::optional<QString> &model,
                                              std::optional<double> duration, const QString &source);

} // namespace TelemetryParser
