#pragma once

#include <CancelToken.h>
#include <FlightData.h>

#include <QCoroTask>
#include <QDateTime>
#include <QHash>
#include <QString>

#include <memory>
#include <optional>
#include <vector>

/// @brief What an original tells about its flight, for the sidecars of the clips cut from it.
struct SourceTelemetry {
    std::optional<QString> sidecarText;    ///< the original's .SRT as the aircraft wrote it
    std::vector<TelemetrySample> samples;  ///< from the sidecar, else from the embedded track
    std::optional<QDateTime> started;      ///< the wall-clock time of the original's first frame

    /// The samples in [`start`, `end`) seconds, timed from `start`, led by the one still in
    /// effect at `start` (placed at 0) when no sample falls exactly there.
    [[nodiscard]] std::vector<TelemetrySample> span(double start, double end) const;
    [[nodiscard]] bool isEmpty() const { return !sidecarText && samples.empty(); }
};

/// @brief Reads each original's telemetry once per batch: a story often takes several clips from
/// one flight. Shared by the batch and the story that follows it.
class SourceTelemetryCache
{
public:
    /// The sidecar beside the original when there is one (read with our own reader), else the
    /// track embedded in it (through exiftool). A clip without either gives an empty value.
    static QCoro::Task<SourceTelemetry> read(std::shared_ptr<SourceTelemetryCache> cache, QString original,
                                             CancelToken *token);

private:
    QHash<QString, SourceTelemetry> m_known;
};
