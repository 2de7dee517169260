#include "Reply.h"

#include "Names.h"

#include <httplib.h>

namespace Reply {

void json(httplib::Response &res, const nlohmann::ordered_json &body, int status)
{
    jsonText(res, body.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace), status);
}

void jsonText(httplib::Response &res, std::string body, int status)
{
    res.status = status;
    res.set_content(std::move(body), "application/json");
}

void error(httplib::Response &res, int status, const std::string &detail)
{
    json(res, {{"detail", detail}}, status);
}

std::optional<nlohmann::ordered_json> object(const httplib::Request &req, httplib::Response &res)
{
    auto body = nlohmann::ordered_json::parse(req.body, nullptr, false);
    if (body.is_discarded() || !body.is_object()) {
        error(res, 400, "The request body must be a JSON object");
        return std::nullopt;
    }
    return body;
}

void closeAfter(const httplib::Request &req)
{
    // httplib 0.11 keeps a connection open whatever the reply says; a "close" on the request
    // makes it send "Connection: close" instead of keep-alive, so the client hangs up.
    auto &headers = const_cast<httplib::Request &>(req).headers;
    headers.erase("Connection");
    headers.emplace("Connection", "close");
}

bool hasBody(const httplib::Request &req)
{
    return req.has_header("Transfer-Encoding") || (req.has_header("Content-Length") && req.get_header_value("Content-Length") != "0");
}

std::string origin(const httplib::Request &req, const std::string &fallback)
{
    std::string host = req.get_header_value("Host");
    if (host.empty() || host.find_first_of("/\\ \r\n\"'<>@?#") != std::string::npos)
        host = fallback;
    return "http://" + host;
}

std::optional<std::string> id(const httplib::Request &req, httplib::Response &res, int match)
{
    std::string value = req.matches[match].str();
    if (!Names::isSafeId(value)) {
        error(res, 400, "That id is not allowed");
        return std::nullopt;
    }
    return value;
}

} // namespace Reply
