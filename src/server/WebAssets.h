#pragma once

#include <string>

namespace httplib {
struct Request;
struct Response;
}

/// @brief The files of the library's own web pages, compiled into the server: its pages, their
/// scripts and styles, and the 3D library they draw with. Nothing is fetched from elsewhere.
namespace WebAssets {

struct Asset {
    std::string bytes;
    std::string type;  ///< the Content-Type it is served with
    std::string etag;  ///< quoted digest of the bytes
};

/// The file at `name` ("theater.html", "web/theater.js", …), or null when there is none.
[[nodiscard]] const Asset *find(const std::string &name);
/// Answers with `asset`, or 304 when the request already holds this version.
void serve(const httplib::Request &req, httplib::Response &res, const Asset &asset);

} // namespace WebAssets
