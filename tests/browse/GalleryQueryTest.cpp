#include "GalleryPrefs.h"
#include "GalleryQuery.h"

#include "FlightMaker.h"

#include <gtest/gtest.h>

#include <QSettings>
#include <QTemporaryDir>

using namespace GalleryQuery;

namespace {
GalleryLibrary libraryOf(QList<Flight> flights)
{
    GalleryLibrary library;
    library.setFlights(std::move(flights));
    return library;
}

QStringList idsOf(const GalleryLibrary &library, const QList<int> &rows)
{
    QStringList ids;
    for (const int row : rows)
        ids.append(library.flights[row].id);
    return ids;
}

QStringList run(const GalleryLibrary &library, const GalleryControls &controls)
{
    return idsOf(library, filtered(library, controls));
}
} // namespace

TEST(GalleryFilter, HiddenPassShowsEitherTheOrdinaryOrOnlyTheHidden)
{
    auto library = libraryOf({FlightMaker("a"), FlightMaker("b"), FlightMaker("c")});
    library.hiddenIDs = {"b"};
    GalleryControls c;
    c.sort = SortOrder::longestPath;  // all ties: manifest order
    EXPECT_EQ(run(library, c), QStringList({"a", "c"}));
    c.showHidden = true;
    EXPECT_EQ(run(library, c), QStringList({"b"}));

    // Everything hidden: the plain count reads 0 and nothing counts as a filter.
    library.hiddenIDs = {"a", "b", "c"};
    c.showHidden = false;
    const auto rows = filtered(library, c);
    EXPECT_TRUE(rows.isEmpty());
    EXPECT_FALSE(filtersActive(c));
    EXPECT_EQ(stats(library, rows, filtersActive(c), true).count, "0");
}

TEST(GalleryFilter, ClipsTimeOfDayAndModel)
{
    auto library = libraryOf({FlightMaker("a").model(" Mavic 3\t"), FlightMaker("b").model("  "),
                              FlightMaker("c").model("mavic 3"), FlightMaker("d")});
    library.clipCounts = {{"a", 2}, {"b", 0}, {"zz", 5}};
    library.todCache = {{"a", TimeOfDayFilter::golden}, {"b", TimeOfDayFilter::night}};
    GalleryControls c;
    c.sort = SortOrder::longestPath;

    c.clipsOnly = true;
    EXPECT_EQ(run(library, c), QStringList({"a"}));  // a count of 0 is no clip
    c.clipsOnly = false;

    // A flight missing from the cache counts as daytime.
    c.tod = TimeOfDayFilter::day;
    EXPECT_EQ(run(library, c), QStringList({"c", "d"}));
    c.tod = TimeOfDayFilter::night;
    EXPECT_EQ(run(library, c), QStringList({"b"}));
    c.tod = TimeOfDayFilter::all;

    // The model compares trimmed and case-sensitive; blanks are no model at all.
    c.modelFilter = "Mavic 3";
    EXPECT_EQ(run(library, c), QStringList({"a"}));
    c.modelFilter = "";
    EXPECT_EQ(run(library, c), QStringList({"b", "d"}));
    EXPECT_EQ(models(library.flights), QStringList({"Mavic 3", "mavic 3"}));
}

TEST(GalleryFilter, SearchIsOneLowerCasedSubstringOfDateModelPlaceAndId)
{
    auto library = libraryOf({FlightMaker("DJI_0001").model("Mavic 3").place("Iceland").date("2024-05-01T10:00:00"),
                              FlightMaker("DJI_0002").model("Mini 4").place("Iceland coast"),
                              FlightMaker("DJI_0003").place("Norway")});
    GalleryControls c;
    c.sort = SortOrder::longestPath;
    c.search = "  MAVIC ";
    EXPECT_EQ(run(library, c), QStringList({"DJI_0001"}));
    c.search = "unknown";  // the undated label is searchable
    EXPECT_EQ(run(library, c), QStringList({"DJI_0002", "DJI_0003"}));
    c.search = "mavic iceland";  // not split into words: the model comes before the place
    EXPECT_TRUE(run(library, c).isEmpty());
    c.search = "mavic 3 iceland";
    EXPECT_EQ(run(library, c), QStringList({"DJI_0001"}));
    c.search = "dji_000";
    EXPECT_EQ(run(library, c).size(), 3);
    c.search = " \t ";
    EXPECT_EQ(run(library, c).size(), 3);
    EXPECT_FALSE(filtersActive(c));
}

