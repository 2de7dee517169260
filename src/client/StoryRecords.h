#pragma once

#include "Wire.h"

#include <QList>
#include <QString>
#include <QUuid>

#include <optional>

// Stories (projects on the wire), their entries and their cut lists.

/// @brief One entry of a story.
///
/// `uid` is local: made fresh at every construction and every decoding and never encoded, so
/// one clip can stand twice in a story and rows keep their identity across edits. It takes
/// part in equality, so two decoded copies of one item are never equal.
struct ReelItem {
    std::optional<QString> flightId;
    std::optional<QString> clipId;
    double start = 0;  ///< "in"
    double end = 0;    ///< "out"
    QString label;
    QUuid uid = QUuid::createUuid();

    template <typename Self, typename Visitor>
    static void fields(Self &self, Visitor &v)
    {
        v.opt("flightId", self.flightId)
         .opt("clipId", self.clipId)
         .req("in", self.start)
         .req("out", self.end)
         .req("label", self.label);
    }

    [[nodiscard]] static std::optional<ReelItem> fromJson(const Wire::Json &j);
    [[nodiscard]] Wire::OrderedJson toJson() const;
    bool operator==(const ReelItem &) const = default;
};

/// Items are equal only with equal `uid`s, so the uid alone is a consistent hash.
[[nodiscard]] inline size_t qHash(const ReelItem &item, size_t seed = 0) noexcept
{
    return qHash(item.uid, seed);
}

/// @brief A story with its entries.
struct Project {
    QString id;
    QString title;
    std::optional<QString> notes;
    QList<ReelItem> items;

    template <typename Self, typename Visitor>
    static void fields(Self &self, Visitor &v)
    {
        v.req("id", self.id)
         .req("title", self.title)
         .opt("notes", self.notes)
         .req("items", self.items);
    }

    [[nodiscard]] static std::optional<Project> fromJson(const Wire::Json &j);
    [[nodiscard]] Wire::OrderedJson toJson() const;
    bool operator==(const Project &) const = default;
};

/// @brief A story in a list.
struct ProjectSummary {
    /// @brief The clip whose thumbnail stands for the story.
    struct CoverRef {
        std::optional<QString> flightId;
        std::optional<QString> clipId;

        template <typename Self, typename Visitor>
        static void fields(Self &self, Visitor &v)
        {
            v.opt("flightId", self.flightId)
             .opt("clipId", self.clipId);
        }

        [[nodiscard]] static std::optional<CoverRef> fromJson(const Wire::Json &j);
        [[nodiscard]] Wire::OrderedJson toJson() const;
        bool operator==(const CoverRef &) const = default;
    };

    QString id;
    QString title;
    int count = 0;
    std::optional<QString> created;  ///< ISO 8601
    std::optional<QString> updated;  ///< ISO 8601
    std::optional<CoverRef> cover;

    template <typename Self, typename Visitor>
    static void fields(Self &self, Visitor &v)
    {
        v.req("id", self.id)
         .req("title", self.title)
         .req("count", self.count)
         .opt("created", self.created)
         .opt("updated", self.updated)
         .opt("cover", self.cover);
    }

    [[nodiscard]] static std::optional<ProjectSummary> fromJson(const Wire::Json &j);
    [[nodiscard]] Wire::OrderedJson toJson() const;
    bool operator==(const ProjectSummary &) const = default;

    /// "1 clip", "3 clips", then " · MMM d" of `updated` when that reads as ISO 8601.
    [[nodiscard]] QString subtitle() const;
};

/// @brief One entry of a cut list.
struct EDLItem {
    int seq = 0;
    std::optional<QString> flightId;
    std::optional<QString> source;  ///< original file name
    std::optional<double> start;    ///< "in"
    std::optional<double> end;      ///< "out"
    QString label;
    QString output;  ///< output file name

    template <typename Self, typename Visitor>
    static void fields(Self &self, Visitor &v)
    {
        v.req("seq", self.seq)
         .opt("flightId", self.flightId)
         .opt("source", self.source)
         .opt("in", self.start)
         .opt("out", self.end)
         .req("label", self.label)
         .req("output", self.output);
    }

    [[nodiscard]] static std::optional<EDLItem> fromJson(const Wire::Json &j);
    [[nodiscard]] Wire::OrderedJson toJson() const;
    bool operator==(const EDLItem &) const = default;
};

/// @brief A story's cut list, for cutting from the originals.
struct EDL {
    QString id;
    QString title;
    std::optional<QString> slug;
    QList<EDLItem> items;
    int count = 0;

    template <typename Self, typename Visitor>
    static void fields(Self &self, Visitor &v)
    {
        v.req("id", self.id)
         .req("title", self.title)
         .opt("slug", self.slug)
         .req("items", self.items)
         .req("count", self.count);
    }

    [[nodiscard]] static std::optional<EDL> fromJson(const Wire::Json &j);
    [[nodiscard]] Wire::OrderedJson toJson() const;
    bool operator==(const EDL &) const = default;
};

/// @brief A cut list together with its text as the server sent it (pretty, keys sorted).
struct EDLDocument {
    EDL edl;
    QString text;  ///< empty when the body couldn't be written out again
};
