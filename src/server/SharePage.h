#pragma once

#include <cstdint>
#include <map>
#include <string>

/// @brief The public page of a shared video, and the one page a link that isn't there gets.
/// The pages are built into the server (pages/ in the source); nothing is fetched from elsewhere.
namespace SharePage {

struct Content {
    std::string origin;  ///< where visitors reach the server, "http://host:port"
    std::string token;
    std::string title;
    std::string description;  ///< may be empty
    double duration = 0;
    bool vertical = false;
    int width = 0;  ///< of the video and its poster
    int height = 0;
    std::int64_t views = 0;
    std::int64_t hearts = 0;
};

/// The page, with what unfurls the link (Open Graph and Twitter card tags) filled in.
[[nodiscard]] std::string page(const Content &content);
/// "Link not found": the same for a revoked link and one that never was.
[[nodiscard]] std::string notFound();
/// Text made safe for HTML, in element content and in quoted attributes alike.
[[nodiscard]] std::string escaped(const std::string &text);
/// Fills `{{name}}` in a template in one pass: what is filled in is never read again.
[[nodiscard]] std::string filled(const std::string &templ, const std::map<std::string, std::string> &values);

}
