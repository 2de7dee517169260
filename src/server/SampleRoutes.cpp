#include "Reply.h"
#include "Routes.h"
#include "ServerContext.h"

#include <httplib.h>

namespace fs = std::filesystem;

namespace Routes {

void addSamples(httplib::Server &server, ServerContext &ctx)
{
    server.Get("/api/samples", [&ctx](const httplib::Request &, httplib::Response &res) {
        const auto totals = ctx.flights.samples();
        Reply::json(res, {{"count", totals.count}, {"bytes", totals.bytes}, {"restorable", totals.restorable}});
    });

    // Removed samples are parked beside the library rather than deleted, so they can come back.
    server.Post("/api/samples/remove", [&ctx](const httplib::Request &, httplib::Response &res) {
        std::lock_guard guard(ctx.staging.folderLock());
        int removed = 0;
        for (const auto &id : ctx.flights.sampleIds()) {
            std::error_code ec;
            fs::remove_all(ctx.library.parked(id), ec);
            fs::rename(ctx.library.flight(id), ctx.library.parked(id), ec);
            if (!ec && ctx.flights.park(id))
                ++removed;
        }
        Reply::json(res, {{"removed", removed}});
    });

    server.Post("/api/samples/restore", [&ctx](const httplib::Request &, httplib::Response &res) {
        std::lock_guard guard(ctx.staging.folderLock());
        int restored = 0;
        for (const auto &id : ctx.flights.parkedIds()) {
            std::error_code ec;
            // A flight of the pilot's own under the same id wins; the sample stays parked.
            if (ctx.flights.exists(id) || fs::exists(ctx.library.flight(id), ec))
                continue;
            fs::rename(ctx.library.parked(id), ctx.library.flight(id), ec);
            if (ec)
                continue;
            if (ctx.flights.unpark(id))
                ++restored;
            else
                fs::rename(ctx.library.flight(id), ctx.library.parked(id), ec);
        }
        if (restored > 0)
            ctx.proxies.nudge();
        Reply::json(res, {{"restored", restored}});
    });
}

} // namespace Routes
