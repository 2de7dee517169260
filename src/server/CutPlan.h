#pragma once

#include <cstddef>
#include <vector>

/// @brief Where each clip of a story video starts, how many frames it runs, and where the
/// cross-fades fall, in whole frames of the video.
///
/// Clips follow each other with a cross-fade of `xfade` seconds. A cut is the middle of its
/// cross-fade; the video runs the clips' lengths less one cross-fade per cut, rounded to the
/// nearest frame as a whole (not clip by clip, so the error never adds up). Given lines to snap
/// to (the music's bars or beats), each cut moves to the nearest line that the clip before it
/// can reach, lengthening it into its footage after the out point or shortening it.
class CutPlan
{
public:
    /// One clip as the plan sees it: its span in the source and how far the footage goes.
    struct Clip {
        double start = 0;
        double end = 0;
        double footageEnd = 0;  ///< the source's length; the clip may grow up to it
    };
    /// One clip as the video uses it.
    struct Piece {
        std::size_t clip = 0;  ///< which of the clips given it is
        double start = 0;      ///< seconds into the source
        int frames = 0;        ///< length in the video
        int offset = 0;        ///< the video's frame where it begins
    };

    /// Clips without length are left out; `grid` must be increasing (empty: cuts stay put).
    [[nodiscard]] static CutPlan make(const std::vector<Clip> &clips, double xfade, int fps,
                                      const std::vector<double> &grid = {});

    [[nodiscard]] const std::vector<Piece> &pieces() const { return m_pieces; }
    [[nodiscard]] int fps() const { return m_fps; }
    [[nodiscard]] int totalFrames() const { return m_totalFrames; }
    [[nodiscard]] double seconds() const { return double(m_totalFrames) / m_fps; }
    /// The cross-fade taken: the one asked for, shortened to half the shortest clip.
    [[nodiscard]] double xfade() const { return m_xfade; }
    [[nodiscard]] int xfadeFrames() const { return m_xfadeFrames; }
    /// The video's time of cut `k` (into piece k, from 1): the middle of its cross-fade.
    [[nodiscard]] double cutTime(std::size_t k) const;

private:
    std::vector<Piece> m_pieces;
    int m_fps = 30;
    int m_totalFrames = 0;
    double m_xfade = 0;
    int m_xfadeFrames = 0;
};
