// manifest.json of a large library against the baseline of a static file of the same size,
// served by the same server to the same client in the same run.
#include "Database.h"
#include "FlightCheck.h"
#include "FlightFile.h"
#include "FlightIndex.h"
#include "Library.h"
#include "LibraryServer.h"
#include "SampleMaker.h"

#include <httplib.h>

#include <QCoreApplication>
#include <QTemporaryDir>

#include <chrono>
#include <cstdio>
#include <fstream>

namespace {
using Clock = std::chrono::steady_clock;

double millisecondsPer(httplib::Client &client, const std::string &path, int rounds, std::size_t &bytes)
{
    const auto start = Clock::now();
    for (int i = 0; i < rounds; ++i) {
        const auto reply = client.Get(path.c_str());
        if (!reply || reply->status != 200) {
            std::fprintf(stderr, "GET %s failed\n", path.c_str());
            std::exit(1);
        }
        bytes = reply->body.size();
    }
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count() / rounds;
}
} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const int flights = argc > 1 ? std::atoi(argv[1]) : 10000;
    const int rounds = 100;
    QTemporaryDir dir;
    const std::filesystem::path root = dir.path().toStdString();

    // A library of many flights, recorded the way a commit records them.
    {
        auto library = Library::open(root);
        auto db = Database::open(library->database());
        FlightIndex index(*db.value());
        const auto meta = FlightFile::toJSON(SampleMaker::flightFile(46.0, 7.0, 20, "DJI_0001.MP4", "Cedar Ridge"))["meta"];
        auto guard = db.value()->lock();
        db.value()->exec("BEGIN");
        for (int i = 0; i < flights; ++i) {
            char id[32];
            std::snprintf(id, sizeof id, "20240101_%06d_%04d", i % 240000, i % 10000);
            index.put({id, FlightCheck::manifestEntry(id, meta, false).dump(), "DJI_0001", 1000000, false, std::nullopt});
            // A record without its folder would be dropped at start as the remains of a delete.
            std::filesystem::create_directories(library->flight(id));
        }
        db.value()->exec("COMMIT");
    }

    ServerConfig config;
    config.library = root;
    config.port = 0;
    config.samples = false;
    config.log = false;
    LibraryServer server(config);
    if (const auto port = server.start(); !port) {
        std::fprintf(stderr, "%s\n", qPrintable(port.errorText()));
        return 1;
    }
    httplib::Client client(server.baseUrl());

    std::size_t manifestBytes = 0;
    const auto coldStart = Clock::now();
    millisecondsPer(client, "/manifest.json", 1, manifestBytes);
    const double cold = std::chrono::duration<double, std::milli>(Clock::now() - coldStart).count();

    // The baseline: a static file of exactly that size, through the same file route.
    std::filesystem::create_directories(root / "flights" / "static");
    {
        std::ofstream out(root / "flights" / "static" / "flight.json", std::ios::binary);
        out << std::string(manifestBytes, 'x');
    }
    std::size_t staticBytes = 0;
    const double baseline = millisecondsPer(client, "/flights/static/flight.json", rounds, staticBytes);
    const double warm = millisecondsPer(client, "/manifest.json", rounds, manifestBytes);

    std::printf("manifest.json of %d flights: %.2f MB\n", flights, manifestBytes / 1e6);
    std::printf("  first request (built from the index): %8.2f ms\n", cold);
    std::printf("  later requests (until the list changes): %6.2f ms\n", warm);
    std::printf("  static file of the same size (baseline): %6.2f ms\n", baseline);
    std::printf("  ratio later/baseline: %.2f   first/baseline: %.2f\n", warm / baseline, cold / baseline);
    return 0;
}
