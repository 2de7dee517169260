// The analysis of a long flight, as a commit runs it (read flight.json, find the shots, write
// moments.json and the suggestions), against reading the same flight.json alone: the baseline,
// measured in the same run on the same file.
#include "Database.h"
#include "FlightAnalyst.h"
#include "FlightCheck.h"
#include "FlightFile.h"
#include "FlightIndex.h"
#include "FlightPath.h"
#include "Library.h"
#include "Shot.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>

namespace {
using Clock = std::chrono::steady_clock;

/// A filming flight of `minutes` at 30 Hz: the same minute and a half of shots, over and over.
Fixtures::FlightPath longFlight(double minutes)
{
    Fixtures::FlightPath path(30);
    const double end = minutes * 60 - 1.0 / 30;
    while (path.now() < end - 90) {
        path.hover(4);
        path.orbit(20, 270, 35);
        path.straight(6, 15);
        path.pan(6, 90);
        path.climb(8, 3);
        path.tilt(2, -90);
        path.straight(10, 6);
        path.tilt(4, -10);
        path.climb(8, -3);
        path.straight(8, 9);
        path.orbit(14, -180, 25);
    }
    path.hover(end - path.now());
    return path;
}

template <typename Work>
double medianMilliseconds(int rounds, Work work)
{
    std::vector<double> times;
    for (int i = 0; i < rounds; ++i) {
        const auto start = Clock::now();
        work();
        times.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
    }
    std::nth_element(times.begin(), times.begin() + rounds / 2, times.end());
    return times[rounds / 2];
}

int fail(const QString &words)
{
    std::fprintf(stderr, "%s\n", qPrintable(words));
    return 1;
}
} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const double minutes = argc > 1 ? std::atof(argv[1]) : 40;
    const int rounds = argc > 2 ? std::atoi(argv[2]) : 7;

    QTemporaryDir dir;
    auto library = Library::open(dir.path().toStdString());
    if (!library)
        return fail(library.errorText());
    auto db = Database::open(library->database());
    if (!db)
        return fail(db.errorText());
    FlightIndex index(*db.value());
    const std::string id = "20240512_093000_0001";
    std::filesystem::create_directories(library->flight(id));
    const auto written = longFlight(minutes).write(QString::fromStdString(library->flight(id).string()));
    if (!written)
        return fail(written.errorText());
    const auto file = library->flight(id) / FlightFile::fileName;
    const auto meta = FlightCheck::readMeta(file);
    if (!meta)
        return fail(meta.errorText());
    index.put({id, FlightCheck::manifestEntry(id, *meta, false).dump(), "DJI_0001", 0, false, std::nullopt});
    std::mutex folderLock;
    FlightAnalyst analyst(*library, index, folderLock, false);

    std::size_t samples = 0;
    FlightAnalyst::Outcome outcome;
    // Alternating rounds, so both meet the same cache and the same neighbours on the machine.
    std::vector<double> parse, analysis;
    for (int i = 0; i < rounds; ++i) {
        parse.push_back(medianMilliseconds(1, [&] {
            samples = FlightFile::read(QString::fromStdString(file.string()))->track.size();
        }));
        analysis.push_back(medianMilliseconds(1, [&] { outcome = analyst.analyse(id); }));
    }
    std::sort(parse.begin(), parse.end());
    std::sort(analysis.begin(), analysis.end());
    const double parseMs = parse[parse.size() / 2], analysisMs = analysis[analysis.size() / 2];
    // The analysis proper, on a track already in memory: what the analysis adds to the reading.
    const auto data = FlightFile::read(QString::fromStdString(file.string()));
    const double findMs = medianMilliseconds(rounds, [&] { (void)FlightAnalyst::findings(data.value()); });

    const auto found = FlightAnalyst::findings(file);
    std::map<std::string, int> kinds;
    for (const Shot &shot : found->shots)
        ++kinds[Shots::name(shot.kind)];
    std::printf("flight.json of %.0f minutes: %zu samples, %.1f MB\n", minutes, samples,
                double(std::filesystem::file_size(file)) / 1e6);
    std::printf("  shots found: %d, suggested: %d (", outcome.moments, outcome.suggested);
    for (const auto &[kind, count] : kinds)
        std::printf(" %s %d", kind.c_str(), count);
    std::printf(" )\n");
    std::printf("  reading flight.json alone (baseline): %8.1f ms (median of %d)\n", parseMs, rounds);
    std::printf("  analysis, as a commit runs it:        %8.1f ms\n", analysisMs);
    std::printf("    of which finding the shots in memory: %6.1f ms\n", findMs);
    std::printf("  ratio analysis/baseline: %.2f   (goal: 1.5 at most)\n", analysisMs / parseMs);
    return outcome.stored ? 0 : 1;
}
