#pragma once

#include "Database.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

/// Who a web session was made for. A viewer session is what the app trades its token for so
/// its web view can open the 3D page; an account session is a browser signed in to the account
/// page. Each kind's digest is salted with its name, so one kind's text never opens the other.
enum class SessionKind { Viewer, Account };

/// @brief API tokens and web sessions. Only their SHA-256 digests are kept on disk.
class TokenStore
{
public:
    explicit TokenStore(Database &db) : m_db(db) {}

    /// A new API token for this e-mail address; the only time its text is seen.
    [[nodiscard]] std::string create(const std::string &email, const std::string &name);
    /// The e-mail address of a token, when it is one of ours.
    [[nodiscard]] std::optional<std::string> lookup(const std::string &token);

    /// A token as its owner sees it in a list: never its text, which isn't kept.
    struct Listed {
        std::string id;  ///< the start of the token's digest: names it for revoking
        std::string name;
        std::string created;
    };
    [[nodiscard]] std::vector<Listed> list(const std::string &email);
    /// Ends one token of this e-mail address; false when it has none of that id.
    bool revoke(const std::string &email, const std::string &id);
    /// Ends a web session (signing out of a page).
    void endSession(const std::string &token, SessionKind kind);
    /// Length of a listed token's id, in hexadecimal digits.
    static constexpr std::size_t idLength = 16;

    /// A web session for the holder of a token, valid until `expires`.
    [[nodiscard]] std::string createSession(const std::string &email, std::chrono::system_clock::time_point expires,
                                            SessionKind kind);
    [[nodiscard]] std::optional<std::string> lookupSession(const std::string &token,
                                                           std::chrono::system_clock::time_point now, SessionKind kind);

    /// A random text of 32 bytes in hexadecimal.
    [[nodiscard]] static std::string randomSecret();
    [[nodiscard]] static std::string digest(const std::string &text);

private:
    [[nodiscard]] static std::string sessionDigest(const std::string &token, SessionKind kind);

    Database &m_db;
};
