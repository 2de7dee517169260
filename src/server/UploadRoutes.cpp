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
/// Answers a refused upload. A body of known length is read and dropped, so the client hears the
/// reason rather than a connection reset while it is still sending; a body that was already
/// partly read, or of unknown length, is left and the connection ends with the reply.
void refuse(const httplib::Request &req, httplib::Response &res, const httplib::ContentReader &reader, int status,
            const std::string &detail, bool partlyRead = false)
{
    const auto length = declaredLength(req);
    bool drained = false;
    if (!partlyRead && length)
        drained = reader([](const char *, std::size_t) { return true; });
    if (!drained)
        Reply::closeAfter(req);
    Reply::error(res, status, detail);
}
} // namespace

namespace Routes {

void addUpload(httplib::Server &server, ServerContext &ctx)
{
    server.Put("/api/flights/([^/]+)/files/([^/]+)",
               [&ctx](const httplib::Request &req, httplib::Response &res, const httplib::ContentReader &reader) {
                   const std::string id = req.matches[1].str();
                   if (!Names::isSafeId(id))
                       return refuse(req, res, reader, 400, "That id is not allowed");
                   const std::string name = req.matches[2].str();
                   if (!Names::isUploadName(name))
                       return refuse(req, res, reader, 400,
                                     "A flight consists of flight.json, thumb.jpg, moments.json and proxy.mp4 only");
                   bool started = false;
                   const auto outcome = ctx.staging.receive(id, name, declaredLength(req),
                                                            [&](const StagingArea::Sink &sink) {
                                                                started = true;
                                                                return reader(sink);
                                                            });
                   if (!outcome.ok() && outcome.bodyRead)
                       return Reply::error(res, outcome.status, outcome.detail);
                   if (!outcome.ok())
                       return refuse(req, res, reader, outcome.status, outcome.detail, started);
                   Reply::json(res, {{"staged", name}, {"bytes", outcome.bytes}});
               });

    server.Post("/api/flights/([^/]+)/commit", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const auto id = Reply::id(req, res);
        if (!id)
            return;
        const auto outcome = ctx.staging.commit(*id);
        if (!outcome.ok())
            return Reply::error(res, outcome.status, outcome.detail);
        const auto analysed = ctx.analyst.analyse(*id);
        ctx.proxies.nudge();
        Reply::json(res, {{"analysis", analysed.text()}});
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
