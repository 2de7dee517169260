#pragma once

#include "CancelToken.h"
#include "FlightData.h"
#include "IngestQueue.h"
#include "Result.h"

#include <QString>

#include <QCoroTask>

#include <functional>
#include <optional>

class GeocodeClient;

/// @brief Turns one clip into a processed folder: flight.json, proxy.mp4 and thumb.jpg.
namespace IngestPipeline {

enum class Step { Telemetry, Proxy, Probe, Geocode, Thumbnail, Write };
[[nodiscard]] QString stepName(Step step);

inline const QString errorDomain = QStringLiteral("ingest");
/// "<step>: <what went wrong>"
[[nodiscard]] Failure stepError(Step step, const Failure &underlying);

struct Input {
    QString source;              ///< the clip
    std::optional<QString> srt;  ///< its sidecar
    QString dir;                 ///< the folder to fill
    GeocodeClient *geocoder = nullptr;  ///< null: no place-name lookup
    std::function<void(double)> onProgress;  ///< fraction of the proxy encode
};

struct Output {
    QString dir;
    FlightData data;
};

[[nodiscard]] QCoro::Task<Result<Output>> run(Input input, CancelToken *cancel = nullptr);

/// The pipeline as the import queue's processing step; place names through `geocoder` when
/// the queue allows them.
[[nodiscard]] IngestQueue::Process asQueueStep(GeocodeClient *geocoder);

} // namespace IngestPipeline
