#include "Reply.h"
#include "Routes.h"
#include "ServerContext.h"

#include <httplib.h>

namespace Routes {

void addFlights(httplib::Server &server, ServerContext &ctx)
{
    server.Get("/api/flights", [&ctx](const httplib::Request &, httplib::Response &res) {
        Reply::json(res, {{"ids", ctx.flights.ids()}, {"quota", ctx.staging.quota()}, {"used", ctx.flights.usedBytes()}});
    });

    server.Get("/manifest.json", [&ctx](const httplib::Request &, httplib::Response &res) {
        // The body is shared with other readers until the list changes; hand httplib a view of it.
        auto body = ctx.flights.manifest();
        res.set_content_provider(
            body->size(), "application/json",
            [body](std::size_t offset, std::size_t length, httplib::DataSink &sink) {
                return sink.write(body->data() + offset, std::min(length, body->size() - offset));
            });
    });

    server.Delete("/api/flights/([^/]+)", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const auto id = Reply::id(req, res);
        if (!id)
            return;
        std::lock_guard guard(ctx.staging.folderLock());
        if (!ctx.flights.exists(*id))
            return Reply::error(res, 404, "There is no flight " + *id);
        ctx.flights.remove(*id);
        ctx.library.removeFolder(ctx.library.flight(*id));
        Reply::json(res, {{"deleted", *id}});
    });

    server.Get("/api/hidden", [&ctx](const httplib::Request &, httplib::Response &res) {
        Reply::json(res, {{"ids", ctx.flights.hidden()}});
    });

    server.Post("/api/hidden/([^/]+)", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const auto id = Reply::id(req, res);
        if (!id)
            return;
        const auto body = Reply::object(req, res);
        if (!body)
            return;
        if (!body->contains("hidden") || !(*body)["hidden"].is_boolean())
            return Reply::error(res, 400, "\"hidden\" must be true or false");
        if (!ctx.flights.setHidden(*id, (*body)["hidden"].get<bool>()))
            return Reply::error(res, 404, "There is no flight " + *id);
        Reply::json(res, {{"id", *id}, {"hidden", (*body)["hidden"]}});
    });
}

} // namespace Routes
