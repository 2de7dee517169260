#include "CutPlan.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {
/// A clip isn't cut shorter than this to meet a line, nor below two cross-fades.
constexpr double shortestSnapped = 0.5;

int toFrames(double seconds, int fps)
{
    return int(std::lround(seconds * fps));
}

/// The length that puts the cut after a clip starting at `start` on the line nearest to
/// `wanted` that it can reach; `length` itself when no line is within reach.
double snapped(double start, double length, double wanted, double longest, double shortest, double xfade,
               const std::vector<double> &grid)
{
    double best = length;
    double bestDistance = std::numeric_limits<double>::infinity();
    for (const double line : grid) {
        const double candidate = line - start + xfade / 2;
        if (candidate < shortest || candidate > longest)
            continue;
        const double distance = std::abs(line - wanted);
        if (distance < bestDistance) {
            best = candidate;
            bestDistance = distance;
        }
    }
    return best;
}
} // namespace

CutPlan CutPlan::make(const std::vector<Clip> &input, double xfade, int fps, const std::vector<double> &grid)
{
    CutPlan plan;
    plan.m_fps = fps;
    std::vector<Clip> clips;
    std::vector<std::size_t> given;
    for (std::size_t i = 0; i < input.size(); ++i) {
        if (toFrames(input[i].end - input[i].start, fps) >= 1) {
            clips.push_back(input[i]);
            given.push_back(i);
        }
    }
    if (clips.empty())
        return plan;

    // Two cross-fades must fit in every clip, one at each end.
    double shortestClip = std::numeric_limits<double>::infinity();
    for (const Clip &clip : clips)
        shortestClip = std::min(shortestClip, clip.end - clip.start);
    const bool joined = clips.size() > 1;
    const double x = joined ? std::max(0.0, std::min(xfade, shortestClip / 2)) : 0.0;
    plan.m_xfade = joined ? x : std::max(0.0, xfade);
    plan.m_xfadeFrames = joined ? std::min(toFrames(x, fps), int(std::floor(shortestClip * fps)) / 2) : 0;

    // Lay the clips out in continuous time, then round the starts, so each cut is within a
    // frame of where it was meant to fall and the whole is within half a frame.
    // A snapped cut aims at where the cut would be unsnapped, not where the cuts before it
    // leave it, so the moves don't add up and the video stays about as long as the story.
    std::vector<double> starts;
    double start = 0;
    double unsnapped = 0;
    for (std::size_t i = 0; i < clips.size(); ++i) {
        double length = clips[i].end - clips[i].start;
        const bool last = i + 1 == clips.size();
        unsnapped += length - x;
        if (!last && !grid.empty()) {
            const double longest = length + std::max(0.0, clips[i].footageEnd - clips[i].end);
            length = snapped(start, length, unsnapped + x / 2, longest, std::max(shortestSnapped, 2 * x), x, grid);
        }
        starts.push_back(start);
        if (last) {
            plan.m_totalFrames = toFrames(start + length, fps);
            break;
        }
        start += length - x;
    }
    for (std::size_t i = 0; i < clips.size(); ++i) {
        const int offset = toFrames(starts[i], fps);
        const int end = i + 1 < clips.size() ? toFrames(starts[i + 1], fps) + plan.m_xfadeFrames : plan.m_totalFrames;
        plan.m_pieces.push_back({given[i], clips[i].start, end - offset, offset});
    }
    return plan;
}

double CutPlan::cutTime(std::size_t k) const
{
    return (double(m_pieces.at(k).offset) + m_xfadeFrames / 2.0) / m_fps;
}
