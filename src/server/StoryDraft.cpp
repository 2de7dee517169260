#include "StoryDraft.h"

#include "Shot.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>

namespace {
/// A draft this close to the target is long enough.
constexpr double closeEnough = 1.0;
/// Shorter stretches are not worth a place in a story.
constexpr double shortestPiece = 1.5;
/// Each further piece of a shot kind already in the draft counts this much less.
constexpr double repeatFactor = 0.85;

double hundredths(double seconds)
{
    return std::round(seconds * 100) / 100;
}

/// A detected shot is cut to its middle `length` seconds; a kept clip is the pilot's choice.
ReelPiece cut(ReelPiece piece, double length)
{
    if (piece.source != ReelPiece::Source::Kept && piece.length() > length) {
        const double middle = (piece.start + piece.end) / 2;
        piece.start = middle - length / 2;
        piece.end = middle + length / 2;
    }
    return piece;
}

bool betterOrder(const ReelPiece &a, const ReelPiece &b)
{
    return std::tie(b.score, a.date, a.flightId, a.start) < std::tie(a.score, b.date, b.flightId, b.start);
}
} // namespace

StoryDraft::StoryDraft(std::vector<ReelPiece> pieces, double target) : m_target(target)
{
    // Detected shots run a quarter of the story each, between 4 and 12 seconds.
    const double pieceLength = std::clamp(target / 4, 4.0, 12.0);
    fill(oneKind(std::move(pieces), pieceLength), pieceLength);
    stretch();
}

std::vector<ReelPiece> StoryDraft::oneKind(std::vector<ReelPiece> pieces, double pieceLength)
{
    // The place and shape with the most good footage: each piece weighs its score times the
    // length it could bring, and what the pilot kept weighs three times what was detected.
    std::map<std::pair<std::string, bool>, double> weight;
    for (const ReelPiece &p : pieces) {
        const double kept = p.source == ReelPiece::Source::Kept ? 3 : 1;
        weight[{p.place, p.vertical}] += p.score * cut(p, pieceLength).length() * kept;
    }
    const auto best = std::max_element(weight.begin(), weight.end(),
                                       [](const auto &a, const auto &b) { return a.second < b.second; });
    if (best == weight.end())
        return {};
    std::erase_if(pieces, [&](const ReelPiece &p) { return std::pair(p.place, p.vertical) != best->first; });
    return pieces;
}

void StoryDraft::fill(std::vector<ReelPiece> candidates, double pieceLength)
{
    std::stable_sort(candidates.begin(), candidates.end(), betterOrder);
    std::map<std::string, int> shotsUsed;
    double total = 0;
    while (total < m_target - closeEnough && !candidates.empty()) {
        // The best piece, a shot kind already used counting a little less each time.
        const auto value = [&](const ReelPiece &p) {
            const auto used = p.source == ReelPiece::Source::Kept || p.shot.empty() ? 0 : shotsUsed[p.shot];
            return p.score * std::pow(repeatFactor, used);
        };
        auto pick = candidates.begin();
        for (auto it = candidates.begin(); it != candidates.end(); ++it) {
            if (value(*it) > value(*pick))
                pick = it;
        }
        ReelPiece uncut = std::move(*pick);
        candidates.erase(pick);
        ReelPiece piece = cut(uncut, pieceLength);

        const double room = m_target - total;
        if (!clearOfChosen(piece, m_chosen.size()))
            continue;
        if (piece.length() > room)
            piece.end = piece.start + room;
        if (piece.length() < shortestPiece)
            continue;
        piece.start = hundredths(piece.start);
        piece.end = hundredths(piece.end);
        total += piece.length();
        ++shotsUsed[piece.shot];
        m_chosen.push_back(std::move(piece));
        m_uncut.push_back(std::move(uncut));
    }
}

void StoryDraft::stretch()
{
    double missing = m_target - length();
    for (std::size_t i = 0; i < m_chosen.size() && missing > closeEnough; ++i) {
        ReelPiece &piece = m_chosen[i];
        const ReelPiece &uncut = m_uncut[i];
        if (piece.source == ReelPiece::Source::Kept || uncut.length() <= piece.length())
            continue;
        const ReelPiece before = piece;
        const double grown = std::min(uncut.length(), piece.length() + missing);
        const double middle = (piece.start + piece.end) / 2;
        piece.start = hundredths(std::clamp(middle - grown / 2, uncut.start, uncut.end - grown));
        piece.end = hundredths(std::min(piece.start + grown, uncut.end));
        if (!clearOfChosen(piece, i) || piece.length() < before.length()) {
            piece = before;
            continue;
        }
        missing -= piece.length() - before.length();
    }
}

bool StoryDraft::clearOfChosen(ReelPiece &piece, std::size_t except) const
{
    for (std::size_t i = 0; i < m_chosen.size(); ++i) {
        const ReelPiece &c = m_chosen[i];
        if (i == except || c.flightId != piece.flightId || c.end <= piece.start || piece.end <= c.start)
            continue;
        if (Shots::sameStretch(c.start, c.end, piece.start, piece.end))
            return false;
        if (c.start <= piece.start)
            piece.start = c.end;
        else
            piece.end = c.start;
    }
    return piece.length() >= shortestPiece;
}

double StoryDraft::length() const
{
    double total = 0;
    for (const ReelPiece &p : m_chosen)
        total += p.length();
    return total;
}

std::string StoryDraft::title() const
{
    const std::string place = m_chosen.empty() ? std::string() : m_chosen.front().place;
    return place.empty() ? std::string("Highlights") : place + " highlights";
}

nlohmann::ordered_json StoryDraft::items() const
{
    auto items = nlohmann::ordered_json::array();
    for (const ReelPiece &p : m_chosen) {
        nlohmann::ordered_json item{{"flightId", p.flightId}};
        if (p.clipId)
            item["clipId"] = *p.clipId;
        item["in"] = p.start;
        item["out"] = p.end;
        item["label"] = p.label;
        items.push_back(std::move(item));
    }
    return items;
}
