#include "Reply.h"
#include "Routes.h"
#include "ServerContext.h"

#include <httplib.h>

namespace {
constexpr auto sessionLife = Authenticator::sessionLife;

std::string page(const std::string &title, const std::string &text)
{
    return "<!doctype html><html><head><meta charset=\"utf-8\"><title>" + title
        + "</title><style>body{font-family:sans-serif;background:#0b1224;color:#e8ecf4;display:flex;"
          "align-items:center;justify-content:center;height:100vh;margin:0}main{max-width:28em;text-align:center}"
          "</style></head><body><main><h1>"
        + title + "</h1><p>" + text + "</p></main></body></html>";
}

void deviceRoutes(httplib::Server &server, ServerContext &ctx)
{
    server.Post("/api/auth/device/request", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const auto body = Reply::object(req, res);
        if (!body)
            return;
        const std::string email = body->value("email", std::string());
        if (email.find('@') == std::string::npos || email.size() > 254
            || email.find_first_of("\r\n") != std::string::npos)
            return Reply::error(res, 400, "That is not an e-mail address");
        std::string name = body->value("name", std::string("a device"));
        if (name.size() > 120 || name.find_first_of("\r\n") != std::string::npos)
            name = "a device";
        std::string host = req.get_header_value("Host");
        if (host.empty() || host.find_first_of("/\\ \r\n") != std::string::npos)
            host = ctx.config.host + ":" + std::to_string(ctx.config.port);
        const auto requested = ctx.device.request(email, name, "http://" + host);
        Reply::json(res, {{"secret", requested.secret}});
    });

    server.Post("/api/auth/device/poll", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const auto body = Reply::object(req, res);
        if (!body)
            return;
        const auto poll = ctx.device.poll(body->value("secret", std::string()));
        nlohmann::ordered_json out{{"status", poll.status}};
        if (poll.token)
            out["token"] = *poll.token;
        Reply::json(res, out);
    });

    server.Get("/auth/device/([0-9a-f]{1,128})", [&ctx](const httplib::Request &req, httplib::Response &res) {
        switch (ctx.device.approve(req.matches[1].str())) {
        case DeviceSignIn::Approval::Approved:
            res.set_content(page("You're signed in", "Go back to Aeroloom: it finishes signing in by itself."),
                            "text/html; charset=utf-8");
            return;
        case DeviceSignIn::Approval::Expired:
            res.status = 410;
            res.set_content(page("This link has expired", "Ask for a fresh sign-in link from Aeroloom."),
                            "text/html; charset=utf-8");
            return;
        case DeviceSignIn::Approval::Unknown:
            res.status = 404;
            res.set_content(page("This link is not known", "It may have been used already. Ask for a fresh one."),
                            "text/html; charset=utf-8");
            return;
        }
    });
}
} // namespace

namespace Routes {

bool isPublic(const httplib::Request &req)
{
    return req.path.rfind("/api/auth/device/", 0) == 0 || req.path.rfind("/auth/device/", 0) == 0
        || req.path.rfind("/api/auth/web/", 0) == 0 || isWebPage(req) || isAccountPage(req) || isSharePage(req);
}

void addAuth(httplib::Server &server, ServerContext &ctx)
{
    server.Get("/api/me", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const std::string email = ctx.auth.identify(req).value_or("pilot@localhost");
        Reply::json(res, {{"id", 1}, {"email", email}, {"admin", true}, {"plan", "local"},
                          {"ai", ctx.config.suggestions}});
    });

    // Only token sign-in has device sign-in: elsewhere the client is told "not supported" by a 404.
    if (ctx.config.auth == AuthMode::Token)
        deviceRoutes(server, ctx);

    server.Post("/api/auth/session", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const auto token = Authenticator::bearer(req);
        const auto email = ctx.auth.identify(req);
        if (ctx.config.auth != AuthMode::Token || !token || !email)
            return Reply::error(res, 404, "Web sessions are given for API tokens only");
        const std::string session = ctx.tokens.createSession(*email, ctx.config.now() + sessionLife, SessionKind::Viewer);
        Reply::json(res, {{"cookie", Authenticator::sessionCookie},
                          {"token", session},
                          {"maxAge", std::chrono::duration_cast<std::chrono::seconds>(sessionLife).count()}});
    });
}

} // namespace Routes
