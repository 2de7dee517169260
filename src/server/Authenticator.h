#pragma once

#include "ServerConfig.h"
#include "TokenStore.h"

#include <chrono>
#include <optional>
#include <string>

namespace httplib {
struct Request;
}

/// @brief Decides who sends a request, by the mode the server was started with.
///
/// `none` lets everyone in; `basic` takes the one user and password; `token` takes Bearer
/// tokens, the viewer cookie that a token can be traded for where `WebSessionScope` lets it in,
/// and the account page's cookie.
class Authenticator
{
public:
    /// The app's web view: the 3D page and the files it plays.
    static constexpr const char *sessionCookie = "aeroloom_session";
    /// A browser signed in to the account page.
    static constexpr const char *accountCookie = "aeroloom_account";
    /// How long a web session lasts.
    static constexpr std::chrono::hours sessionLife{12};

    Authenticator(const ServerConfig &config, TokenStore &tokens) : m_config(config), m_tokens(tokens) {}

    /// The e-mail address of the sender, or nothing when the credentials are missing or wrong.
    [[nodiscard]] std::optional<std::string> identify(const httplib::Request &request) const;
    /// The Bearer token of a request, when it carries one.
    [[nodiscard]] static std::optional<std::string> bearer(const httplib::Request &request);
    /// The viewer session of a request's cookie, when it carries one.
    [[nodiscard]] static std::optional<std::string> session(const httplib::Request &request);
    /// The account-page session of a request's cookie, when it carries one.
    [[nodiscard]] static std::optional<std::string> accountSession(const httplib::Request &request);
    [[nodiscard]] AuthMode mode() const { return m_config.auth; }

private:
    [[nodiscard]] std::optional<std::string> basic(const std::string &header) const;

    const ServerConfig &m_config;
    TokenStore &m_tokens;
};
