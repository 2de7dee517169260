#include "RecordCheck.h"

#include <cmath>

using nlohmann::ordered_json;

namespace {
bool isTime(const ordered_json &value)
{
    // Infinity would be written back as null; the parser refuses it today, this keeps it so.
    return value.is_number() && std::isfinite(value.get<double>());
}

bool absentOr(const ordered_json &object, const char *key, bool (ordered_json::*test)() const noexcept)
{
    const auto it = object.find(key);
    return it == object.end() || it->is_null() || ((*it).*test)();
}

/// The in and out of a clip or story item: times from 0, the start strictly before the end.
std::string span(const ordered_json &entry)
{
    const auto in = entry.find("in");
    const auto out = entry.find("out");
    if (in == entry.end() || !isTime(*in))
        return "\"in\" must be a number of seconds";
    if (out == entry.end() || !isTime(*out))
        return "\"out\" must be a number of seconds";
    if (in->get<double>() < 0)
        return "\"in\" can't be before 0";
    if (!(in->get<double>() < out->get<double>()))
        return "\"in\" must come before \"out\"";
    return {};
}

std::string clip(const ordered_json &entry)
{
    if (!entry.is_object())
        return "must be an object";
    if (!entry.contains("id") || !entry["id"].is_string())
        return "\"id\" must be text";
    if (auto wrong = span(entry); !wrong.empty())
        return wrong;
    if (!entry.contains("label") || !entry["label"].is_string())
        return "\"label\" must be text";
    if (!absentOr(entry, "auto", &ordered_json::is_boolean))
        return "\"auto\" must be true or false";
    if (!absentOr(entry, "why", &ordered_json::is_string))
        return "\"why\" must be text";
    return {};
}

std::string item(ordered_json &entry, const std::function<bool(const std::string &)> &knownFlight)
{
    if (!entry.is_object())
        return "must be an object";
    if (auto wrong = span(entry); !wrong.empty())
        return wrong;
    if (!entry.contains("label"))
        entry["label"] = "";
    if (!entry["label"].is_string())
        return "\"label\" must be text";
    if (!absentOr(entry, "clipId", &ordered_json::is_string))
        return "\"clipId\" must be text";
    if (!absentOr(entry, "flightId", &ordered_json::is_string))
        return "\"flightId\" must be text";
    if (entry.contains("flightId") && entry["flightId"].is_string()
        && !knownFlight(entry["flightId"].get<std::string>()))
        return "there is no flight " + entry["flightId"].get<std::string>() + " in this library";
    return {};
}

std::string numbered(const char *what, std::size_t index, const std::string &wrong)
{
    return wrong.empty() ? wrong : std::string(what) + " " + std::to_string(index + 1) + ": " + wrong;
}
} // namespace

namespace RecordCheck {

std::string clips(const ordered_json &document)
{
    if (!document.is_object())
        return "The clips must be a JSON object";
    const auto list = document.find("clips");
    if (list == document.end() || !list->is_array())
        return "\"clips\" must be a list";
    for (std::size_t i = 0; i < list->size(); ++i) {
        if (auto wrong = numbered("clip", i, clip((*list)[i])); !wrong.empty())
            return wrong;
    }
    // Spans the pilot tossed, so they aren't suggested again.
    if (const auto dismissed = document.find("dismissed"); dismissed != document.end()) {
        if (!dismissed->is_array())
            return "\"dismissed\" must be a list";
        for (std::size_t i = 0; i < dismissed->size(); ++i) {
            const auto &entry = (*dismissed)[i];
            if (!entry.is_object() || !entry.contains("in") || !isTime(entry["in"]) || !entry.contains("out")
                || !isTime(entry["out"]))
                return numbered("dismissed span", i, "\"in\" and \"out\" must be numbers of seconds");
        }
    }
    return {};
}

std::string storyItems(ordered_json &items, const std::function<bool(const std::string &)> &knownFlight)
{
    if (!items.is_array())
        return "\"items\" must be a list";
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (auto wrong = numbered("item", i, item(items[i], knownFlight)); !wrong.empty())
            return wrong;
    }
    return {};
}

} // namespace RecordCheck
