// Clip edits of the clips browser: clips.json is read, changed as a generic tree and written
// back whole, so keys this client doesn't know survive. Every failure is a plain false.
#include "APIClient.h"

#include "ClipEdits.h"
#include "Wire.h"

QCoro::Task<bool> APIClient::editClips(PoolClip clip, std::function<void(Wire::Json &)> change) const
{
    // Both requests are made up front: nothing of this client is touched after a suspension.
    const auto network = m_network;
    const QNetworkRequest read = request(url(QStringLiteral("flights/") + clip.flightId + QStringLiteral("/clips.json")));
    const QNetworkRequest write = jsonRequest(QStringLiteral("api/clips/") + clip.flightId);

    const auto body = co_await perform(network, read, QByteArrayLiteral("GET"), {}, nullptr);
    if (!body)
        co_return false;
    auto doc = Wire::parse(*body);
    if (!doc || !doc->is_object())
        co_return false;
    change(*doc);
    QByteArray text;
    try {
        text = QByteArray::fromStdString(doc->dump());
    } catch (const nlohmann::json::exception &) {
        co_return false;
    }
    // The body is the whole clips.json object, not the flightId + clips body of saveClips.
    const auto sent = co_await perform(network, write, QByteArrayLiteral("POST"), text, nullptr);
    co_return sent.ok();
}

QCoro::Task<bool> APIClient::keepClip(PoolClip clip) const
{
    return editClips(clip, [clip](Wire::Json &doc) { ClipEdits::keep(doc, clip); });
}

QCoro::Task<bool> APIClient::tossClip(PoolClip clip) const
{
    return editClips(clip, [clip](Wire::Json &doc) { ClipEdits::toss(doc, clip); });
}

QCoro::Task<bool> APIClient::retrimClip(PoolClip clip, double start, double end) const
{
    return editClips(clip, [clip, start, end](Wire::Json &doc) { ClipEdits::retrim(doc, clip, start, end); });
}