TEST(GallerySort, StableWithMissingValuesWhereTheyBelong)
{
    auto library = libraryOf({FlightMaker("undated1").path(5), FlightMaker("may").date("2024-05-01T10:00:00"),
                              FlightMaker("tie1").date("2024-06-01T10:00:00").alt(std::nullopt).path(5),
                              FlightMaker("bad").date("2024-06-01 10:00:00").alt(30),
                              FlightMaker("tie2").date("2024-06-01T10:00:00").alt(30).duration(5),
                              FlightMaker("undated2").path(7)});
    GalleryControls c;
    c.sort = SortOrder::newest;
    EXPECT_EQ(run(library, c), QStringList({"tie1", "tie2", "may", "undated1", "bad", "undated2"}));
    c.sort = SortOrder::oldest;
    EXPECT_EQ(run(library, c), QStringList({"undated1", "bad", "undated2", "may", "tie1", "tie2"}));
    c.sort = SortOrder::longestPath;
    EXPECT_EQ(run(library, c), QStringList({"undated2", "undated1", "tie1", "may", "bad", "tie2"}));
    // An altitude range without a maximum counts as 0, like no range.
    c.sort = SortOrder::highestAltitude;
    EXPECT_EQ(run(library, c), QStringList({"bad", "tie2", "undated1", "may", "tie1", "undated2"}));
    c.sort = SortOrder::longestDuration;
    EXPECT_EQ(run(library, c).first(), "tie2");
}

TEST(GalleryGroups, DatedSectionsRunByKeyWithUnknownLastUnlessOldest)
{
    auto library = libraryOf({FlightMaker("mar-short").date("2024-03-02T09:00:00").path(10),
                              FlightMaker("nodate").path(99),
                              FlightMaker("may").date("2024-05-20T09:00:00").path(1),
                              FlightMaker("mar-long").date("2024-03-30T09:00:00").path(50)});
    GalleryControls c;
    c.sort = SortOrder::longestPath;
    c.group = GroupMode::month;
    auto rows = filtered(library, c);
    auto sections = groups(library, rows, c.group, c.sort);
    ASSERT_EQ(sections.size(), 3);
    EXPECT_EQ(sections[0].id, "2024-05");
    EXPECT_EQ(sections[0].label, "May 2024");
    EXPECT_EQ(sections[1].id, "2024-03");
    EXPECT_EQ(idsOf(library, sections[1].items), QStringList({"mar-long", "mar-short"}));  // longest first
    EXPECT_EQ(sections[2].id, "0000-00");
    EXPECT_EQ(sections[2].label, "Unknown date");

    c.sort = SortOrder::oldest;
    c.group = GroupMode::day;
    rows = filtered(library, c);
    sections = groups(library, rows, c.group, c.sort);
    ASSERT_EQ(sections.size(), 4);
    EXPECT_EQ(sections[0].id, "0000-00-00");
    EXPECT_EQ(sections[1].id, "2024-03-02");
    EXPECT_EQ(sections[1].label, "Sat, Mar 2, 2024");
    EXPECT_EQ(sections[3].id, "2024-05-20");

    const auto flat = groups(library, rows, GroupMode::flat, c.sort);
    ASSERT_EQ(flat.size(), 1);
    EXPECT_EQ(flat[0].id, "all");
    EXPECT_TRUE(flat[0].label.isEmpty());
    EXPECT_EQ(flat[0].items, rows);
}

TEST(GalleryGroups, PlacesRunByCountThenNameUnknownIncluded)
{
    QList<Flight> flights;
    auto add = [&](const QString &place, int n) {
        for (int i = 0; i < n; ++i) {
            Flight f;
            f.id = place + QString::number(i);
            if (!place.isEmpty())
                f.place = place;
            flights.append(f);
        }
    };
    add("Zermatt", 4);
    add("Bergen", 3);
    add("Alta", 3);
    add("alps", 1);
    add("", 1);
    flights.last().place = QString();  // an empty name is no place either
    add("", 1);
    auto library = libraryOf(flights);
    GalleryControls c;
    const auto sections = groups(library, filtered(library, c), GroupMode::place, SortOrder::oldest);
    QStringList order;
    for (const auto &s : sections)
        order.append(s.label);
    // Case-sensitive: "Unknown location" and "alps" sort after the capitals only by their letters.
    EXPECT_EQ(order, QStringList({"Zermatt", "Alta", "Bergen", "Unknown location", "alps"}));
}

TEST(GalleryChips, OrderLabelsRemovalAndCounts)
{
    GalleryControls c;
    EXPECT_TRUE(activeChips(c, 0).isEmpty());
    EXPECT_EQ(activeFilterCount(c), 0);

    c.group = GroupMode::flat;
    c.tod = TimeOfDayFilter::golden;
    c.clipsOnly = true;
    c.modelFilter = "Mini 4";
    c.showHidden = true;
    c.search = "iceland";
    c.sort = SortOrder::oldest;
    c.layout = GalleryLayout::map;
    const QList<FilterChip> expected{{"group", "Grouped: Flat"}, {"tod", "Golden hour"}, {"clips", "★ Clips only"},
                                     {"model", "Mini 4"}, {"hidden", "Hidden only (3)"}};
    EXPECT_EQ(activeChips(c, 3), expected);
    EXPECT_EQ(activeFilterCount(c), 5);

    GalleryControls removed = c;
    removeChip(removed, "nonsense");
    EXPECT_EQ(removed, c);
    removeChip(removed, "group");
    EXPECT_EQ(removed.group, GroupMode::place);  // place, not flat, is ungrouped
    removeChip(removed, "model");
    EXPECT_EQ(removed.modelFilter, "all");
    EXPECT_EQ(activeFilterCount(removed), 3);

    clearAll(c);
    EXPECT_EQ(activeFilterCount(c), 0);
    EXPECT_EQ(c.search, "iceland");
    EXPECT_EQ(c.sort, SortOrder::oldest);
    EXPECT_EQ(c.layout, GalleryLayout::map);
    // The search alone: filters are active although the badge reads zero.
    EXPECT_TRUE(filtersActive(c));
}

