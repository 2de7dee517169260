#pragma once

#include "Wire.h"

#include <QList>
#include <QString>

#include <optional>

// Clips and moments of one flight, and the library-wide clip list.

/// @brief One clip of a flight; identity is `id`. On the wire `start`/`end` are "in"/"out".
struct Clip {
    QString id;
    double start = 0;  ///< seconds
    double end = 0;    ///< seconds
    QString label;     ///< may be empty
    std::optional<bool> autoSuggested;  ///< "auto": suggested by the server and not yet kept
    std::optional<QString> why;         ///< the server's reason for a suggestion

    template <typename Self, typename Visitor>
    static void fields(Self &self, Visitor &v)
    {
        v.req("id", self.id)
         .req("in", self.start)
         .req("out", self.end)
         .req("label", self.label)
         .opt("auto", self.autoSuggested)
         .opt("why", self.why);
    }

    [[nodiscard]] static std::optional<Clip> fromJson(const Wire::Json &j);
    [[nodiscard]] Wire::OrderedJson toJson() const;
    bool operator==(const Clip &) const = default;
};

/// @brief A moment the server detected in a flight; read only.
struct Moment {
    std::optional<QString> mid;  ///< "id"
    double start = 0;            ///< "in"
    double end = 0;              ///< "out"
    std::optional<double> score;
    std::optional<QString> why;

    template <typename Self, typename Visitor>
    static void fields(Self &self, Visitor &v)
    {
        v.opt("id", self.mid)
         .req("in", self.start)
         .req("out", self.end)
         .opt("score", self.score)
         .opt("why", self.why);
    }

    [[nodiscard]] static std::optional<Moment> fromJson(const Wire::Json &j);
    [[nodiscard]] Wire::OrderedJson toJson() const;
    bool operator==(const Moment &) const = default;

    /// For lists: `mid`, else start + "-" + end (so equal times without an id are one moment).
    [[nodiscard]] QString identity() const;
};

/// @brief The slim view of one entry of "api/clips", used for counting.
struct ClipRef {
    std::optional<QString> flightId;
    std::optional<bool> autoSuggested;  ///< "auto"

    template <typename Self, typename Visitor>
    static void fields(Self &self, Visitor &v)
    {
        v.opt("flightId", self.flightId)
         .opt("auto", self.autoSuggested);
    }

    [[nodiscard]] static std::optional<ClipRef> fromJson(const Wire::Json &j);
    [[nodiscard]] Wire::OrderedJson toJson() const;
    bool operator==(const ClipRef &) const = default;
};

/// @brief One clip in the library-wide clip list.
struct PoolClip {
    QString flightId;
    std::optional<QString> clipId;
    double start = 0;  ///< "in"
    double end = 0;    ///< "out"
    QString label;
    std::optional<QString> thumb;  ///< thumbnail path relative to the base URL
    std::optional<QString> place;
    std::optional<QString> date;
    std::optional<bool> p480;
    std::optional<bool> vertical;
    std::optional<bool> autoSuggested;  ///< "auto"
    std::optional<QString> why;

    template <typename Self, typename Visitor>
    static void fields(Self &self, Visitor &v)
    {
        v.req("flightId", self.flightId)
         .opt("clipId", self.clipId)
         .req("in", self.start)
         .req("out", self.end)
         .req("label", self.label)
         .opt("thumb", self.thumb)
         .opt("place", self.place)
         .opt("date", self.date)
         .opt("p480", self.p480)
         .opt("vertical", self.vertical)
         .opt("auto", self.autoSuggested)
         .opt("why", self.why);
    }

    [[nodiscard]] static std::optional<PoolClip> fromJson(const Wire::Json &j);
    [[nodiscard]] Wire::OrderedJson toJson() const;
    bool operator==(const PoolClip &) const = default;

    /// For lists: flightId + "-" + (clipId or empty) + "-" + start.
    [[nodiscard]] QString identity() const;
};
