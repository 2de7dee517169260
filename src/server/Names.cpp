#include "Names.h"

#include <array>
#include <regex>

namespace Names {

bool isSafeId(std::string_view id)
{
    if (id.empty() || id.size() > maxIdLength || id.front() == '.' || id.front() == ' ')
        return false;
    for (const unsigned char c : id) {
        if (c < 0x20 || c == 0x7f || c == '/' || c == '\\')
            return false;
    }
    return true;
}

bool isUploadName(std::string_view name)
{
    static constexpr std::array<std::string_view, 4> names{"flight.json", "thumb.jpg", "moments.json", "proxy.mp4"};
    for (const auto n : names) {
        if (n == name)
            return true;
    }
    return false;
}

long long clipThumbTenths(std::string_view name)
{
    static const std::regex pattern(R"(clipthumb_[A-Za-z0-9_.-]{1,64}_([0-9]{1,9})\.jpg)");
    std::match_results<std::string_view::const_iterator> m;
    if (!std::regex_match(name.begin(), name.end(), m, pattern))
        return -1;
    return std::stoll(m[1].str());
}

bool isServedName(std::string_view name)
{
    return isUploadName(name) || name == "proxy_480.mp4" || name == "clips.json" || clipThumbTenths(name) >= 0;
}

bool isSafeTrack(std::string_view track)
{
    if (track.empty() || track.size() > 512)
        return false;
    std::size_t start = 0;
    while (start <= track.size()) {
        const auto slash = track.find('/', start);
        const auto end = slash == std::string_view::npos ? track.size() : slash;
        if (!isSafeId(track.substr(start, end - start)))
            return false;
        if (slash == std::string_view::npos)
            break;
        start = slash + 1;
    }
    return true;
}

std::string contentType(std::string_view name)
{
    const auto ends = [name](std::string_view suffix) {
        return name.size() >= suffix.size() && name.substr(name.size() - suffix.size()) == suffix;
    };
    if (ends(".mp4"))
        return "video/mp4";
    if (ends(".jpg"))
        return "image/jpeg";
    if (ends(".json"))
        return "application/json";
    if (ends(".m4a"))
        return "audio/mp4";
    if (ends(".mp3"))
        return "audio/mpeg";
    if (ends(".html"))
        return "text/html; charset=utf-8";
    if (ends(".js") || ends(".mjs"))
        return "text/javascript; charset=utf-8";
    if (ends(".css"))
        return "text/css; charset=utf-8";
    if (ends(".svg"))
        return "image/svg+xml";
    if (ends(".png"))
        return "image/png";
    return "application/octet-stream";
}

} // namespace Names
