#include "TokenStore.h"

#include <QByteArray>
#include <QCryptographicHash>
#include <QDateTime>
#include <QRandomGenerator>

std::string TokenStore::randomSecret()
{
    QByteArray bytes(32, '\0');
    QRandomGenerator::system()->fillRange(reinterpret_cast<quint32 *>(bytes.data()), 8);
    return bytes.toHex().toStdString();
}

std::string TokenStore::digest(const std::string &text)
{
    return QCryptographicHash::hash(QByteArray::fromStdString(text), QCryptographicHash::Sha256).toHex().toStdString();
}

std::string TokenStore::create(const std::string &email, const std::string &name)
{
    const std::string token = "alt_" + randomSecret();
    auto guard = m_db.lock();
    m_db.prepare("INSERT INTO tokens(hash, email, name, created) VALUES(?,?,?,?)")
        .bind(1, digest(token))
        .bind(2, email)
        .bind(3, name)
        .bind(4, QDateTime::currentDateTimeUtc().toString(Qt::ISODate).toStdString())
        .run();
    return token;
}

std::optional<std::string> TokenStore::lookup(const std::string &token)
{
    auto guard = m_db.lock();
    auto st = m_db.prepare("SELECT email FROM tokens WHERE hash=?");
    st.bind(1, digest(token));
    if (st.step())
        return st.text(0);
    return std::nullopt;
}

std::string TokenStore::sessionDigest(const std::string &token, SessionKind kind)
{
    // Viewer sessions keep the plain digest, so those handed out before account pages existed still work.
    return digest(kind == SessionKind::Account ? "account:" + token : token);
}

std::string TokenStore::createSession(const std::string &email, std::chrono::system_clock::time_point expires,
                                      SessionKind kind)
{
    const std::string token = randomSecret();
    auto guard = m_db.lock();
    m_db.prepare("INSERT INTO sessions(hash, email, expires) VALUES(?,?,?)")
        .bind(1, sessionDigest(token, kind))
        .bind(2, email)
        .bind(3, std::int64_t(std::chrono::duration_cast<std::chrono::seconds>(expires.time_since_epoch()).count()))
        .run();
    return token;
}

std::optional<std::string> TokenStore::lookupSession(const std::string &token, std::chrono::system_clock::time_point now,
                                                     SessionKind kind)
{
    auto guard = m_db.lock();
    auto st = m_db.prepare("SELECT email FROM sessions WHERE hash=? AND expires>?");
    st.bind(1, sessionDigest(token, kind)).bind(2, std::int64_t(std::chrono::duration_cast<std::chrono::seconds>(now.time_since_epoch()).count()));
    if (st.step())
        return st.text(0);
    return std::nullopt;
}

std::vector<TokenStore::Listed> TokenStore::list(const std::string &email)
{
    std::vector<Listed> out;
    auto guard = m_db.lock();
    auto st = m_db.prepare("SELECT substr(hash, 1, ?), name, created FROM tokens WHERE email=? ORDER BY rowid");
    st.bind(1, std::int64_t(idLength)).bind(2, email);
    while (st.step())
        out.push_back({st.text(0), st.text(1), st.text(2)});
    return out;
}

bool TokenStore::revoke(const std::string &email, const std::string &id)
{
    if (id.size() != idLength)
        return false;
    auto guard = m_db.lock();
    auto st = m_db.prepare("DELETE FROM tokens WHERE email=? AND substr(hash, 1, ?)=?");
    st.bind(1, email).bind(2, std::int64_t(idLength)).bind(3, id);
    return st.run() && m_db.changes() > 0;
}

void TokenStore::endSession(const std::string &token, SessionKind kind)
{
    auto guard = m_db.lock();
    m_db.prepare("DELETE FROM sessions WHERE hash=?").bind(1, sessionDigest(token, kind)).run();
}
