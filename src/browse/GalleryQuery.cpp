#include "GalleryQuery.h"

#include "GalleryDates.h"
#include "Units.h"

#include <algorithm>
#include <limits>

namespace GalleryQuery {

namespace {

constexpr qint64 distantPast = std::numeric_limits<qint64>::min();

double pathOf(const Flight &f) { return f.pathLength.value_or(0); }
double altitudeOf(const Flight &f) { return f.relAlt ? f.relAlt->max.value_or(0) : 0; }
double durationOf(const Flight &f) { return f.duration.value_or(0); }

// The section a flight falls in: a number to find it by, and its id.
struct SectionOf {
    qint64 number = 0;    ///< julian day or month count for dated sections; unused for places
    const QString *id = nullptr;
    std::optional<qint64> when;  ///< for the label of a dated section
};

const QString unknownPlace = QStringLiteral("Unknown location");
const QString unknownDay = QStringLiteral("0000-00-00");
const QString unknownMonth = QStringLiteral("0000-00");

SectionOf sectionOf(const Flight &flight, const FlightFacts &facts, GroupMode group)
{
    if (group == GroupMode::place)
        return {0, (!flight.place || flight.place->isEmpty()) ? &unknownPlace : &*flight.place, std::nullopt};
    const bool byMonth = group == GroupMode::month;
    if (!facts.when)
        return {-1, byMonth ? &unknownMonth : &unknownDay, std::nullopt};
    const QDate day = GalleryDates::dateOf(*facts.when);
    return {byMonth ? qint64(day.year()) * 12 + day.month() : day.toJulianDay(),
            byMonth ? &facts.monthKey : &facts.dayKey, facts.when};
}

QString sectionLabel(const SectionOf &section, GroupMode group)
{
    if (group == GroupMode::place)
        return *section.id;
    if (!section.when)
        return QStringLiteral("Unknown date");
    const QDate day = GalleryDates::dateOf(*section.when);
    return group == GroupMode::month ? GalleryDates::monthLabel(day) : GalleryDates::dayLabel(day);
}

template <typename Key>
void sortBy(QList<int> &rows, Key key, bool descending)
{
    std::stable_sort(rows.begin(), rows.end(), [&](int a, int b) {
        return descending ? key(b) < key(a) : key(a) < key(b);
    });
}

} // namespace

QString trimmed(const QString &text)
{
    qsizetype begin = 0;
    qsizetype end = text.size();
    auto blank = [](QChar c) { return c == u' ' || c == u'\t'; };
    while (begin < end && blank(text[begin]))
        ++begin;
    while (end > begin && blank(text[end - 1]))
        --end;
    return (begin == 0 && end == text.size()) ? text : text.mid(begin, end - begin);
}

QList<int> filtered(const GalleryLibrary &library, const GalleryControls &c)
{
    const QString query = trimmed(c.search.toLower());
    const bool anyHidden = !library.hiddenIDs.isEmpty();
    const bool byModel = c.modelFilter != QLatin1String("all");
    QList<int> rows;
    rows.reserve(library.flights.size());
    for (int i = 0; i < library.flights.size(); ++i) {
        const Flight &flight = library.flights[i];
        const FlightFacts &facts = library.facts[i];
        if (anyHidden ? library.hiddenIDs.contains(flight.id) != c.showHidden : c.showHidden)
            continue;
        if (c.clipsOnly && library.clipCounts.value(flight.id, 0) <= 0)
            continue;
        if (c.tod != TimeOfDayFilter::all && library.todCache.value(flight.id, TimeOfDayFilter::day) != c.tod)
            continue;
        if (byModel && facts.model != c.modelFilter)
            continue;
        if (!query.isEmpty() && !facts.haystack.contains(query))
            continue;
        rows.append(i);
    }

    const auto &flights = library.flights;
    const auto &facts = library.facts;
    switch (c.sort) {
    case SortOrder::newest:
        sortBy(rows, [&](int i) { return facts[i].when.value_or(distantPast); }, true);
        break;
    case SortOrder::oldest:
        sortBy(rows, [&](int i) { return facts[i].when.value_or(distantPast); }, false);
        break;
    case SortOrder::longestPath:
        sortBy(rows, [&](int i) { return pathOf(flights[i]); }, true);
        break;
    case SortOrder::highestAltitude:
        sortBy(rows, [&](int i) { return altitudeOf(flights[i]); }, true);
        break;
    case SortOrder::longestDuration:
        sortBy(rows, [&](int i) { return durationOf(flights[i]); }, true);
        break;
    }
    return rows;
}

QList<FlightGroup> groups(const GalleryLibrary &library, const QList<int> &rows, GroupMode group, SortOrder sort)
{
    if (group == GroupMode::flat)
        return {FlightGroup{QStringLiteral("all"), QString(), rows}};

    QList<FlightGroup> sections;
    QHash<QString, qsizetype> byName;   // places
    QHash<qint64, qsizetype> byNumber;  // days and months
    for (const int row : rows) {
        const SectionOf section = sectionOf(library.flights[row], library.facts[row], group);
        qsizetype *found = group == GroupMode::place ? &byName[*section.id] : &byNumber[section.number];
        if (*found == 0) {
            sections.append(FlightGroup{*section.id, sectionLabel(section, group), {}});
            *found = sections.size();  // one past, so that 0 means "new"
        }
        sections[*found - 1].items.append(row);
    }

    if (group == GroupMode::place) {
        std::sort(sections.begin(), sections.end(), [](const FlightGroup &a, const FlightGroup &b) {
            if (a.items.size() != b.items.size())
                return a.items.size() > b.items.size();
            return a.id < b.id;
        });
    } else {
        const bool ascending = sort == SortOrder::oldest;
        std::sort(sections.begin(), sections.end(), [ascending](const FlightGroup &a, const FlightGroup &b) {
            return ascending ? a.id < b.id : b.id < a.id;
        });
    }
    return sections;
}

bool filtersActive(const GalleryControls &c)
{
    return c.clipsOnly || c.showHidden || c.tod != TimeOfDayFilter::all
           || c.modelFilter != QLatin1String("all") || !trimmed(c.search).isEmpty();
}

QStringList models(const QList<Flight> &flights)
{
    QSet<QString> seen;
    for (const Flight &flight : flights) {
        if (!flight.model)
            continue;
        const QString model = trimmed(*flight.model);
        if (!model.isEmpty())
            seen.insert(model);
    }
    QStringList list(seen.begin(), seen.end());
    std::sort(list.begin(), list.end());
    return list;
}

QList<FilterChip> activeChips(const GalleryControls &c, int hiddenCount)
{
    QList<FilterChip> chips;
    if (c.group != GroupMode::place)
        chips.append({QStringLiteral("group"), QStringLiteral("Grouped: ") + groupLabel(c.group)});
    if (c.tod != TimeOfDayFilter::all)
        chips.append({QStringLiteral("tod"), todChipLabel(c.tod)});
    if (c.clipsOnly)
        chips.append({QStringLiteral("clips"), QStringLiteral("★ Clips only")});
    if (c.modelFilter != QLatin1String("all"))
        chips.append({QStringLiteral("model"), c.modelFilter});
    if (c.showHidden)
        chips.append({QStringLiteral("hidden"), QStringLiteral("Hidden only (%1)").arg(hiddenCount)});
    return chips;
}

int activeFilterCount(const GalleryControls &c)
{
    return int(c.group != GroupMode::place) + int(c.tod != TimeOfDayFilter::all) + int(c.clipsOnly)
           + int(c.modelFilter != QLatin1String("all")) + int(c.showHidden);
}

void removeChip(GalleryControls &c, const QString &key)
{
    if (key == QLatin1String("group"))
        c.group = GroupMode::place;
    else if (key == QLatin1String("tod"))
        c.tod = TimeOfDayFilter::all;
    else if (key == QLatin1String("clips"))
        c.clipsOnly = false;
    else if (key == QLatin1String("model"))
        c.modelFilter = QStringLiteral("all");
    else if (key == QLatin1String("hidden"))
        c.showHidden = false;
}

void clearAll(GalleryControls &c)
{
    c.group = GroupMode::place;
    c.tod = TimeOfDayFilter::all;
    c.modelFilter = QStringLiteral("all");
    c.clipsOnly = false;
    c.showHidden = false;
}

GalleryStats stats(const GalleryLibrary &library, const QList<int> &rows, bool active, bool metric)
{
    GalleryStats out;
    out.count = active ? QStringLiteral("%1 of %2").arg(rows.size()).arg(library.flights.size())
                       : QString::number(rows.size());

    double seconds = 0;
    double metres = 0;
    std::optional<qint64> first;
    std::optional<qint64> last;
    for (const int row : rows) {
        seconds += durationOf(library.flights[row]);
        metres += pathOf(library.flights[row]);
        if (const auto when = library.facts[row].when) {
            first = first ? std::min(*first, *when) : *when;
            last = last ? std::max(*last, *when) : *when;
        }
    }
    const int whole = Units::truncated(seconds);
    out.airtime = QStringLiteral("%1h %2m").arg(whole / 3600).arg((whole % 3600) / 60);
    out.distance = QString::asprintf("%.0f", metres * Units::distanceFactor(metric));
    out.distanceCaption = Units::distanceUnit(metric);
    if (first) {
        const QString from = GalleryDates::monthYear(GalleryDates::dateOf(*first));
        const QString to = GalleryDates::monthYear(GalleryDates::dateOf(*last));
        out.dateSpan = from == to ? from : from + QStringLiteral(" – ") + to;
    }
    return out;
}

QString sortLabel(SortOrder sort)
{
    switch (sort) {
    case SortOrder::newest: return QStringLiteral("Newest first");
    case SortOrder::oldest: return QStringLiteral("Oldest first");
    case SortOrder::longestPath: return QStringLiteral("Longest path");
    case SortOrder::highestAltitude: return QStringLiteral("Highest altitude");
    case SortOrder::longestDuration: return QStringLiteral("Longest duration");
    }
    return {};
}

QString groupLabel(GroupMode group)
{
    switch (group) {
    case GroupMode::day: return QStringLiteral("Day");
    case GroupMode::month: return QStringLiteral("Month");
    case GroupMode::place: return QStringLiteral("Place");
    case GroupMode::flat: return QStringLiteral("Flat");
    }
    return {};
}

QString todLabel(TimeOfDayFilter tod)
{
    switch (tod) {
    case TimeOfDayFilter::all: return QStringLiteral("All");
    case TimeOfDayFilter::day: return QStringLiteral("Day");
    case TimeOfDayFilter::golden: return QStringLiteral("Golden");
    case TimeOfDayFilter::night: return QStringLiteral("Night");
    }
    return {};
}

QString todChipLabel(TimeOfDayFilter tod)
{
    switch (tod) {
    case TimeOfDayFilter::all: return {};
    case TimeOfDayFilter::day: return QStringLiteral("Daytime");
    case TimeOfDayFilter::golden: return QStringLiteral("Golden hour");
    case TimeOfDayFilter::night: return QStringLiteral("Night");
    }
    return {};
}

} // namespace GalleryQuery
