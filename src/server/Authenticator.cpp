#include "Authenticator.h"

#include "WebSessionScope.h"

#include <httplib.h>

#include <QByteArray>

namespace {
/// Compares without stopping at the first difference, so timing tells nothing of the secret.
bool sameText(const std::string &a, const std::string &b)
{
    unsigned char diff = a.size() == b.size() ? 0 : 1;
    const std::size_t n = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < n; ++i)
        diff |= static_cast<unsigned char>(a[i] ^ b[i]);
    return diff == 0;
}

std::optional<std::string> cookie(const httplib::Request &request, const std::string &name)
{
    const std::string header = request.get_header_value("Cookie");
    std::size_t pos = 0;
    while (pos < header.size()) {
        while (pos < header.size() && (header[pos] == ' ' || header[pos] == ';'))
            ++pos;
        const auto end = header.find(';', pos);
        const std::string pair = header.substr(pos, end == std::string::npos ? std::string::npos : end - pos);
        if (pair.rfind(name + "=", 0) == 0)
            return pair.substr(name.size() + 1);
        if (end == std::string::npos)
            break;
        pos = end + 1;
    }
    return std::nullopt;
}
} // namespace

std::optional<std::string> Authenticator::bearer(const httplib::Request &request)
{
    const std::string header = request.get_header_value("Authorization");
    if (header.rfind("Bearer ", 0) != 0 || header.size() <= 7)
        return std::nullopt;
    return header.substr(7);
}

std::optional<std::string> Authenticator::basic(const std::string &header) const
{
    if (header.rfind("Basic ", 0) != 0)
        return std::nullopt;
    const QByteArray decoded = QByteArray::fromBase64(QByteArray::fromStdString(header.substr(6)));
    const auto colon = decoded.indexOf(':');
    if (colon < 0)
        return std::nullopt;
    const std::string user = decoded.left(colon).toStdString();
    const std::string password = decoded.mid(colon + 1).toStdString();
    // Both are compared in full every time, so neither can be told right on its own.
    const bool userOk = sameText(user, m_config.user);
    const bool passwordOk = sameText(password, m_config.password);
    if (!(userOk && passwordOk))
        return std::nullopt;
    return user.find('@') == std::string::npos ? user + "@localhost" : user;
}

std::optional<std::string> Authenticator::identify(const httplib::Request &request) const
{
    switch (m_config.auth) {
    case AuthMode::None:
        return std::string("pilot@localhost");
    case AuthMode::Basic:
        return basic(request.get_header_value("Authorization"));
    case AuthMode::Token:
        if (const auto token = bearer(request))
            return m_tokens.lookup(*token);
        if (!WebSessionScope::covers(request))
            return std::nullopt;
        if (const auto session = cookie(request, sessionCookie))
            return m_tokens.lookupSession(*session, m_config.now());
        return std::nullopt;
    }
    return std::nullopt;
}
