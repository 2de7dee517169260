#include "PageFiles.h"
#include "Reply.h"
#include "Routes.h"
#include "ServerContext.h"

#include <httplib.h>

#include <algorithm>

using nlohmann::ordered_json;

namespace {
/// The session cookie of a browser signed in to the account page. Strict same-site: no other
/// site can make the browser act on the account, and the page's script never sees it.
std::string sessionCookie(const std::string &session, std::chrono::seconds maxAge)
{
    return std::string(Authenticator::accountCookie) + "=" + session + "; Path=/; Max-Age="
        + std::to_string(maxAge.count()) + "; HttpOnly; SameSite=Strict";
}

void startSession(ServerContext &ctx, httplib::Response &res, const std::string &email)
{
    const std::string session = ctx.tokens.createSession(email, ctx.config.now() + Authenticator::sessionLife, SessionKind::Account);
    res.set_header("Set-Cookie", sessionCookie(session, Authenticator::sessionLife));
}

/// A token's name as the pilot typed it: trimmed, one line, short; "API token" when empty.
std::optional<std::string> tokenName(const ordered_json &body)
{
    if (!body.contains("name"))
        return "API token";
    if (!body["name"].is_string())
        return std::nullopt;
    std::string name = body["name"];
    const auto first = name.find_first_not_of(" \t");
    const auto last = name.find_last_not_of(" \t");
    name = first == std::string::npos ? std::string() : name.substr(first, last - first + 1);
    if (name.size() > 80 || std::any_of(name.begin(), name.end(), [](unsigned char c) { return c < 0x20 || c == 0x7f; }))
        return std::nullopt;
    return name.empty() ? "API token" : name;
}

/// Signing a browser in: with a token pasted into the page, or with the e-mailed link.
void signInRoutes(httplib::Server &server, ServerContext &ctx)
{
    server.Post("/api/auth/web/token", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const auto body = Reply::object(req, res);
        if (!body)
            return;
        if (ctx.config.auth != AuthMode::Token)
            return Reply::error(res, 404, "This library doesn't sign in with tokens");
        const ordered_json given = body->value("token", ordered_json());
        const std::string token = given.is_string() ? given.get<std::string>() : std::string();
        const auto email = token.empty() ? std::nullopt : ctx.tokens.lookup(token);
        if (!email)
            return Reply::error(res, 401, "That token isn't one of this library's");
        startSession(ctx, res, *email);
        Reply::json(res, {{"email", *email}});
    });

    // The page asks for the link through the device sign-in, then waits here: the approved
    // attempt becomes this browser's session rather than a new API token.
    if (ctx.config.auth == AuthMode::Token) {
        server.Post("/api/auth/web/poll", [&ctx](const httplib::Request &req, httplib::Response &res) {
            const auto body = Reply::object(req, res);
            if (!body)
                return;
            const ordered_json secret = body->value("secret", ordered_json());
            const auto claimed = ctx.device.claim(secret.is_string() ? secret.get<std::string>() : std::string());
            if (claimed.email)
                startSession(ctx, res, *claimed.email);
            Reply::json(res, {{"status", claimed.status}});
        });
    }

    server.Post("/api/auth/web/signout", [&ctx](const httplib::Request &req, httplib::Response &res) {
        if (const auto session = Authenticator::accountSession(req))
            ctx.tokens.endSession(*session, SessionKind::Account);
        res.set_header("Set-Cookie", sessionCookie("", std::chrono::seconds(0)));
        Reply::json(res, {{"signedOut", true}});
    });
}

void tokenRoutes(httplib::Server &server, ServerContext &ctx)
{
    // Each account sees and ends only its own tokens.
    server.Get("/api/tokens", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const std::string email = ctx.auth.identify(req).value_or(std::string());
        ordered_json tokens = ordered_json::array();
        for (const auto &t : ctx.tokens.list(email))
            tokens.push_back({{"id", t.id}, {"name", t.name}, {"created", t.created}});
        Reply::json(res, {{"accepted", ctx.config.auth == AuthMode::Token}, {"tokens", tokens}});
    });

    server.Post("/api/tokens", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const auto body = Reply::object(req, res);
        if (!body)
            return;
        const auto name = tokenName(*body);
        if (!name)
            return Reply::error(res, 400, "A token's name is one line of at most 80 characters");
        const std::string email = ctx.auth.identify(req).value_or(std::string());
        const std::string token = ctx.tokens.create(email, *name);
        Reply::json(res, {{"id", TokenStore::digest(token).substr(0, TokenStore::idLength)},
                          {"name", *name},
                          {"token", token}});
    });

    server.Delete("/api/tokens/([0-9a-f]+)", [&ctx](const httplib::Request &req, httplib::Response &res) {
        const std::string id = req.matches[1].str();
        if (!ctx.tokens.revoke(ctx.auth.identify(req).value_or(std::string()), id))
            return Reply::error(res, 404, "There is no such token");
        Reply::json(res, {{"revoked", id}});
    });
}
} // namespace

namespace Routes {

bool isAccountPage(const httplib::Request &req)
{
    return req.path == "/settings.html" || PageFiles::isPagePath(req.path);
}

void addAccount(httplib::Server &server, ServerContext &ctx)
{
    server.Get("/settings.html", [](const httplib::Request &req, httplib::Response &res) {
        PageFiles::serve(req, res, "settings.html");
    });
    PageFiles::addRoutes(server);
    signInRoutes(server, ctx);
    tokenRoutes(server, ctx);
}

} // namespace Routes
