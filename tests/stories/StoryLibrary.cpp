#include "StoryLibrary.h"

#include "FlightFile.h"
#include "SampleMaker.h"

#include <gtest/gtest.h>

#include <map>

namespace fs = std::filesystem;

namespace StoryLibrary {

void put(TestServer &server, const std::vector<PlannedFlight> &flights)
{
    auto http = server.client();
    std::map<double, fs::path> media;
    for (const PlannedFlight &f : flights) {
        if (!media.contains(f.seconds))
            media[f.seconds] = makeFlightFolder(server.sandbox() / "media" / std::to_string(int(f.seconds * 10)), f.seconds);
        const fs::path folder = server.sandbox() / "up" / f.id;
        fs::create_directories(folder);
        fs::copy_file(media[f.seconds] / "proxy.mp4", folder / "proxy.mp4", fs::copy_options::overwrite_existing);
        fs::copy_file(media[f.seconds] / "thumb.jpg", folder / "thumb.jpg", fs::copy_options::overwrite_existing);
        FlightData flight = SampleMaker::flightFile(46.5, 8.0, f.seconds, "DJI_" + f.id + ".MP4", f.place);
        flight.meta.video = FlightVideo{f.vertical ? 1080 : 1920, f.vertical ? 1920 : 1080, f.vertical};
        ASSERT_TRUE(FlightFile::write(flight, QString::fromStdString(folder.string())));
        const auto commit = uploadFlight(*http, f.id, folder);
        ASSERT_TRUE(commit && commit->status == 200) << (commit ? commit->body : "no reply");

        nlohmann::json clips = nlohmann::json::array();
        for (const PlannedClip &c : f.clips) {
            nlohmann::json clip{{"in", c.in}, {"out", c.out}, {"label", c.label}};
            if (!c.id.empty())
                clip["id"] = c.id;
            clips.push_back(clip);
        }
        const auto saved = http->Post(("/api/clips/" + f.id).c_str(),
                                      nlohmann::json{{"flightId", f.id}, {"clips", clips}}.dump(), "application/json");
        ASSERT_TRUE(saved && saved->status == 200) << (saved ? saved->body : "no reply");
    }
}

std::vector<PlannedFlight> twoFlights()
{
    return {
        {"20240512_093000_0001", "Saltmarsh Lagoon", 6.0, false,
         {{"c1", 0.5, 2.0, "Lagoon reveal"}, {"c2", 3.0, 4.5, "Low pass over the reeds"}}},
        {"20240601_184512_0002", "Cedar Ridge", 6.0, true,
         {{"c3", 1.0, 2.5, "Ridge climb"}, {"c4", 4.0, 5.5, "Sunset orbit"}}},
    };
}

} // namespace StoryLibrary
