#include "SharePage.h"

#include "WebAssets.h"

#include <cmath>
#include <cstdio>

namespace SharePage {

namespace {
std::string resource(const char *name)
{
    const WebAssets::Asset *asset = WebAssets::find(name);
    return asset ? asset->bytes : std::string();
}

std::string length(double seconds)
{
    // Whole seconds gone by, as a player's clock shows the same length.
    const long long whole = (long long)(std::max(0.0, seconds));
    char text[32];
    std::snprintf(text, sizeof text, "%lld:%02lld", whole / 60, whole % 60);
    return text;
}
} // namespace

std::string escaped(const std::string &text)
{
    std::string out;
    out.reserve(text.size());
    for (const char c : text) {
        switch (c) {
        case '&': out += "&amp;"; break;
        case '<': out += "&lt;"; break;
        case '>': out += "&gt;"; break;
        case '"': out += "&quot;"; break;
        case '\'': out += "&#39;"; break;
        default: out += c;
        }
    }
    return out;
}

std::string filled(const std::string &templ, const std::map<std::string, std::string> &values)
{
    std::string out;
    std::size_t at = 0;
    while (at < templ.size()) {
        const std::size_t open = templ.find("{{", at);
        const std::size_t close = open == std::string::npos ? open : templ.find("}}", open + 2);
        if (close == std::string::npos) {
            out.append(templ, at, std::string::npos);
            break;
        }
        out.append(templ, at, open - at);
        const auto value = values.find(templ.substr(open + 2, close - open - 2));
        out += value != values.end() ? value->second : templ.substr(open, close + 2 - open);
        at = close + 2;
    }
    return out;
}

std::string page(const Content &content)
{
    const std::string self = content.origin + "/s/" + content.token;
    const std::string summary = content.description.empty()
        ? "A drone flight video, " + length(content.duration) + " long."
        : content.description;
    return filled(resource("share.html"),
                  {{"title", escaped(content.title)},
                   {"summary", escaped(summary)},
                   {"description", escaped(content.description)},
                   {"page", escaped(self)},
                   {"video", escaped(self + "/video.mp4")},
                   {"poster", escaped(self + "/poster.jpg")},
                   {"width", std::to_string(content.width)},
                   {"height", std::to_string(content.height)},
                   {"shape", content.vertical ? "vertical" : "landscape"},
                   {"length", length(content.duration)},
                   {"views", std::to_string(content.views)},
                   {"viewsText", std::to_string(content.views) + (content.views == 1 ? " view" : " views")},
                   {"hearts", std::to_string(content.hearts)},
                   {"style", resource("share.css")},
                   {"script", resource("share.js")}});
}

std::string notFound()
{
    return resource("not-found.html");
}

} // namespace SharePage
