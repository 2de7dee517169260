#pragma once

namespace httplib {
struct Request;
}

/// @brief What the cookie of a web session opens: the 3D page and the media it plays, for
/// reading only.
///
/// The cookie lives in a web view that runs the library's page, so it is worth less than the
/// token it was traded for: it never reaches the API, the flight list or any change.
namespace WebSessionScope {
[[nodiscard]] bool covers(const httplib::Request &request);
}
