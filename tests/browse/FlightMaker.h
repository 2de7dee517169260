#pragma once

#include "FlightRecords.h"

/// A flight with just the fields a test cares about.
struct FlightMaker {
    Flight f;
    explicit FlightMaker(QString id) { f.id = std::move(id); }
    FlightMaker &date(QString d) { f.date = std::move(d); return *this; }
    FlightMaker &place(QString p) { f.place = std::move(p); return *this; }
    FlightMaker &model(QString m) { f.model = std::move(m); return *this; }
    FlightMaker &path(double metres) { f.pathLength = metres; return *this; }
    FlightMaker &duration(double s) { f.duration = s; return *this; }
    FlightMaker &alt(std::optional<double> max) { f.relAlt = RelAlt{std::nullopt, max}; return *this; }
    FlightMaker &at(double lat, double lon) { f.centroid = Centroid{lat, lon}; return *this; }
    operator Flight() const { return f; }
};
