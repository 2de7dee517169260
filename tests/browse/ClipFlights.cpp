#include "ClipFlights.h"

#include "FlightFile.h"
#include "SampleMaker.h"

#include "CoroTest.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

void putClipFlights(TestServer &server, const std::vector<ClipFlight> &flights, double seconds)
{
    const fs::path media = makeFlightFolder(server.sandbox() / "media", seconds);
    auto http = server.client();
    for (const ClipFlight &planned : flights) {
        const fs::path folder = server.sandbox() / "up" / planned.id;
        fs::create_directories(folder);
        fs::copy_file(media / "proxy.mp4", folder / "proxy.mp4", fs::copy_options::overwrite_existing);
        fs::copy_file(media / "thumb.jpg", folder / "thumb.jpg", fs::copy_options::overwrite_existing);
        FlightData flight = SampleMaker::flightFile(46.5, 8.0, seconds, "DJI_" + planned.id + ".MP4", planned.place);
        flight.meta.video = planned.vertical ? FlightVideo{1080, 1920, true} : FlightVideo{1920, 1080, false};
        ASSERT_TRUE(FlightFile::write(flight, QString::fromStdString(folder.string())));
        const auto commit = uploadFlight(*http, planned.id, folder);
        ASSERT_TRUE(commit && commit->status == 200) << (commit ? commit->body : "no reply");
        const auto clips = http->Post(("/api/clips/" + planned.id).c_str(), planned.clips.dump(), "application/json");
        ASSERT_TRUE(clips && clips->status == 200) << (clips ? clips->body : "no reply");
    }
}

nlohmann::ordered_json clipEntry(const std::string &id, double in, double out, const std::string &label,
                                 const std::string &why)
{
    nlohmann::ordered_json clip{{"id", id}, {"in", in}, {"out", out}, {"label", label}};
    if (!why.empty()) {
        clip["auto"] = true;
        clip["why"] = why;
    }
    return clip;
}

nlohmann::json storedClips(const TestServer &server, const std::string &flightId)
{
    return jsonOf(server.client()->Get(("/flights/" + flightId + "/clips.json").c_str()));
}

std::vector<ClipFlight> TwoFlights::flights()
{
    return {
        {lagoon, "Saltmarsh Lagoon", false,
         {{"clips", {clipEntry("c1", 2, 5, "Lagoon pass"), clipEntry("s1", 6, 8.5, "", "Orbit · 270° around one point")}},
          {"note", "kept by the server"}}},
        {ridge, "Cedar Ridge", true,
         {{"clips", {clipEntry("s2", 4, 6.5, "Ridge climb", "Climb · 40 m"), clipEntry("c1", 1, 3, "Ridge top")}}}},
    };
}

ClipsSection::ClipsSection(const std::vector<ClipFlight> &flights, std::chrono::milliseconds toastStand,
                           QSettings *settings)
{
    putClipFlights(server, flights);
    client = std::make_shared<APIClient>(QString::fromStdString(server.base()), std::nullopt);
    store = std::make_unique<ClipsBrowserStore>(client, nullptr, toastStand);
    browser = std::make_unique<ClipsBrowserModel>(store.get(), settings);
    run(store->reload());
}

ClipsSection::~ClipsSection()
{
    browser.reset();
    store.reset();
    client->network()->clearConnectionCache();
    client.reset();
    waitUntil([] { return false; }, 20);
}
