#include "StoryFacts.h"

#include "LibraryFiles.h"
#include "Shot.h"
#include "Suggestions.h"

#include <algorithm>
#include <map>
#include <set>

using nlohmann::ordered_json;

namespace {
std::string text(const ordered_json &object, const char *key)
{
    return object.is_object() && object.contains(key) && object[key].is_string() ? object[key].get<std::string>()
                                                                                 : std::string();
}

const ordered_json &listIn(const ordered_json &doc, const char *key)
{
    static const ordered_json none = ordered_json::array();
    return doc.is_object() && doc.contains(key) && doc[key].is_array() ? doc[key] : none;
}

/// Keys by the weight they gathered, heaviest first; equal ones in the order first seen.
std::vector<std::string> byWeight(const std::vector<std::pair<std::string, double>> &seen)
{
    std::vector<std::string> order;
    std::map<std::string, double> weight;
    for (const auto &[key, w] : seen) {
        if (key.empty())
            continue;
        if (!weight.count(key))
            order.push_back(key);
        weight[key] += w;
    }
    std::stable_sort(order.begin(), order.end(), [&weight](const auto &a, const auto &b) { return weight[a] > weight[b]; });
    return order;
}

/// The shot of an item: its clip's own, else the analysis's moment that covers the most of it.
std::string shotOf(const ordered_json &item, const ordered_json &clips, const ordered_json &moments)
{
    const std::string clipId = text(item, "clipId");
    for (const auto &clip : listIn(clips, "clips")) {
        if (!clipId.empty() && text(clip, "id") == clipId && !text(clip, "shot").empty())
            return text(clip, "shot");
    }
    const auto span = Suggestions::spanOf(item);
    if (!span)
        return {};
    std::string best;
    double bestOverlap = 0;
    for (const auto &moment : listIn(moments, "moments")) {
        const auto m = Suggestions::spanOf(moment);
        if (!m || !Shots::sameStretch(span->first, span->second, m->first, m->second))
            continue;
        const double overlap = std::min(span->second, m->second) - std::max(span->first, m->first);
        if (overlap > bestOverlap && !text(moment, "shot").empty()) {
            best = text(moment, "shot");
            bestOverlap = overlap;
        }
    }
    return best;
}

/// The label of an item: its own, else its clip's in the flight's clip list.
std::string labelOf(const ordered_json &item, const ordered_json &clips)
{
    if (const std::string own = text(item, "label"); !own.empty())
        return own;
    const std::string clipId = text(item, "clipId");
    for (const auto &clip : listIn(clips, "clips")) {
        if (!clipId.empty() && text(clip, "id") == clipId)
            return text(clip, "label");
    }
    return {};
}
} // namespace

StoryFacts StoryFacts::of(const ProjectRow &story, const Library &library, FlightIndex &flights)
{
    StoryFacts facts;
    facts.title = story.title;
    const auto items = ordered_json::parse(story.items, nullptr, false);
    std::vector<std::pair<std::string, double>> places, shots;
    std::set<std::string> days, labels;
    for (const auto &item : items.is_array() ? items : ordered_json::array()) {
        const auto span = Suggestions::spanOf(item);
        const double seconds = span ? std::max(0.0, span->second - span->first) : 0.0;
        ++facts.clips;
        facts.seconds += seconds;
        const std::string flightId = text(item, "flightId");
        const auto row = flightId.empty() ? std::nullopt : flights.row(flightId);
        const ordered_json entry = row ? ordered_json::parse(row->entry, nullptr, false) : ordered_json();
        const ordered_json clips = row && row->clips ? ordered_json::parse(*row->clips, nullptr, false) : ordered_json();
        const ordered_json moments = row ? LibraryFiles::readJson(library.flight(flightId) / "moments.json") : ordered_json();
        places.emplace_back(text(entry, "place"), seconds);
        if (const std::string date = text(entry, "date"); date.size() >= 10)
            days.insert(date.substr(0, 10));
        shots.emplace_back(shotOf(item, clips, moments), seconds);
        if (const std::string label = labelOf(item, clips); !label.empty() && labels.insert(label).second)
            facts.labels.push_back(label);
    }
    facts.places = byWeight(places);
    facts.shots = byWeight(shots);
    facts.days.assign(days.begin(), days.end());
    return facts;
}
