#include "WebSessionScope.h"

#include <httplib.h>

#include <array>
#include <string_view>

namespace {
/// The files of a flight that the page plays: its track, its video at either size, its still.
constexpr std::array<std::string_view, 4> mediaNames{"flight.json", "proxy.mp4", "proxy_480.mp4", "thumb.jpg"};

bool isFlightMedia(std::string_view path)
{
    constexpr std::string_view prefix = "/flights/";
    if (path.substr(0, prefix.size()) != prefix)
        return false;
    path.remove_prefix(prefix.size());
    const auto slash = path.find('/');
    if (slash == 0 || slash == std::string_view::npos)
        return false;
    const std::string_view name = path.substr(slash + 1);
    for (const auto media : mediaNames)
        if (name == media)
            return true;
    return false;
}
} // namespace

namespace WebSessionScope {

bool covers(const httplib::Request &request)
{
    if (request.method != "GET" && request.method != "HEAD")
        return false;
    return request.path == "/theater.html" || isFlightMedia(request.path);
}

} // namespace WebSessionScope
