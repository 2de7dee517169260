// The client's reading of every reply body of the library, and its edits of a flight's raw
// clips.json. The first byte picks the reply; the rest is the body. A record that decodes
// must encode and decode back to itself (what the client saves is what it read).
#include "APIClient.h"
#include "ClipEdits.h"
#include "ClipRecords.h"
#include "FlightRecords.h"
#include "FuzzCheck.h"
#include "Me.h"
#include "RenderRecords.h"
#include "StoryRecords.h"
#include "Wire.h"

#include <QDateTime>

namespace {
template <typename T>
void list(const QByteArray &body, const char *key)
{
    const auto decoded = Wire::decodeList<T>(body, key);
    if (!decoded)
        return;
    Wire::OrderedJson doc = Wire::OrderedJson::object();
    Wire::put(doc, key, *decoded);
    const QByteArray written = Wire::dump(doc);
    FuzzCheck::require(!written.isEmpty(), "a decoded list can be written");
    const auto again = Wire::decodeList<T>(written, key);
    FuzzCheck::require(again && *again == *decoded, "a written list decodes to itself");
}

template <typename T>
void optionalList(const QByteArray &body, const char *key)
{
    const auto decoded = Wire::decodeOptionalList<T>(body, key);
    if (decoded)
        list<T>(Wire::dump(Wire::OrderedJson{{key, Wire::encode(*decoded)}}), key);
}

template <typename T>
void record(const QByteArray &body)
{
    const auto decoded = Wire::decode<T>(body);
    if (!decoded)
        return;
    const QByteArray written = Wire::dump(decoded->toJson());
    FuzzCheck::require(!written.isEmpty(), "a decoded record can be written");
    const auto again = Wire::decode<T>(written);
    FuzzCheck::require(again && *again == *decoded, "a written record decodes to itself");
}

/// Items get a fresh local id at every decoding, so a story compares without them.
void project(const QByteArray &body)
{
    const auto decoded = Wire::decode<Project>(body);
    if (!decoded)
        return;
    const auto again = Wire::decode<Project>(Wire::dump(decoded->toJson()));
    FuzzCheck::require(again && again->items.size() == decoded->items.size() && again->title == decoded->title,
                       "a written story decodes to itself");
    for (qsizetype i = 0; i < decoded->items.size(); ++i) {
        const auto &a = decoded->items[i];
        const auto &b = again->items[i];
        FuzzCheck::require(a.flightId == b.flightId && a.clipId == b.clipId && a.start == b.start && a.end == b.end
                               && a.label == b.label,
                           "a written story item decodes to itself");
    }
}

/// The clips browser's three edits leave an object that can be written back whole.
void clipEdits(const QByteArray &body)
{
    auto doc = Wire::parse(body);
    if (!doc || !doc->is_object())
        return;
    for (const std::optional<QString> &clipId : {std::optional(QStringLiteral("c1")), std::optional<QString>()}) {
        PoolClip clip;
        clip.flightId = QStringLiteral("20240102_030405_0007");
        clip.clipId = clipId;
        clip.start = 1.5;
        clip.end = 4.25;
        Wire::Json edited = *doc;
        ClipEdits::keep(edited, clip);
        ClipEdits::retrim(edited, clip, 2.0, 3.0);
        ClipEdits::toss(edited, clip);
        FuzzCheck::require(edited.is_object() && edited["clips"].is_array() && edited["dismissed"].is_array(),
                           "an edited clips.json keeps its lists");
        FuzzCheck::require(!edited.dump().empty(), "an edited clips.json can be written");
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0)
        return 0;
    const QByteArray body(reinterpret_cast<const char *>(data + 1), static_cast<qsizetype>(size - 1));
    switch (data[0] % 18) {
    case 0: list<Flight>(body, "flights"); break;
    case 1: list<ClipRef>(body, "clips"); break;
    case 2: list<PoolClip>(body, "clips"); break;
    case 3: optionalList<Moment>(body, "moments"); break;
    case 4: optionalList<Clip>(body, "clips"); break;
    case 5: list<TrackSample>(body, "track"); break;
    case 6: list<QString>(body, "ids"); break;
    case 7: record<SamplesStatus>(body); break;
    case 8: list<ProjectSummary>(body, "projects"); break;
    case 9: project(body); break;
    case 10: record<EDL>(body); break;
    case 11: record<RenderStatus>(body); break;
    case 12: list<RenderEntry>(body, "renders"); break;
    case 13: record<ReelShare>(body); list<ReelShare>(body, "shares"); break;
    case 14: list<ShareCopySuggestion>(body, "suggestions"); break;
    case 15: {
        const auto me = Me::fromJson(body);
        FuzzCheck::require(me.ok() || !me.errorText().isEmpty(), "a failure has words");
        break;
    }
    case 16:
        if (const auto cookie = APIClient::webSessionCookieFor(QStringLiteral("http://127.0.0.1:8484"), body,
                                                               QDateTime::currentDateTimeUtc()))
            FuzzCheck::require(!cookie->name().isEmpty() && !cookie->toRawForm().contains('\n'),
                               "a session cookie is one header line");
        break;
    default: clipEdits(body); break;
    }
    return 0;
}
