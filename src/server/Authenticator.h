#pragma once

#include "ServerConfig.h"
#include "TokenStore.h"

#include <optional>
#include <string>

namespace httplib {
struct Request;
}

/// @brief Decides who sends a request, by the mode the server was started with.
///
/// `none` lets everyone in; `basic` takes the one user and password; `token` takes Bearer
/// tokens, and the web-session cookie that a token can be traded for where `WebSessionScope`
/// lets it in.
class Authenticator
{
public:
    static constexpr const char *sessionCookie = "aeroloom_session";

    Authenticator(const ServerConfig &config, TokenStore &tokens) : m_config(config), m_tokens(tokens) {}

    /// The e-mail address of the sender, or nothing when the credentials are missing or wrong.
    [[nodiscard]] std::optional<std::string> identify(const httplib::Request &request) const;
    /// The Bearer token of a request, when it carries one.
    [[nodiscard]] static std::optional<std::string> bearer(const httplib::Request &request);
    [[nodiscard]] AuthMode mode() const { return m_config.auth; }

private:
    [[nodiscard]] std::optional<std::string> basic(const std::string &header) const;

    const ServerConfig &m_config;
    TokenStore &m_tokens;
};
