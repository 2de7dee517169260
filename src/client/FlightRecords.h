#pragma once

#include "Wire.h"

#include <QDateTime>
#include <QList>
#include <QString>

#include <optional>

// Flights as the library lists them, their telemetry track and the account's sample flights.

/// @brief Relative altitude range of a flight, metres.
struct RelAlt {
    std::optional<double> min;
    std::optional<double> max;

    template <typename Self, typename Visitor>
    static void fields(Self &self, Visitor &v)
    {
        v.opt("min", self.min)
         .opt("max", self.max);
    }

    [[nodiscard]] static std::optional<RelAlt> fromJson(const Wire::Json &j);
    [[nodiscard]] Wire::OrderedJson toJson() const;
    bool operator==(const RelAlt &) const = default;
};

/// @brief Middle of a flight, degrees.
struct Centroid {
    double lat = 0;
    double lon = 0;

    template <typename Self, typename Visitor>
    static void fields(Self &self, Visitor &v)
    {
        v.req("lat", self.lat)
         .req("lon", self.lon);
    }

    [[nodiscard]] static std::optional<Centroid> fromJson(const Wire::Json &j);
    [[nodiscard]] Wire::OrderedJson toJson() const;
    bool operator==(const Centroid &) const = default;
};

/// @brief Facts of a flight's proxy video.
struct VideoInfo {
    std::optional<int> w;
    std::optional<int> h;
    std::optional<bool> vertical;

    template <typename Self, typename Visitor>
    static void fields(Self &self, Visitor &v)
    {
        v.opt("w", self.w)
         .opt("h", self.h)
         .opt("vertical", self.vertical);
    }

    [[nodiscard]] static std::optional<VideoInfo> fromJson(const Wire::Json &j);
    [[nodiscard]] Wire::OrderedJson toJson() const;
    bool operator==(const VideoInfo &) const = default;
};

/// @brief One flight in the library list; identity is `id`.
struct Flight {
    QString id;
    std::optional<QString> date;  ///< local clock time at the flight, "yyyy-MM-dd'T'HH:mm:ss"
    std::optional<QString> model;
    std::optional<double> duration;    ///< seconds
    std::optional<double> pathLength;  ///< metres
    std::optional<double> maxSpeed;    ///< metres per second
    std::optional<RelAlt> relAlt;
    std::optional<Centroid> centroid;
    std::optional<QString> place;
    std::optional<VideoInfo> video;
    std::optional<int> samples;
    std::optional<bool> p480;  ///< a "proxy_480.mp4" exists

    template <typename Self, typename Visitor>
    static void fields(Self &self, Visitor &v)
    {
        v.req("id", self.id)
         .opt("date", self.date)
         .opt("model", self.model)
         .opt("duration", self.duration)
         .opt("pathLength", self.pathLength)
         .opt("maxSpeed", self.maxSpeed)
         .opt("relAlt", self.relAlt)
         .opt("centroid", self.centroid)
         .opt("place", self.place)
         .opt("video", self.video)
         .opt("samples", self.samples)
         .opt("p480", self.p480);
    }

    [[nodiscard]] static std::optional<Flight> fromJson(const Wire::Json &j);
    [[nodiscard]] Wire::OrderedJson toJson() const;
    bool operator==(const Flight &) const = default;

    /// "m:ss" of the whole seconds; minutes aren't folded into hours (75:00). Absent reads 0:00.
    [[nodiscard]] QString durationText() const;
    /// Medium date and short time, or "Unknown date".
    [[nodiscard]] QString dateText() const;
    /// `date` read as local clock time; nullopt when absent or unreadable.
    [[nodiscard]] std::optional<QDateTime> parsedDate() const;
    /// Highest relative altitude in feet, or metres when `metric`; truncated.
    [[nodiscard]] int maxAltitudeDisplay(bool metric) const;
    /// Top speed in mph, or km/h when `metric`; truncated.
    [[nodiscard]] int maxSpeedDisplay(bool metric) const;
};

/// @brief The reply of "manifest.json".
struct Manifest {
    QList<Flight> flights;

    template <typename Self, typename Visitor>
    static void fields(Self &self, Visitor &v)
    {
        v.req("flights", self.flights);
    }

    [[nodiscard]] static std::optional<Manifest> fromJson(const Wire::Json &j);
    [[nodiscard]] Wire::OrderedJson toJson() const;
    bool operator==(const Manifest &) const = default;
};

/// @brief One point of a flight's path as read from its "flight.json".
struct TrackSample {
    double t = 0;
    double lat = 0;
    double lon = 0;
    std::optional<double> relAlt;
    std::optional<double> yaw;
    std::optional<double> speed;
    std::optional<double> climb;

    template <typename Self, typename Visitor>
    static void fields(Self &self, Visitor &v)
    {
        v.req("t", self.t)
         .req("lat", self.lat)
         .req("lon", self.lon)
         .opt("relAlt", self.relAlt)
         .opt("yaw", self.yaw)
         .opt("speed", self.speed)
         .opt("climb", self.climb);
    }

    [[nodiscard]] static std::optional<TrackSample> fromJson(const Wire::Json &j);
    [[nodiscard]] Wire::OrderedJson toJson() const;
    bool operator==(const TrackSample &) const = default;
};

/// @brief A point of the altitude graph (not a wire record).
struct AltPoint {
    int id = 0;
    double t = 0;
    double alt = 0;
    bool operator==(const AltPoint &) const = default;
};

/// @brief The sample flights of an account: how many, their size, how many can come back.
struct SamplesStatus {
    int count = 0;
    qint64 bytes = 0;
    int restorable = 0;

    template <typename Self, typename Visitor>
    static void fields(Self &self, Visitor &v)
    {
        v.req("count", self.count)
         .req("bytes", self.bytes)
         .req("restorable", self.restorable);
    }

    [[nodiscard]] static std::optional<SamplesStatus> fromJson(const Wire::Json &j);
    [[nodiscard]] Wire::OrderedJson toJson() const;
    bool operator==(const SamplesStatus &) const = default;
};
