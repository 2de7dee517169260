#pragma once

#include "Result.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

/// @brief The library's metadata in SQLite (WAL mode), behind one connection and one lock.
///
/// Requests arrive on many threads; they take `lock()` for the length of their statements.
/// Writes are small and rare next to the file traffic, so one connection is plenty.
class Database
{
public:
    /// @brief One prepared statement; bind by position starting at 1.
    class Statement
    {
    public:
        Statement(sqlite3 *db, std::string_view sql);
        ~Statement();
        Statement(const Statement &) = delete;
        Statement &operator=(const Statement &) = delete;

        Statement &bind(int index, std::string_view text);
        Statement &bind(int index, std::int64_t value);
        Statement &bindNull(int index);
        /// True while there is a row to read; false when done (or on failure, see `ok`).
        [[nodiscard]] bool step();
        /// Runs to the end; true when the statement succeeded.
        bool run();
        [[nodiscard]] bool ok() const { return m_ok; }
        [[nodiscard]] std::string text(int column) const;
        [[nodiscard]] std::optional<std::string> optionalText(int column) const;
        [[nodiscard]] std::int64_t integer(int column) const;

    private:
        sqlite3_stmt *m_stmt = nullptr;
        bool m_ok = true;
    };

    [[nodiscard]] static Result<std::unique_ptr<Database>> open(const std::filesystem::path &file);
    ~Database();

    [[nodiscard]] std::unique_lock<std::recursive_mutex> lock() { return std::unique_lock(m_mutex); }
    [[nodiscard]] Statement prepare(std::string_view sql) { return Statement(m_db, sql); }
    bool exec(const char *sql);
    /// Rows changed by the last statement that changed any (under the same lock).
    [[nodiscard]] int changes() const;

    [[nodiscard]] std::optional<std::string> setting(const std::string &key);
    void setSetting(const std::string &key, const std::string &value);

private:
    explicit Database(sqlite3 *db) : m_db(db) {}
    sqlite3 *m_db;
    std::recursive_mutex m_mutex;
};
