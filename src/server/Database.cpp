#include "Database.h"

#include <sqlite3.h>

#include <QString>

namespace {
constexpr const char *schema = R"sql(
PRAGMA journal_mode=WAL;
PRAGMA synchronous=NORMAL;
CREATE TABLE IF NOT EXISTS flights(
    id TEXT PRIMARY KEY,
    entry TEXT NOT NULL,
    source TEXT,
    bytes INTEGER NOT NULL DEFAULT 0,
    sample INTEGER NOT NULL DEFAULT 0,
    hidden INTEGER NOT NULL DEFAULT 0,
    clips TEXT,
    added TEXT);
CREATE TABLE IF NOT EXISTS parked(
    id TEXT PRIMARY KEY,
    entry TEXT NOT NULL,
    source TEXT,
    bytes INTEGER NOT NULL DEFAULT 0,
    clips TEXT);
CREATE TABLE IF NOT EXISTS tokens(hash TEXT PRIMARY KEY, email TEXT, name TEXT, created TEXT);
CREATE TABLE IF NOT EXISTS sessions(hash TEXT PRIMARY KEY, email TEXT, expires INTEGER);
CREATE TABLE IF NOT EXISTS projects(
    id TEXT PRIMARY KEY, title TEXT NOT NULL, notes TEXT, items TEXT NOT NULL,
    created TEXT, updated TEXT, position INTEGER);
CREATE TABLE IF NOT EXISTS settings(key TEXT PRIMARY KEY, value TEXT);
CREATE TABLE IF NOT EXISTS renders(
    id TEXT PRIMARY KEY, project TEXT NOT NULL, aspect TEXT NOT NULL, rendered TEXT NOT NULL,
    millis INTEGER NOT NULL, bytes INTEGER NOT NULL, width INTEGER NOT NULL, height INTEGER NOT NULL,
    settings TEXT NOT NULL, cut TEXT NOT NULL);
CREATE TABLE IF NOT EXISTS shares(
    token TEXT PRIMARY KEY, project TEXT NOT NULL, render TEXT NOT NULL, title TEXT NOT NULL,
    description TEXT, created TEXT NOT NULL, views INTEGER NOT NULL DEFAULT 0,
    hearts INTEGER NOT NULL DEFAULT 0);
)sql";
}

Database::Statement::Statement(sqlite3 *db, std::string_view sql)
{
    m_ok = sqlite3_prepare_v2(db, sql.data(), static_cast<int>(sql.size()), &m_stmt, nullptr) == SQLITE_OK;
}

Database::Statement::~Statement()
{
    sqlite3_finalize(m_stmt);
}

Database::Statement &Database::Statement::bind(int index, std::string_view text)
{
    if (m_ok)
        m_ok = sqlite3_bind_text(m_stmt, index, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT) == SQLITE_OK;
    return *this;
}

Database::Statement &Database::Statement::bind(int index, std::int64_t value)
{
    if (m_ok)
        m_ok = sqlite3_bind_int64(m_stmt, index, value) == SQLITE_OK;
    return *this;
}

Database::Statement &Database::Statement::bindNull(int index)
{
    if (m_ok)
        m_ok = sqlite3_bind_null(m_stmt, index) == SQLITE_OK;
    return *this;
}

bool Database::Statement::step()
{
    if (!m_ok)
        return false;
    const int rc = sqlite3_step(m_stmt);
    if (rc == SQLITE_ROW)
        return true;
    m_ok = rc == SQLITE_DONE;
    return false;
}

bool Database::Statement::run()
{
    while (step()) {
    }
    return m_ok;
}

std::string Database::Statement::text(int column) const
{
    const auto *p = reinterpret_cast<const char *>(sqlite3_column_text(m_stmt, column));
    return p ? std::string(p, static_cast<std::size_t>(sqlite3_column_bytes(m_stmt, column))) : std::string();
}

std::optional<std::string> Database::Statement::optionalText(int column) const
{
    if (sqlite3_column_type(m_stmt, column) == SQLITE_NULL)
        return std::nullopt;
    return text(column);
}

std::int64_t Database::Statement::integer(int column) const
{
    return sqlite3_column_int64(m_stmt, column);
}

Result<std::unique_ptr<Database>> Database::open(const std::filesystem::path &file)
{
    sqlite3 *db = nullptr;
    const int rc = sqlite3_open_v2(file.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_FULLMUTEX,
                                   nullptr);
    if (rc != SQLITE_OK) {
        const QString why = QString::fromUtf8(db ? sqlite3_errmsg(db) : sqlite3_errstr(rc));
        sqlite3_close(db);
        return Failure{QStringLiteral("server"), 2,
                       QStringLiteral("The library database %1 can't be opened: %2.")
                           .arg(QString::fromStdString(file.string()), why)};
    }
    sqlite3_busy_timeout(db, 5000);
    std::unique_ptr<Database> out(new Database(db));
    if (!out->exec(schema)) {
        return Failure{QStringLiteral("server"), 2,
                       QStringLiteral("The library database %1 can't be set up: %2.")
                           .arg(QString::fromStdString(file.string()), QString::fromUtf8(sqlite3_errmsg(db)))};
    }
    return out;
}

Database::~Database()
{
    sqlite3_close(m_db);
}

bool Database::exec(const char *sql)
{
    return sqlite3_exec(m_db, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

int Database::changes() const
{
    return sqlite3_changes(m_db);
}

std::optional<std::string> Database::setting(const std::string &key)
{
    auto guard = lock();
    auto st = prepare("SELECT value FROM settings WHERE key=?");
    st.bind(1, key);
    if (st.step())
        return st.text(0);
    return std::nullopt;
}

void Database::setSetting(const std::string &key, const std::string &value)
{
    auto guard = lock();
    prepare("INSERT OR REPLACE INTO settings(key,value) VALUES(?,?)").bind(1, key).bind(2, value).run();
}
