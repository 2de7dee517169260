// The gallery query over 10,000 synthetic flights, timed per recompute against a baseline of
// one element-wise copy of the same list, plus the once-per-load work (per-flight facts, the
// model choices and todCache).
#include "GalleryQuery.h"
#include "SolarTime.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QElapsedTimer>
#include <QRandomGenerator>

#include <cstdio>
#include <functional>

namespace {

QList<Flight> syntheticFlights(int count)
{
    QRandomGenerator rng(20241121);
    const QStringList models{"Mavic 3", "Mini 4 Pro", "Avata 2", "Air 3", " Mavic 3 ", "Inspire 3"};
    QStringList places;
    for (int i = 0; i < 60; ++i)
        places.append(QStringLiteral("Place %1").arg(i, 2, 10, QLatin1Char('0')));
    const QDateTime start(QDate(2021, 1, 1), QTime(0, 0));
    QList<Flight> flights;
    for (int i = 0; i < count; ++i) {
        Flight f;
        f.id = QStringLiteral("DJI_%1").arg(i, 6, 10, QLatin1Char('0'));
        if (rng.bounded(50) != 0)
            f.date = start.addSecs(qint64(rng.bounded(3 * 365 * 86400))).toString("yyyy-MM-dd'T'HH:mm:ss");
        f.model = models[rng.bounded(models.size())];
        if (rng.bounded(20) != 0)
            f.place = places[rng.bounded(places.size())];
        f.duration = rng.bounded(1800.0);
        f.pathLength = rng.bounded(8000.0);
        f.maxSpeed = rng.bounded(20.0);
        f.relAlt = RelAlt{0.0, rng.bounded(120.0)};
        if (rng.bounded(10) != 0)
            f.centroid = Centroid{rng.bounded(140.0) - 70, rng.bounded(360.0) - 180};
        flights.append(f);
    }
    return flights;
}

/// Median milliseconds of `rounds` runs of `work`.
double medianMs(int rounds, const std::function<void()> &work)
{
    QList<double> times;
    for (int i = 0; i < rounds; ++i) {
        QElapsedTimer timer;
        timer.start();
        work();
        times.append(double(timer.nsecsElapsed()) / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

int sink = 0;

void recompute(const GalleryLibrary &library, const GalleryControls &controls)
{
    const QList<int> rows = GalleryQuery::filtered(library, controls);
    const auto sections = GalleryQuery::groups(library, rows, controls.group, controls.sort);
    const auto stats = GalleryQuery::stats(library, rows, GalleryQuery::filtersActive(controls), true);
    const auto chips = GalleryQuery::activeChips(controls, int(library.hiddenIDs.size()));
    sink += int(rows.size() + sections.size() + stats.count.size() + chips.size());
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    constexpr int count = 10000;
    const QList<Flight> flights = syntheticFlights(count);

    const double copyMs = medianMs(31, [&] {
        QList<Flight> copy = flights;
        copy.detach();  // an element-by-element copy, not a shared one
        sink += int(copy.size());
    });

    GalleryLibrary library;
    const double factsMs = medianMs(5, [&] { library.setFlights(flights); });
    const double todMs = medianMs(11, [&] { library.todCache = SolarTime::todCache(library.flights); });
    for (int i = 0; i < count; i += 7)
        library.hiddenIDs.insert(flights[i].id);
    for (int i = 0; i < count; i += 3)
        library.clipCounts.insert(flights[i].id, 1 + i % 4);

    struct Case {
        const char *name;
        GalleryControls controls;
    };
    QList<Case> cases;
    cases.append(Case{"default (newest, by place)", GalleryControls{}});
    GalleryControls c;
    c.group = GroupMode::month;
    c.sort = SortOrder::longestPath;
    cases.append(Case{"by month, longest path", c});
    c = {};
    c.group = GroupMode::day;
    cases.append(Case{"by day, newest", c});
    c = {};
    c.search = QStringLiteral("mavic");
    cases.append(Case{"search \"mavic\"", c});
    c = {};
    c.tod = TimeOfDayFilter::golden;
    c.clipsOnly = true;
    c.modelFilter = QStringLiteral("Mavic 3");
    c.group = GroupMode::flat;
    cases.append(Case{"golden, clips only, model, flat", c});

    std::printf("gallery query over %d flights (median of runs)\n", count);
    std::printf("  baseline: one copy of the list       %8.3f ms\n", copyMs);
    std::printf("  per load: facts of every flight      %8.3f ms  (%.1fx baseline)\n", factsMs, factsMs / copyMs);
    std::printf("  per load: todCache                   %8.3f ms  (%.1fx baseline, goal < 20 ms)\n", todMs,
                todMs / copyMs);
    for (const Case &k : cases) {
        const double ms = medianMs(31, [&] { recompute(library, k.controls); });
        std::printf("  recompute: %-32s %8.3f ms  (%.1fx baseline, goal < 2 ms)\n", k.name, ms, ms / copyMs);
    }
    return sink == -1;
}
