#pragma once

#include "ClipRecords.h"

/// A pool clip with just the fields a test cares about.
struct ClipMaker {
    PoolClip c;
    ClipMaker(QString flightId, double start, double end)
    {
        c.flightId = std::move(flightId);
        c.start = start;
        c.end = end;
    }
    ClipMaker &id(QString clipId) { c.clipId = std::move(clipId); return *this; }
    ClipMaker &date(QString d) { c.date = std::move(d); return *this; }
    ClipMaker &place(QString p) { c.place = std::move(p); return *this; }
    ClipMaker &suggested(std::optional<bool> a = true) { c.autoSuggested = a; return *this; }
    ClipMaker &vertical(std::optional<bool> v) { c.vertical = v; return *this; }
    ClipMaker &thumb(QString t) { c.thumb = std::move(t); return *this; }
    operator PoolClip() const { return c; }
};
