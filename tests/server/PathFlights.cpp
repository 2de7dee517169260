#include "PathFlights.h"

#include "FlightFile.h"
#include "TestServer.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace PathFlights {

namespace {
/// proxy.mp4 and thumb.jpg for every flight of the test program.
const fs::path &media()
{
    static QTemporaryDir dir;
    static const fs::path folder = makeFlightFolder(fs::path(dir.path().toStdString()) / "media", 1.0);
    return folder;
}
} // namespace

httplib::Result upload(httplib::Client &client, const std::string &id, const FlightData &flight,
                       const std::string &moments)
{
    QTemporaryDir dir;
    const fs::path folder = dir.path().toStdString();
    fs::copy_file(media() / "proxy.mp4", folder / "proxy.mp4");
    fs::copy_file(media() / "thumb.jpg", folder / "thumb.jpg");
    const auto written = FlightFile::write(flight, dir.path());
    EXPECT_TRUE(written.ok()) << written.errorText().toStdString();
    if (!moments.empty())
        writeFile(folder / "moments.json", moments);
    return uploadFlight(client, id, folder);
}

httplib::Result upload(httplib::Client &client, const std::string &id, const Fixtures::FlightPath &path,
                       const QString &place, bool vertical)
{
    return upload(client, id, path.data(place, vertical));
}

FlightData withoutTelemetry(double seconds)
{
    FlightData flight;
    flight.meta.duration = seconds;
    flight.meta.source = QStringLiteral("GOPR0042.MP4");
    flight.meta.created = QStringLiteral("2024-05-12T09:30:00.000000Z");
    return flight;
}

Showreel showreel()
{
    Showreel reel;
    reel.path.hover(3);
    reel.orbit = reel.path.orbit(24, 270, 40);
    reel.path.hover(3);
    reel.pass = reel.path.straight(6, 16);
    reel.path.hover(3);
    reel.climb = reel.path.climb(10, 3);
    reel.path.hover(3);
    return reel;
}

} // namespace PathFlights
