#include "ShareCopy.h"

#include <QDate>
#include <QLocale>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace ShareCopy {

namespace {
struct ShotWords {
    const char *name;
    const char *one;     ///< "an orbit"
    const char *many;    ///< "Orbits"
};

constexpr ShotWords shotWords[] = {
    {"orbit", "an orbit", "Orbits"},          {"reveal", "a reveal", "Reveals"},
    {"top-down", "a top-down view", "Top-down views"}, {"fly-by", "a fly-by", "Fly-bys"},
    {"fast-pass", "a fast pass", "Fast passes"}, {"climb", "a climb", "Climbs"},
    {"descent", "a descent", "Descents"},      {"hover-pan", "a slow pan", "Slow pans"},
};

const ShotWords *wordsFor(const std::string &shot)
{
    for (const ShotWords &w : shotWords) {
        if (shot == w.name)
            return &w;
    }
    return nullptr;
}

std::string joined(const std::vector<std::string> &parts)
{
    std::string out;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (i > 0)
            out += i + 1 == parts.size() ? " and " : ", ";
        out += parts[i];
    }
    return out;
}

std::string capitalised(std::string text)
{
    if (!text.empty() && text[0] >= 'a' && text[0] <= 'z')
        text[0] = char(text[0] - 'a' + 'A');
    return text;
}

/// "an orbit, a fast pass and a climb": the three kinds with the most screen time.
std::string shotPhrase(const std::vector<std::string> &shots)
{
    std::vector<std::string> parts;
    for (const std::string &shot : shots) {
        if (const ShotWords *w = wordsFor(shot); w && parts.size() < 3)
            parts.push_back(w->one);
    }
    return joined(parts);
}

QDate dayOf(const std::string &text)
{
    return QDate::fromString(QString::fromStdString(text), QStringLiteral("yyyy-MM-dd"));
}

std::string shown(const QDate &day, const char *format)
{
    return QLocale::c().toString(day, QString::fromLatin1(format)).toStdString();
}

/// "June 1, 2024", "June 2024", or "May to July 2024" for the days of the story's flights.
std::string when(const std::vector<std::string> &days)
{
    if (days.empty())
        return {};
    const QDate first = dayOf(days.front()), last = dayOf(days.back());
    if (!first.isValid() || !last.isValid())
        return {};
    if (first == last)
        return shown(first, "MMMM d, yyyy");
    if (first.year() == last.year() && first.month() == last.month())
        return shown(first, "MMMM yyyy");
    if (first.year() == last.year())
        return shown(first, "MMMM") + " to " + shown(last, "MMMM yyyy");
    return shown(first, "MMMM yyyy") + " to " + shown(last, "MMMM yyyy");
}

/// "June 2024" when the flights were all in one month, "2024" in one year; else nothing.
std::string monthOrYear(const std::vector<std::string> &days)
{
    if (days.empty())
        return {};
    const QDate first = dayOf(days.front()), last = dayOf(days.back());
    if (!first.isValid() || !last.isValid() || first.year() != last.year())
        return {};
    return first.month() == last.month() ? shown(first, "MMMM yyyy") : shown(first, "yyyy");
}

std::string length(double seconds)
{
    const long long whole = std::llround(seconds);
    char text[32];
    std::snprintf(text, sizeof text, "%lld:%02lld", whole / 60, whole % 60);
    return text;
}

void add(std::vector<Suggestion> &out, std::string title, std::string description)
{
    if (title.empty())
        return;
    for (const Suggestion &s : out) {
        if (s.title == title)
            return;
    }
    out.push_back({std::move(title), description.empty() ? std::nullopt : std::optional(std::move(description))});
}
} // namespace

std::vector<Suggestion> suggest(const StoryFacts &facts)
{
    std::vector<Suggestion> out;
    const std::string place = facts.places.empty() ? std::string() : facts.places.front();
    const std::string where = joined(std::vector(facts.places.begin(), facts.places.begin() + std::min<std::size_t>(2, facts.places.size())));
    const std::string date = when(facts.days);
    const std::string shots = shotPhrase(facts.shots);
    const std::string clipCount = std::to_string(facts.clips) + (facts.clips == 1 ? " clip" : " clips");

    if (!place.empty()) {
        std::string description = shots.empty() ? "A flight" : capitalised(shots);
        description += " over " + where;
        description += date.empty() ? "." : ", " + date + ".";
        add(out, place + " from above", description);
    }
    if (const std::string season = monthOrYear(facts.days); !place.empty() && !season.empty())
        add(out, place + ", " + season, clipCount + ", " + length(facts.seconds) + " of flying.");
    if (const ShotWords *w = facts.shots.empty() ? nullptr : wordsFor(facts.shots.front())) {
        add(out, std::string(w->many) + (place.empty() ? std::string(" from the air") : " over " + place),
            shots.empty() ? std::string() : "With " + shots + (date.empty() ? "." : " — flown " + date + "."));
    }
    if (!facts.labels.empty()) {
        std::vector<std::string> some(facts.labels.begin(), facts.labels.begin() + std::min<std::size_t>(3, facts.labels.size()));
        add(out, capitalised(facts.labels.front()),
            capitalised(joined(some)) + (facts.labels.size() > some.size() ? " and more" : "") + ".");
    }
    if (!facts.title.empty() && facts.title != "Untitled story") {
        std::string description = length(facts.seconds) + " from " + clipCount;
        description += place.empty() ? "." : " over " + where + ".";
        add(out, facts.title, description);
    }
    if (out.empty())
        add(out, "Up in the air", "A drone flight in " + clipCount + ".");
    return out;
}

} // namespace ShareCopy
