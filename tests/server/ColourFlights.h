#pragma once

#include <httplib.h>
#include <nlohmann/json.hpp>

#include <QByteArray>
#include <QString>

#include <filesystem>
#include <string>
#include <vector>

/// @brief Flights whose video is one flat colour, so a test can tell from any frame of a story
/// video which clip it shows, where a cross-fade lies, and whether anything was drawn over it.
/// Each has a real flight path (for the overlay) and a tiny proxy (320×180, 25 frames a second).
namespace ColourFlights {
/// Makes and commits flight `id` of `seconds` in `colour` (an ffmpeg colour name); the commit's reply.
httplib::Result upload(httplib::Client &client, const std::string &id, const QString &colour, double seconds,
                       const std::filesystem::path &scratch);

/// A story of these items ({"flightId", "in", "out"}) titled `title`; its id.
std::string story(httplib::Client &client, const std::string &title, const nlohmann::json &items);

/// Each frame of a video made small: its mean red, green and blue, frame by frame.
struct Frame {
    double r = 0, g = 0, b = 0;
};
std::vector<Frame> frames(const std::filesystem::path &video);
/// One frame at `seconds`, whole, as RGB bytes; `width` and `height` are set to its size.
QByteArray frameAt(const std::filesystem::path &video, double seconds, int &width, int &height);
/// ffprobe's view of a file: its streams and format.
nlohmann::json probe(const std::filesystem::path &video);
}
