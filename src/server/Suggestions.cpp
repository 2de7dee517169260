#include "Suggestions.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <string>

using nlohmann::ordered_json;

namespace {
/// A suggestion is at least this long, so there is something to watch (a short tilt is shown
/// with what it reveals)…
constexpr double shortestClip = 3.0;
/// …and at most this long; a longer shot is offered from its start, to be trimmed at will.
constexpr double longestClip = 30.0;

double hundredths(double seconds)
{
    return std::round(seconds * 100) / 100;
}

bool overlapsAny(const Suggestions::Span &span, const std::vector<Suggestions::Span> &others)
{
    return std::any_of(others.begin(), others.end(), [&](const Suggestions::Span &o) {
        return Shots::sameStretch(span.first, span.second, o.first, o.second);
    });
}

/// How many suggestions a flight gets: a few, and one more for every two minutes of it.
std::size_t suggestionLimit(double duration)
{
    return std::min<std::size_t>(12, 3 + static_cast<std::size_t>(std::max(0.0, duration) / 120));
}

/// Ids that stay put across analyses and never meet the player's own ("c3_12450").
std::string idOf(const Shot &shot, std::set<std::string> &taken)
{
    const std::string base = std::string(Suggestions::idPrefix) + Shots::name(shot.kind) + "-"
        + std::to_string(std::llround(shot.start * 10));
    std::string id = base;
    for (int n = 2; !taken.insert(id).second; ++n)
        id = base + "-" + std::to_string(n);
    return id;
}

ordered_json listOf(const ordered_json &doc, const char *key)
{
    return doc.is_object() && doc.contains(key) && doc[key].is_array() ? doc[key] : ordered_json::array();
}

std::vector<const Shot *> bestFirst(const std::vector<Shot> &shots)
{
    std::vector<const Shot *> order;
    for (const Shot &s : shots)
        order.push_back(&s);
    std::stable_sort(order.begin(), order.end(), [](const Shot *a, const Shot *b) { return a->score > b->score; });
    return order;
}
} // namespace

namespace Suggestions {

bool isSuggestion(const ordered_json &clip)
{
    return clip.is_object() && clip.contains("auto") && clip["auto"].is_boolean() && clip["auto"].get<bool>();
}

std::optional<Span> spanOf(const ordered_json &entry)
{
    if (!entry.is_object() || !entry.contains("in") || !entry["in"].is_number() || !entry.contains("out")
        || !entry["out"].is_number())
        return std::nullopt;
    return Span{entry["in"].get<double>(), entry["out"].get<double>()};
}

std::vector<Span> dismissed(const ordered_json &clips)
{
    std::vector<Span> spans;
    for (const auto &entry : listOf(clips, "dismissed")) {
        if (const auto span = spanOf(entry))
            spans.push_back(*span);
    }
    return spans;
}

ordered_json clips(const ordered_json &current, const std::vector<Shot> &shots, double duration, int &suggested)
{
    ordered_json doc = current.is_object() ? current : ordered_json::object();
    ordered_json list = ordered_json::array();
    std::vector<Span> unavailable = dismissed(doc);
    std::set<std::string> ids;
    for (const auto &clip : listOf(doc, "clips")) {
        if (isSuggestion(clip))
            continue;
        list.push_back(clip);
        if (const auto span = spanOf(clip))
            unavailable.push_back(*span);
        if (clip.is_object() && clip.contains("id") && clip["id"].is_string())
            ids.insert(clip["id"].get<std::string>());
    }

    std::vector<std::pair<const Shot *, Span>> chosen;
    const std::size_t limit = suggestionLimit(duration);
    for (const Shot *shot : bestFirst(shots)) {
        if (chosen.size() >= limit)
            break;
        double end = std::min(shot->end, shot->start + longestClip);
        if (end - shot->start < shortestClip)
            end = std::max(end, std::min(shot->start + shortestClip, std::max(duration, shot->end)));
        const Span span{hundredths(shot->start), hundredths(end)};
        if (span.second <= span.first || overlapsAny(span, unavailable))
            continue;
        unavailable.push_back(span);
        chosen.emplace_back(shot, span);
    }
    std::stable_sort(chosen.begin(), chosen.end(), [](const auto &a, const auto &b) { return a.second < b.second; });
    for (const auto &[shot, span] : chosen) {
        list.push_back({{"id", idOf(*shot, ids)},
                        {"in", span.first},
                        {"out", span.second},
                        {"label", Shots::label(shot->kind)},
                        {"auto", true},
                        {"why", shot->why},
                        {"shot", Shots::name(shot->kind)},
                        {"score", shot->score}});
    }
    suggested = static_cast<int>(chosen.size());
    doc["clips"] = std::move(list);
    return doc;
}

ordered_json moments(const ordered_json &current, const std::vector<Shot> &shots, const ordered_json &clips)
{
    ordered_json doc = current.is_object() ? current : ordered_json::object();
    ordered_json list = ordered_json::array();
    std::set<std::string> ids;
    for (const auto &moment : listOf(doc, "moments")) {
        const bool ours = moment.is_object() && moment.contains("id") && moment["id"].is_string()
            && moment["id"].get<std::string>().rfind(idPrefix, 0) == 0;
        if (ours)
            continue;
        list.push_back(moment);
        if (moment.is_object() && moment.contains("id") && moment["id"].is_string())
            ids.insert(moment["id"].get<std::string>());
    }
    const std::vector<Span> tossed = dismissed(clips);
    for (const Shot &shot : shots) {
        const Span span{hundredths(shot.start), hundredths(shot.end)};
        if (overlapsAny(span, tossed))
            continue;
        list.push_back({{"id", idOf(shot, ids)},
                        {"in", span.first},
                        {"out", span.second},
                        {"score", shot.score},
                        {"why", shot.why},
                        {"shot", Shots::name(shot.kind)}});
    }
    doc["moments"] = std::move(list);
    doc["analysis"] = analysisVersion;
    return doc;
}

bool upToDate(const ordered_json &moments)
{
    return moments.is_object() && moments.contains("analysis") && moments["analysis"].is_number_integer()
        && moments["analysis"].get<int>() == analysisVersion && moments.contains("moments")
        && moments["moments"].is_array();
}

void rememberTossed(const ordered_json &before, ordered_json &after)
{
    std::set<std::string> kept;
    for (const auto &clip : listOf(after, "clips")) {
        if (clip.is_object() && clip.contains("id") && clip["id"].is_string())
            kept.insert(clip["id"].get<std::string>());
    }
    std::vector<Span> known = dismissed(after);
    for (const auto &clip : listOf(before, "clips")) {
        if (!isSuggestion(clip) || !clip.contains("id") || !clip["id"].is_string()
            || kept.count(clip["id"].get<std::string>()))
            continue;
        const auto span = spanOf(clip);
        if (!span || std::find(known.begin(), known.end(), *span) != known.end())
            continue;
        if (!after.contains("dismissed") || !after["dismissed"].is_array())
            after["dismissed"] = ordered_json::array();
        after["dismissed"].push_back({{"in", clip["in"]}, {"out", clip["out"]}});
        known.push_back(*span);
    }
}

} // namespace Suggestions
