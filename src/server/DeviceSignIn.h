#pragma once

#include "Library.h"
#include "ServerConfig.h"
#include "TokenStore.h"

#include <chrono>
#include <map>
#include <mutex>
#include <optional>
#include <string>

/// @brief Passwordless sign-in of a device through a link "mailed" to the pilot.
///
/// There is no mail server: the mail is a file in the library's outbox/ and a line on the
/// server's log, holding a link to this server. Opening the link approves the attempt; the
/// device, polling with its secret, then receives a fresh API token. Attempts live in memory
/// and expire after `ServerConfig::deviceExpiry`.
class DeviceSignIn
{
public:
    struct Requested {
        std::string secret;
        std::string link;
        std::filesystem::path mail;
    };
    enum class Approval { Approved, Expired, Unknown };
    struct Poll {
        std::string status;  ///< "pending", "ok" or "expired"
        std::optional<std::string> token;
    };
    struct Claim {
        std::string status;  ///< as for `Poll`
        std::optional<std::string> email;  ///< once approved
        std::string device;
    };

    DeviceSignIn(const ServerConfig &config, const Library &library, TokenStore &tokens)
        : m_config(config), m_library(library), m_tokens(tokens)
    {
    }

    /// Starts an attempt; `base` is the server's own address as the device reached it.
    Requested request(const std::string &email, const std::string &deviceName, const std::string &base);
    Approval approve(const std::string &code);
    /// The device's answer: a new API token once the link was opened.
    Poll poll(const std::string &secret);
    /// The same answer as the signed-in address instead of a token, for a caller that signs in
    /// otherwise (a web page, with a session). Either way an approved attempt is used up.
    Claim claim(const std::string &secret);

private:
    struct Attempt {
        std::string email;
        std::string device;
        std::string code;
        std::chrono::system_clock::time_point created;
        bool approved = false;
    };
    [[nodiscard]] bool expired(const Attempt &attempt) const;
    std::filesystem::path writeMail(const std::string &email, const std::string &device, const std::string &link);

    const ServerConfig &m_config;
    const Library &m_library;
    TokenStore &m_tokens;
    std::mutex m_mutex;
    std::map<std::string, Attempt> m_attempts;  ///< by secret
    std::map<std::string, std::string> m_codes;  ///< link code to secret
};
