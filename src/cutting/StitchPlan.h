#pragma once

#include <FlightData.h>

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

/// @brief The arithmetic and the texts of one story stitch: output size, frame rate, crossfade
/// offsets, fades, the filter graph and the ffmpeg command line. No tool runs here.
namespace StitchPlan {

struct Size {
    int w = 0;
    int h = 0;
    bool operator==(const Size &) const = default;
};

/// From the first clip's display size (absent when the probe failed: 1920 × 1080). Vertical
/// keeps the height and takes a 9:16 middle from anything wider.
[[nodiscard]] Size outputSize(const std::optional<FlightVideo> &probed, bool vertical);

/// ffprobe's `r_frame_rate` answer as the `fps` filter's value: the fraction as written when it
/// has two positive parts, else "30".
[[nodiscard]] QString frameRate(const QByteArray &output);

/// ffprobe's `format=duration` answer in seconds; 0 when it doesn't read.
[[nodiscard]] double duration(const QByteArray &output);

struct Timing {
    double xfade = 0;          ///< 0 for a single clip
    QList<double> offsets;     ///< where each crossfade starts, one fewer than the clips
    double total = 0;          ///< the story's length
    double videoFadeOutStart = 0;
    double audioFadeLength = 0;
    double audioFadeOutStart = 0;
};

[[nodiscard]] Timing timing(const QList<double> &durations, double xfade, double fade);

struct Graph {
    int clips = 0;
    Size size;
    bool vertical = false;
    QString rate;
    Timing timing;
    double fade = 0;
    bool bed = false;
    QString outputSuffix;  ///< appended to the last video filter (a hardware encoder's upload)
};

[[nodiscard]] QString filterGraph(const Graph &graph);

struct Command {
    QStringList clips;
    std::optional<QString> bed;
    bool loopBed = false;
    QString graph;
    QStringList beforeInputs;  ///< an encoder's device options
    QStringList videoCodec;    ///< codec, bit rate and pixel format
    QString output;
};

[[nodiscard]] QStringList arguments(const Command &command);

} // namespace StitchPlan
