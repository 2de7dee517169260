#include "Names.h"
#include "Reply.h"
#include "Routes.h"
#include "ServerContext.h"

#include <httplib.h>

#include <charconv>

namespace {
std::optional<std::int64_t> declaredLength(const httplib::Request &req)
{
    if (!req.has_header("Content-Length"))
        return std::nullopt;
    const std::string text = req.get_header_value("Content-Length");
    std::int64_t value = 0;
    const auto [ptr, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (ec != std::errc() || ptr != text.data() + text.size() || value < 0)
        return std::nullopt;
    return value;
}
} // namespace

namespace Routes {

void addUpload(httplib::Server &server, ServerContext &ctx)
{
    server.Put("/api/flights/([^/]+)/files/([^/]+)",
               [&ctx](const httplib::Request &req, httplib::Response &res, const httplib::ContentReader &reader) {
                   const auto id = Reply::id(req, res);
                   if (!id)
                       return;
                   const std::string name = req.matches[2].str();
                   if (!Names::isUploadName(name))
                       return Reply::error(res, 400, "A flight consists of flight.json, thumb.jpg, moments.json "
                                                     "and proxy.mp4 only");
                   const auto outcome = ctx.staging.receive(
                       *id, name, declaredLength(req),
                       [&reader](const StagingArea::Sink &sink) { return reader(sink); });
                   if (!outcome.ok())
                       return Reply::error(res, outcome.status, outcome.detail);
                   Reply::json(res, {{"staged", name}, {"bytes", outcome.bytes}});
               });

    server.Post("/api/flights/([^/]+)/commit", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const auto id = Reply::id(req, res);
        if (!id)
            return;
        const auto outcome = ctx.staging.commit(*id);
        if (!outcome.ok())
            return Reply::error(res, outcome.status, outcome.detail);
        Reply::json(res, {{"analysis", "client-provided"}});
    });

    server.Delete("/api/flights/([^/]+)/staging", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const auto id = Reply::id(req, res);
        if (!id)
            return;
        ctx.staging.discard(*id);
        Reply::json(res, {{"discarded", *id}});
    });
}

} // namespace Routes
