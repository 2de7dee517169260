#pragma once

#include "ReelPiece.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

/// @brief Drafts an automatic story from the pieces of a library: one place and one shape of
/// video (a story can't mix wide and tall), the best pieces first, about as long as asked.
///
/// The pilot's kept clips lead and keep their length; detected shots fill in around them, cut to
/// a few seconds each, with a varied mix of shot kinds preferred over more of the same. When the
/// library has too few pieces for the length asked, the cut ones are given back more of their footage.
class StoryDraft
{
public:
    /// Chooses from `pieces`; `target` is the wanted length in seconds.
    StoryDraft(std::vector<ReelPiece> pieces, double target);

    [[nodiscard]] bool empty() const { return m_chosen.empty(); }
    [[nodiscard]] const std::vector<ReelPiece> &chosen() const { return m_chosen; }
    [[nodiscard]] double length() const;
    /// "Cedar Ridge highlights", or "Highlights" for flights without a place.
    [[nodiscard]] std::string title() const;
    /// The story's items: flightId, clipId (for clips), in, out and label.
    [[nodiscard]] nlohmann::ordered_json items() const;

private:
    [[nodiscard]] static std::vector<ReelPiece> oneKind(std::vector<ReelPiece> pieces, double pieceLength);
    void fill(std::vector<ReelPiece> candidates, double pieceLength);
    void stretch();
    /// Trims `piece` off the footage of the chosen pieces (but the one at `except`), so no frame
    /// shows twice; false when it is the same stretch as one of them, or too little is left.
    [[nodiscard]] bool clearOfChosen(ReelPiece &piece, std::size_t except) const;

    double m_target;
    std::vector<ReelPiece> m_chosen;
    std::vector<ReelPiece> m_uncut;  ///< each chosen piece as it was before it was cut
};