TEST(GalleryStats, CountAirtimeDistanceAndSpan)
{
    auto library = libraryOf({FlightMaker("a").duration(7199.9).path(1500).date("2023-01-10T10:00:00"),
                              FlightMaker("b").duration(4800.5).path(1000.4).date("2024-05-02T10:00:00"),
                              FlightMaker("c").date("2024-05-01T10:00:00"), FlightMaker("d"), FlightMaker("e")});
    library.hiddenIDs = {"d", "e"};
    GalleryControls c;
    auto rows = filtered(library, c);
    auto s = stats(library, rows, filtersActive(c), true);
    EXPECT_EQ(s.count, "3");
    EXPECT_EQ(s.airtime, "3h 20m");  // 12000.4 s truncated
    EXPECT_EQ(s.distance, "3");
    EXPECT_EQ(s.distanceCaption, "km");
    EXPECT_EQ(s.dateSpan, "Jan 2023 – May 2024");
    s = stats(library, rows, true, false);
    EXPECT_EQ(s.count, "3 of 5");  // hidden flights count in the whole
    EXPECT_EQ(s.distance, "2");    // 2500.4 m in miles
    EXPECT_EQ(s.distanceCaption, "mi");

    c.search = "2024";
    rows = filtered(library, c);
    s = stats(library, rows, filtersActive(c), true);
    EXPECT_EQ(s.dateSpan, "May 2024");
    EXPECT_EQ(stats(library, {}, false, true).dateSpan, "");
    EXPECT_EQ(stats(library, {}, false, true).airtime, "0h 0m");
}

TEST(GalleryPrefs, ControlsSurviveARestartButHiddenOnlyDoesNot)
{
    QTemporaryDir dir;
    const QString file = dir.filePath("prefs.ini");
    GalleryControls chosen;
    {
        QSettings settings(file, QSettings::IniFormat);
        GalleryPrefs prefs(&settings);
        chosen.search = "cliffs";
        chosen.sort = SortOrder::highestAltitude;
        chosen.group = GroupMode::month;
        chosen.tod = TimeOfDayFilter::night;
        chosen.modelFilter = "Avata";
        chosen.clipsOnly = true;
        chosen.layout = GalleryLayout::map;
        chosen.showHidden = true;
        prefs.store(GalleryControls{}, chosen);
    }
    QSettings settings(file, QSettings::IniFormat);
    EXPECT_EQ(settings.value("gallery.sort").toString(), "highestAltitude");
    EXPECT_EQ(settings.value("gallery.tod").toString(), "night");
    GalleryControls expected = chosen;
    expected.showHidden = false;
    EXPECT_EQ(GalleryPrefs(&settings).load(), expected);

    // A stored text that names no case falls back on that key's default only.
    settings.setValue("gallery.sort", "shortest");
    settings.setValue("gallery.layout", "Map");
    const GalleryControls read = GalleryPrefs(&settings).load();
    EXPECT_EQ(read.sort, SortOrder::newest);
    EXPECT_EQ(read.layout, GalleryLayout::grid);
    EXPECT_EQ(read.group, GroupMode::month);
}

#include "GalleryDates.h"

// The gallery reads dates its own, faster way; it must agree with the records' own reading.
TEST(GalleryDates, AgreeWithTheRecordsDateTexts)
{
    const QStringList texts{"2024-05-01T10:00:00", "2023-12-31T23:59:59", "2024-02-29T00:00:00",
                            "2023-02-29T10:00:00", "2024-05-01T24:00:00", "2024-05-01 10:00:00",
                            "2024-5-01T10:00:00",  "2024-05-01T10:00:00Z", "", "２０２４-05-01T10:00:00"};
    for (const QString &text : texts) {
        Flight f;
        f.id = "x";
        f.date = text;
        const auto mine = GalleryDates::parse(text);
        EXPECT_EQ(mine.has_value(), f.parsedDate().has_value()) << text.toStdString();
        EXPECT_EQ(FlightFacts::of(f).dateLabel, f.dateText()) << text.toStdString();
    }
}
