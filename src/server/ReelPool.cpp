#include "ReelPool.h"

#include "LibraryFiles.h"
#include "Shot.h"
#include "Suggestions.h"

#include <algorithm>
#include <set>

using nlohmann::ordered_json;
using Span = Suggestions::Span;

namespace {

std::string text(const ordered_json &doc, const char *key)
{
    return doc.is_object() && doc.contains(key) && doc[key].is_string() ? doc[key].get<std::string>() : std::string();
}

double number(const ordered_json &doc, const char *key, double fallback)
{
    return doc.is_object() && doc.contains(key) && doc[key].is_number() ? doc[key].get<double>() : fallback;
}

bool onAny(const Span &span, const std::vector<Span> &spans)
{
    return std::any_of(spans.begin(), spans.end(),
                       [&](const Span &o) { return Shots::sameStretch(span.first, span.second, o.first, o.second); });
}

std::vector<std::string> flightsAsked(FlightIndex &index, const ReelPool::Request &request)
{
    if (request.flightIds) {
        std::vector<std::string> ids;
        std::set<std::string> seen;
        for (const auto &id : *request.flightIds) {
            if (seen.insert(id).second)
                ids.push_back(id);
        }
        return ids;
    }
    // The whole library means what the gallery shows: hidden flights stay out.
    const auto hidden = index.hidden();
    std::vector<std::string> ids;
    for (const auto &id : index.ids()) {
        if (!std::binary_search(hidden.begin(), hidden.end(), id))
            ids.push_back(id);
    }
    return ids;
}


/// The pieces of one flight: its clips, then its moments that no clip covers.
void addFlight(const Library &library, const FlightIndex::Row &row, bool clipsOnly, std::vector<ReelPiece> &out)
{
    const auto entry = ordered_json::parse(row.entry, nullptr, false);
    ReelPiece base;
    base.flightId = row.id;
    base.place = text(entry, "place");
    base.date = text(entry, "date");
    base.vertical = entry.is_object() && entry.contains("video") && entry["video"].is_object()
        && entry["video"].value("vertical", false);

    const auto clips = row.clips ? ordered_json::parse(*row.clips, nullptr, false) : ordered_json();
    const std::vector<Span> tossed = Suggestions::dismissed(clips);
    std::vector<Span> clipped;
    const bool hasClips = clips.is_object() && clips.contains("clips") && clips["clips"].is_array();
    for (const auto &clip : hasClips ? clips["clips"] : ordered_json::array()) {
        const auto span = Suggestions::spanOf(clip);
        if (!span || span->second <= span->first)
            continue;
        const bool suggestion = Suggestions::isSuggestion(clip);
        if (!suggestion)
            clipped.push_back(*span);
        if (suggestion && (clipsOnly || onAny(*span, tossed)))
            continue;
        if (suggestion)
            clipped.push_back(*span);
        ReelPiece piece = base;
        piece.source = suggestion ? ReelPiece::Source::Suggested : ReelPiece::Source::Kept;
        if (clip.contains("id") && clip["id"].is_string())
            piece.clipId = clip["id"].get<std::string>();
        std::tie(piece.start, piece.end) = *span;
        piece.label = text(clip, "label");
        piece.shot = text(clip, "shot");
        piece.score = suggestion ? number(clip, "score", 0.5) : 1.0;
        out.push_back(std::move(piece));
    }
    if (clipsOnly)
        return;

    const auto moments = LibraryFiles::readJson(library.flight(row.id) / "moments.json");
    const bool hasMoments = moments.is_object() && moments.contains("moments") && moments["moments"].is_array();
    for (const auto &moment : hasMoments ? moments["moments"] : ordered_json::array()) {
        const auto span = Suggestions::spanOf(moment);
        if (!span || span->second <= span->first || onAny(*span, clipped) || onAny(*span, tossed))
            continue;
        ReelPiece piece = base;
        std::tie(piece.start, piece.end) = *span;
        const std::string why = text(moment, "why");
        piece.label = why.empty() ? std::string("Moment") : why.substr(0, why.find(" · "));
        piece.shot = text(moment, "shot");
        piece.score = number(moment, "score", 0.4);
        out.push_back(std::move(piece));
    }
}

} // namespace

namespace ReelPool {

std::vector<ReelPiece> gather(const Library &library, FlightIndex &index, const Request &request)
{
    std::vector<ReelPiece> pieces;
    for (const auto &id : flightsAsked(index, request)) {
        const auto row = index.row(id);
        if (!row)
            continue;
        if (request.place) {
            const auto entry = ordered_json::parse(row->entry, nullptr, false);
            if (text(entry, "place") != *request.place)
                continue;
        }
        addFlight(library, *row, request.clipsOnly, pieces);
    }
    return pieces;
}

} // namespace ReelPool
