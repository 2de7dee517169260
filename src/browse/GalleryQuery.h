#pragma once

#include "FlightRecords.h"
#include "GalleryEnums.h"

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

#include <optional>

/// @brief The gallery's controls: seven the pilot keeps between runs, and `showHidden`, which
/// every start turns off again.
struct GalleryControls {
    QString search;
    SortOrder sort = SortOrder::newest;
    GroupMode group = GroupMode::place;
    TimeOfDayFilter tod = TimeOfDayFilter::all;
    QString modelFilter = QStringLiteral("all");  ///< "all" means no filter
    bool clipsOnly = false;
    GalleryLayout layout = GalleryLayout::grid;
    bool showHidden = false;

    bool operator==(const GalleryControls &) const = default;
};

/// @brief What the query needs of one flight that only changes when the list does: worked out
/// once per load so that a redraw parses no dates and formats no labels.
struct FlightFacts {
    std::optional<qint64> when;  ///< the parsed date on a wall-clock scale (GalleryDates::WallClock::seconds)
    QString dateLabel;           ///< medium date and short time, or "Unknown date"
    QString dayKey;              ///< "yyyy-MM-dd", "" when undated
    QString monthKey;            ///< "yyyy-MM", "" when undated
    QString model;               ///< `model` trimmed of spaces and tabs, "" when absent
    QString haystack;            ///< lower-cased "<date label> <model> <place> <id>" for search

    [[nodiscard]] static FlightFacts of(const Flight &flight);
};

/// @brief What the load filled in: the flights in manifest order with their facts, and the maps
/// keyed by flight id.
struct GalleryLibrary {
    QList<Flight> flights;
    QList<FlightFacts> facts;  ///< parallel to `flights`
    QHash<QString, int> clipCounts;
    QSet<QString> hiddenIDs;
    QHash<QString, TimeOfDayFilter> todCache;
    QStringList models;  ///< the model filter's choices, kept with the list

    /// Replaces the list and works out the facts of each flight.
    void setFlights(QList<Flight> list);
    /// Takes a flight out of every part; false when it isn't there.
    bool removeFlight(const QString &id);
    [[nodiscard]] int indexOf(const QString &id) const;
};

/// @brief One section of the result: its sort key, its header ("" draws none) and its flights as
/// indices into `GalleryLibrary::flights`, in display order.
struct FlightGroup {
    QString id;
    QString label;
    QList<int> items;
    bool operator==(const FlightGroup &) const = default;
};

/// @brief A removable chip of the filter bar.
struct FilterChip {
    QString key;
    QString label;
    bool operator==(const FilterChip &) const = default;
};

/// @brief The statistics row over what passes.
struct GalleryStats {
    QString count;            ///< "12", or "3 of 5" while a filter is on
    QString airtime;          ///< "3h 20m"
    QString distance;         ///< whole kilometres or miles
    QString distanceCaption;  ///< "km" or "mi"
    QString dateSpan;         ///< "May 2024", "Jan 2023 – May 2024", or "" without dates
    bool operator==(const GalleryStats &) const = default;
};

/// @brief The pure query behind the gallery: which flights pass, in which order and sections,
/// and what the controls say about it. Every function depends on its arguments only.
namespace GalleryQuery {

/// Indices of the flights that pass, in display order (stable: ties keep manifest order).
[[nodiscard]] QList<int> filtered(const GalleryLibrary &library, const GalleryControls &controls);
/// The sections of `filtered`, in their order.
[[nodiscard]] QList<FlightGroup> groups(const GalleryLibrary &library, const QList<int> &filtered,
                                        GroupMode group, SortOrder sort);

[[nodiscard]] bool filtersActive(const GalleryControls &controls);
/// The distinct trimmed models of all flights, sorted; "All models" ("all") stands above them.
[[nodiscard]] QStringList models(const QList<Flight> &flights);
[[nodiscard]] QList<FilterChip> activeChips(const GalleryControls &controls, int hiddenCount);
[[nodiscard]] int activeFilterCount(const GalleryControls &controls);
/// Resets the one input a chip stands for; an unknown key changes nothing.
void removeChip(GalleryControls &controls, const QString &key);
/// "Clear all" and "Reset": every filter and the grouping back to their defaults; search, sort
/// and layout stay.
void clearAll(GalleryControls &controls);

[[nodiscard]] GalleryStats stats(const GalleryLibrary &library, const QList<int> &filtered,
                                 bool filtersActive, bool metric);

// Words of the controls.
[[nodiscard]] QString sortLabel(SortOrder sort);
[[nodiscard]] QString groupLabel(GroupMode group);
[[nodiscard]] QString todLabel(TimeOfDayFilter tod);      ///< "All", "Day", "Golden", "Night"
[[nodiscard]] QString todChipLabel(TimeOfDayFilter tod);  ///< "Daytime", "Golden hour", "Night"

/// Spaces and tabs off both ends (not other white space).
[[nodiscard]] QString trimmed(const QString &text);

} // namespace GalleryQuery
