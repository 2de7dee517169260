#pragma once

#include <nlohmann/json.hpp>

#include <optional>
#include <string>

namespace httplib {
struct Request;
struct Response;
}

/// @brief How the server answers: JSON bodies, and failures as {"detail": words}.
namespace Reply {
void json(httplib::Response &res, const nlohmann::ordered_json &body, int status = 200);
void jsonText(httplib::Response &res, std::string body, int status = 200);
void error(httplib::Response &res, int status, const std::string &detail);
/// The request body as a JSON object; answers 400 and gives nothing when it is not one.
[[nodiscard]] std::optional<nlohmann::ordered_json> object(const httplib::Request &req, httplib::Response &res);
/// Ends the connection after this reply. For a request whose body was not read: httplib would
/// otherwise take the unread body for the next request on the connection and answer it.
void closeAfter(const httplib::Request &req);
/// True when the request carries a body (a length above zero, or chunks).
[[nodiscard]] bool hasBody(const httplib::Request &req);
/// The address the client reached this server at, "http://" + its Host header; `fallback`
/// ("host:port") when the header is missing or not a plain host.
[[nodiscard]] std::string origin(const httplib::Request &req, const std::string &fallback);
/// The id captured by a route, checked; answers 400 and gives nothing when it is unsafe.
[[nodiscard]] std::optional<std::string> id(const httplib::Request &req, httplib::Response &res, int match = 1);
}
