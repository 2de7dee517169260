#pragma once

#include "ClipRecords.h"
#include "FlightRecords.h"
#include "RenderRecords.h"
#include "StoryRecords.h"

#include <QByteArray>
#include <QList>

#include <functional>

/// @brief Plausible replies of every kind, and a decoder for each that reports whether the
/// body decoded and, if so, whether the record reads back what it writes.
namespace SampleBodies {

struct Sample {
    const char *name;
    QByteArray body;
    /// Decodes `body`; true when it decoded. A decoded record is written out and read again,
    /// and a difference is reported through `roundTripBroke`.
    std::function<bool(const QByteArray &body, bool &roundTripBroke)> decode;
};

template <typename T>
bool roundTrip(const std::optional<T> &value, bool &broke)
{
    if (!value)
        return false;
    const QByteArray again = Wire::dump(value->toJson());
    const auto reread = Wire::decode<T>(again);
    broke = !reread || reread->toJson() != value->toJson();
    return true;
}

template <typename T>
auto record()
{
    return [](const QByteArray &body, bool &broke) { return roundTrip(Wire::decode<T>(body), broke); };
}

template <typename T>
auto listUnder(const char *key)
{
    return [key](const QByteArray &body, bool &broke) {
        const auto list = Wire::decodeList<T>(body, key);
        if (!list)
            return false;
        for (const T &item : *list) {
            if (!roundTrip(std::optional<T>(item), broke) || broke)
                break;
        }
        return true;
    };
}

inline QList<Sample> all()
{
    return {
        {"manifest", R"({"flights":[{"id":"DJI_20260501_0001","date":"2026-05-01T18:30:00","model":"Mini 4 Pro","duration":612.4,"pathLength":2301.5,"maxSpeed":14.2,"relAlt":{"min":-2.1,"max":118.9},"centroid":{"lat":46.02,"lon":7.75},"place":"Zermatt","video":{"w":1920,"h":1080,"vertical":false},"samples":6124,"p480":true}]})",
         record<Manifest>()},
        {"clips", R"({"clips":[{"id":"c1","in":12.5,"out":20,"label":"Ridge","auto":true,"why":"fast climb"},{"id":"c2","in":30,"out":41.25,"label":""}]})",
         listUnder<Clip>("clips")},
        {"moments", R"({"moments":[{"id":"m1","in":1,"out":4.5,"score":0.92,"why":"orbit"},{"in":7,"out":9}]})",
         listUnder<Moment>("moments")},
        {"pool", R"({"clips":[{"flightId":"F1","clipId":"c1","in":1,"out":2,"label":"a","thumb":"flights/F1/clipthumb_c1_10.jpg","place":"Zermatt","date":"2026-05-01T18:30:00","p480":false,"vertical":true,"auto":true,"why":"w"}]})",
         listUnder<PoolClip>("clips")},
        {"track", R"({"meta":{"v":1},"track":[{"t":0,"lat":46.02,"lon":7.75,"relAlt":1.5,"yaw":-12,"speed":3.2,"climb":0.1},{"t":0.1,"lat":46.021,"lon":7.751}]})",
         listUnder<TrackSample>("track")},
        {"samples", R"({"count":3,"bytes":734003200,"restorable":1})", record<SamplesStatus>()},
        {"project", R"({"id":"p1","title":"Alps","notes":"n","items":[{"flightId":"F1","clipId":"c1","in":1,"out":2.5,"label":"a"},{"in":3,"out":4,"label":""}]})",
         record<Project>()},
        {"projects", R"({"projects":[{"id":"p1","title":"Alps","count":2,"created":"2026-05-01T10:00:00Z","updated":"2026-05-02T10:00:00Z","cover":{"flightId":"F1","clipId":"c1"}}]})",
         listUnder<ProjectSummary>("projects")},
        {"edl", R"({"id":"p1","title":"Alps","slug":"alps","count":1,"items":[{"seq":1,"flightId":"F1","source":"DJI_0001.MP4","in":1,"out":2,"label":"a","output":"01-a.mp4"}]})",
         record<EDL>()},
        {"render", R"({"status":"done","id":"r1","progress":1,"url":"/r/1.mp4","rendered":"2026-05-01T10:00:00","duration":31.5,"stale":false,"error":"","aspect":"landscape","settings":{"track":"t","beatSync":"bars","xfade":0.2,"hud":true}})",
         record<RenderStatus>()},
        {"renders", R"({"renders":[{"id":"r1","url":"/r/1.mp4","rendered":"x","duration":3,"size":123456789,"stale":true,"aspect":"vertical","projectId":"p1","projectTitle":"Alps"}]})",
         listUnder<RenderEntry>("renders")},
        {"share", R"({"token":"tk","url":"https://x/s/tk","projectId":"p1","renderId":"r1","title":"T","description":"D","duration":30,"created":"2026-05-01T10:00:00","views":10,"hearts":2})",
         record<ReelShare>()},
        {"suggestions", R"({"suggestions":[{"title":"A","description":"B"},{"title":"C"}]})",
         listUnder<ShareCopySuggestion>("suggestions")},
    };
}
} // namespace SampleBodies
