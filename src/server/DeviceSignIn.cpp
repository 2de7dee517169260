#include "DeviceSignIn.h"

#include <QDateTime>
#include <QString>

#include <cstdio>
#include <fstream>

namespace fs = std::filesystem;

bool DeviceSignIn::expired(const Attempt &attempt) const
{
    return m_config.now() >= attempt.created + m_config.deviceExpiry;
}

DeviceSignIn::Requested DeviceSignIn::request(const std::string &email, const std::string &deviceName,
                                              const std::string &base)
{
    Attempt attempt{email, deviceName, TokenStore::randomSecret(), m_config.now(), false};
    const std::string secret = TokenStore::randomSecret();
    const std::string link = base + "/auth/device/" + attempt.code;
    {
        std::lock_guard guard(m_mutex);
        // Forget attempts nobody finished, so the map doesn't grow with abandoned sign-ins.
        for (auto it = m_attempts.begin(); it != m_attempts.end();) {
            if (expired(it->second)) {
                m_codes.erase(it->second.code);
                it = m_attempts.erase(it);
            } else {
                ++it;
            }
        }
        m_codes[attempt.code] = secret;
        m_attempts[secret] = std::move(attempt);
    }
    const fs::path mail = writeMail(email, deviceName, link);
    std::fprintf(stderr, "Sign-in link for %s (%s): %s\n", email.c_str(), deviceName.c_str(), link.c_str());
    return {secret, link, mail};
}

DeviceSignIn::Approval DeviceSignIn::approve(const std::string &code)
{
    std::lock_guard guard(m_mutex);
    const auto c = m_codes.find(code);
    if (c == m_codes.end())
        return Approval::Unknown;
    auto &attempt = m_attempts.at(c->second);
    if (expired(attempt))
        return Approval::Expired;
    attempt.approved = true;
    return Approval::Approved;
}

DeviceSignIn::Claim DeviceSignIn::claim(const std::string &secret)
{
    std::lock_guard guard(m_mutex);
    const auto it = m_attempts.find(secret);
    if (it == m_attempts.end())
        return {"expired", std::nullopt, {}};
    if (expired(it->second)) {
        m_codes.erase(it->second.code);
        m_attempts.erase(it);
        return {"expired", std::nullopt, {}};
    }
    if (!it->second.approved)
        return {"pending", std::nullopt, {}};
    Claim out{"ok", it->second.email, it->second.device};
    m_codes.erase(it->second.code);
    m_attempts.erase(it);
    return out;
}

DeviceSignIn::Poll DeviceSignIn::poll(const std::string &secret)
{
    const Claim claimed = claim(secret);
    if (!claimed.email)
        return {claimed.status, std::nullopt};
    return {"ok", m_tokens.create(*claimed.email, claimed.device)};
}

fs::path DeviceSignIn::writeMail(const std::string &email, const std::string &device, const std::string &link)
{
    const QDateTime now = QDateTime::currentDateTimeUtc();
    const std::string name =
        now.toString(QStringLiteral("yyyyMMdd-HHmmss-zzz")).toStdString() + "-" + link.substr(link.size() - 8) + ".eml";
    const fs::path final = m_library.outbox() / name;
    const fs::path part = m_library.tmpName(".eml");
    {
        std::ofstream out(part, std::ios::binary);
        out << "To: " << email << "\r\n"
            << "From: Aeroloom library <library@localhost>\r\n"
            << "Date: " << now.toString(Qt::RFC2822Date).toStdString() << "\r\n"
            << "Subject: Sign in to your Aeroloom library\r\n"
            << "Content-Type: text/plain; charset=utf-8\r\n\r\n"
            << "Someone asked to sign in to your flight library from \"" << device << "\".\r\n\r\n"
            << "Open this link to let it in:\r\n" << link << "\r\n\r\n"
            << "The link works once and expires in "
            << std::chrono::duration_cast<std::chrono::minutes>(m_config.deviceExpiry).count()
            << " minutes. If it wasn't you, ignore this mail.\r\n";
    }
    std::error_code ec;
    fs::rename(part, final, ec);
    return final;
}
