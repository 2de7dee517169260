// Flights, their clips, moments and track, the hidden set and the sample flights.
#include "APIClient.h"

#include "APIError.h"
#include "Wire.h"

namespace {
QString flightFile(const QString &flightId, const char *file)
{
    return QStringLiteral("flights/") + flightId + QLatin1Char('/') + QLatin1String(file);
}

// Lists that only enrich a screen: a missing file (404) or a body that can't be read is an
// empty list; every other failure is judged as usual.
template <typename T>
Result<QList<T>> optionalList(const Result<QByteArray> &body, const char *key)
{
    if (!body) {
        if (APIError::isStatus(body.failure(), 404))
            return QList<T>{};
        return body.failure();
    }
    return Wire::decodeOptionalList<T>(*body, key).value_or(QList<T>{});
}
} // namespace

QCoro::Task<Result<QList<Flight>>> APIClient::fetchManifest(CancelToken *cancel) const
{
    const auto body = co_await getJSON(QStringLiteral("manifest.json"), cancel);
    if (!body)
        co_return body.failure();
    co_return APIError::decoded(Wire::decodeList<Flight>(*body, "flights"));
}

QCoro::Task<Result<QHash<QString, int>>> APIClient::fetchClipCounts(CancelToken *cancel) const
{
    const auto body = co_await getJSON(QStringLiteral("api/clips"), cancel);
    if (!body)
        co_return body.failure();
    const auto refs = Wire::decodeList<ClipRef>(*body, "clips");
    if (!refs)
        co_return APIError::decoding();
    // Only kept clips count: suggestions not yet kept, and entries without a flight, are skipped.
    QHash<QString, int> counts;
    for (const ClipRef &ref : *refs) {
        if (ref.flightId && !ref.autoSuggested.value_or(false))
            ++counts[*ref.flightId];
    }
    co_return counts;
}

QCoro::Task<Result<QList<PoolClip>>> APIClient::fetchPoolClips(CancelToken *cancel) const
{
    const auto body = co_await getJSON(QStringLiteral("api/clips"), cancel);
    if (!body)
        co_return body.failure();
    co_return APIError::decoded(Wire::decodeList<PoolClip>(*body, "clips"));
}

QCoro::Task<Result<QList<Moment>>> APIClient::fetchMoments(QString flightId, CancelToken *cancel) const
{
    co_return optionalList<Moment>(co_await getJSON(flightFile(flightId, "moments.json"), cancel), "moments");
}

QCoro::Task<Result<QList<Clip>>> APIClient::fetchClips(QString flightId, CancelToken *cancel) const
{
    co_return optionalList<Clip>(co_await getJSON(flightFile(flightId, "clips.json"), cancel), "clips");
}

QCoro::Task<Result<QList<TrackSample>>> APIClient::fetchTrack(QString flightId, CancelToken *cancel) const
{
    const auto body = co_await getJSON(flightFile(flightId, "flight.json"), cancel);
    if (!body)
        co_return body.failure();
    // A flight whose telemetry can't be read plays without a path rather than failing.
    co_return Wire::decodeList<TrackSample>(*body, "track").value_or(QList<TrackSample>{});
}

QCoro::Task<Result<void>> APIClient::saveClips(QString flightId, QList<Clip> clips) const
{
    Wire::OrderedJson body = Wire::OrderedJson::object();
    Wire::put(body, "flightId", flightId);
    Wire::put(body, "clips", clips);
    co_return statusOnly(co_await sendJSON("POST", QStringLiteral("api/clips/") + flightId, Wire::dump(body)));
}

QCoro::Task<Result<QSet<QString>>> APIClient::fetchHidden(CancelToken *cancel) const
{
    const auto body = co_await getJSON(QStringLiteral("api/hidden"), cancel);
    if (!body)
        co_return body.failure();
    const auto ids = Wire::decodeList<QString>(*body, "ids");
    if (!ids)
        co_return APIError::decoding();
    co_return QSet<QString>(ids->begin(), ids->end());
}

QCoro::Task<Result<void>> APIClient::setHidden(QString flightId, bool hidden) const
{
    Wire::OrderedJson body = Wire::OrderedJson::object();
    Wire::put(body, "hidden", hidden);
    co_return statusOnly(co_await sendJSON("POST", QStringLiteral("api/hidden/") + flightId, Wire::dump(body)));
}

QCoro::Task<Result<void>> APIClient::deleteFlight(QString flightId) const
{
    co_return statusOnly(co_await sendEmpty("DELETE", QStringLiteral("api/flights/") + flightId));
}

QCoro::Task<Result<SamplesStatus>> APIClient::fetchSamples(CancelToken *cancel) const
{
    const auto body = co_await getJSON(QStringLiteral("api/samples"), cancel);
    if (!body)
        co_return body.failure();
    co_return APIError::decoded(Wire::decode<SamplesStatus>(*body));
}

QCoro::Task<Result<void>> APIClient::removeSamples() const
{
    co_return statusOnly(co_await sendEmpty("POST", QStringLiteral("api/samples/remove")));
}

QCoro::Task<Result<void>> APIClient::restoreSamples() const
{
    co_return statusOnly(co_await sendEmpty("POST", QStringLiteral("api/samples/restore")));
}
