#include "HudScript.h"

#include "MiniMap.h"
#include "TrackReadout.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace HudScript {

namespace {
constexpr double readoutStep = 0.5;  ///< seconds between changes of the figures
constexpr double dotStep = 0.2;      ///< seconds of each straight move of the dot
constexpr double mph = 2.23694;
constexpr double feet = 3.28084;

std::string clock(double seconds)
{
    const long long cs = std::llround(std::max(0.0, seconds) * 100);
    char text[32];
    std::snprintf(text, sizeof text, "%lld:%02lld:%02lld.%02lld", cs / 360000, cs / 6000 % 60, cs / 100 % 60, cs % 100);
    return text;
}

std::string fixed(double v)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", v);
    return text;
}

std::string event(int layer, double from, double to, const char *style, const std::string &text)
{
    return "Dialogue: " + std::to_string(layer) + "," + clock(from) + "," + clock(to) + "," + style + ",,0,0,0,," + text
        + "\n";
}

std::string header(int width, int height)
{
    const int fontSize = std::max(8, int(std::lround(height * 0.055)));
    const int margin = int(std::lround(height * 0.045));
    const double outline = std::max(1.0, height / 360.0);
    return "[Script Info]\nScriptType: v4.00+\nPlayResX: " + std::to_string(width) + "\nPlayResY: " + std::to_string(height)
        + "\nWrapStyle: 2\nScaledBorderAndShadow: yes\n\n[V4+ Styles]\n"
          "Format: Name, Fontname, Fontsize, PrimaryColour, SecondaryColour, OutlineColour, BackColour, Bold, Italic, "
          "Underline, StrikeOut, ScaleX, ScaleY, Spacing, Angle, BorderStyle, Outline, Shadow, Alignment, MarginL, "
          "MarginR, MarginV, Encoding\n"
          "Style: Readout,DejaVu Sans,"
        + std::to_string(fontSize) + ",&H00FFFFFF,&H00FFFFFF,&H00202020,&H80000000,1,0,0,0,100,100,1,0,1," + fixed(outline)
        + ",0,1," + std::to_string(margin) + "," + std::to_string(margin) + "," + std::to_string(margin)
        + ",1\nStyle: Map,DejaVu Sans,10,&H00FFFFFF,&H00FFFFFF,&H00202020,&H00000000,0,0,0,0,100,100,0,0,1,0,0,7,0,0,0,1\n\n"
          "[Events]\nFormat: Layer, Start, End, Style, Name, MarginL, MarginR, MarginV, Effect, Text\n";
}

/// What one clip adds: figures every half second, its map, and the dot moving on it.
std::string pieceEvents(const Piece &piece, int width, int height)
{
    if (!piece.track || piece.track->empty() || piece.showTo <= piece.showFrom)
        return {};
    const TrackReadout readout(*piece.track);
    const auto sourceAt = [&piece](double t) { return piece.sourceStart + (t - piece.videoStart); };
    std::string out;
    for (double t = piece.showFrom; t < piece.showTo - 0.005; t += readoutStep) {
        const auto r = readout.at(sourceAt(t));
        char text[64];
        std::snprintf(text, sizeof text, "%d MPH \xC2\xB7 %d FT", int(std::lround(r.speed * mph)),
                      int(std::lround(r.relAlt * feet)));
        out += event(0, t, std::min(t + readoutStep, piece.showTo), "Readout", text);
    }

    const double side = std::round(height * 0.30);
    const double margin = std::round(height * 0.045);
    const double left = width - margin - side, top = height - margin - side;
    const MiniMap map(*piece.track, side, side * 0.12);
    const std::string origin = "\\pos(" + fixed(left) + "," + fixed(top) + ")";
    out += event(1, piece.showFrom, piece.showTo, "Map",
                 "{" + origin + "\\1c&H000000&\\1a&H60&\\p1}" + MiniMap::square(side) + "{\\p0}");
    out += event(2, piece.showFrom, piece.showTo, "Map",
                 "{" + origin + "\\1c&HFFFFFF&\\1a&H30&\\p1}" + map.path(std::max(1.0, height / 220.0)) + "{\\p0}");
    const std::string dot = MiniMap::dot(std::max(2.0, height * 0.012));
    const double border = std::max(0.8, height / 500.0);
    for (double t = piece.showFrom; t < piece.showTo - 0.005; t += dotStep) {
        const double until = std::min(t + dotStep, piece.showTo);
        const auto a = readout.at(sourceAt(t)), b = readout.at(sourceAt(until));
        const auto pa = map.project(a.lat, a.lon), pb = map.project(b.lat, b.lon);
        out += event(3, t, until, "Map",
                     "{\\an5\\move(" + fixed(left + pa.x) + "," + fixed(top + pa.y) + "," + fixed(left + pb.x) + ","
                         + fixed(top + pb.y) + ")\\1c&H00A5FF&\\3c&H000000&\\bord" + fixed(border) + "\\p1}" + dot
                         + "{\\p0}");
    }
    return out;
}
} // namespace

std::string make(const std::vector<Piece> &pieces, int width, int height)
{
    std::string script = header(width, height);
    for (const Piece &piece : pieces)
        script += pieceEvents(piece, width, height);
    return script;
}

} // namespace HudScript
