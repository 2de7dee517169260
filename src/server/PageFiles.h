#pragma once

#include <string>
#include <string_view>

namespace httplib {
class Server;
struct Request;
struct Response;
}

/// @brief The account page's files, served from the pages compiled in (WebAssets.h).
///
/// A page is a file in pages/ listed in this folder's CMakeLists (qt_add_resources): the HTML
/// of a page route, and scripts and styles under "/pages/<name>". Nothing comes from elsewhere,
/// and each page is sent with a policy that lets it load only from this server. The files hold
/// no data of the library, so they are served to anyone; what they show comes from the API.
namespace PageFiles {
/// Answers with one file of pages/ (a 304 when the client has it already), or 404.
void serve(const httplib::Request &req, httplib::Response &res, const std::string &name);
/// GET "/pages/<name>" for every file of pages/.
void addRoutes(httplib::Server &server);
/// True for the paths of page files, which answer without credentials.
[[nodiscard]] bool isPagePath(std::string_view path);
}
