#pragma once

#include "FlightPath.h"

#include <httplib.h>

#include <filesystem>
#include <string>

/// @brief Flights drawn with `Fixtures::FlightPath`, uploaded to a test library the way the
/// import sends them. The video is one short test clip made once per test program: the
/// analysis reads only flight.json.
namespace PathFlights {
/// Uploads and commits `flight` as flight `id`, with a moments.json when one is given; the
/// commit's reply.
httplib::Result upload(httplib::Client &client, const std::string &id, const FlightData &flight,
                       const std::string &moments = {});
/// The same for a drawn path.
httplib::Result upload(httplib::Client &client, const std::string &id, const Fixtures::FlightPath &path,
                       const QString &place = QStringLiteral("Test Field"), bool vertical = false);
/// A flight from a camera without GPS, as the import describes it: no track at all.
[[nodiscard]] FlightData withoutTelemetry(double seconds);

/// Three shots, each alone between hovers: a 270° orbit, a fast pass at 16 m/s and a climb
/// straight up 30 m. The spans are where they were drawn.
struct Showreel {
    Fixtures::FlightPath path;
    Fixtures::FlightPath::Span orbit, pass, climb;
};
[[nodiscard]] Showreel showreel();
}
