#include "ShareStore.h"

#include "TokenStore.h"

using nlohmann::ordered_json;

namespace ShareStore {

namespace {
constexpr const char *columns = "token, project, render, title, description, created, views, hearts";
/// 96 random bits: a link can't be guessed, and is short enough to paste.
constexpr std::size_t tokenLength = 24;

ShareRow rowOf(const Database::Statement &st)
{
    return {st.text(0), st.text(1), st.text(2), st.text(3), st.optionalText(4), st.text(5), st.integer(6), st.integer(7)};
}

std::optional<ShareRow> first(Database &db, const char *where, const std::string &value)
{
    auto guard = db.lock();
    auto st = db.prepare(std::string("SELECT ") + columns + " FROM shares WHERE " + where);
    st.bind(1, value);
    if (!st.step())
        return std::nullopt;
    return rowOf(st);
}

std::optional<std::int64_t> bump(Database &db, const char *column, const std::string &token)
{
    auto guard = db.lock();
    db.prepare(std::string("UPDATE shares SET ") + column + "=" + column + "+1 WHERE token=?").bind(1, token).run();
    auto st = db.prepare(std::string("SELECT ") + column + " FROM shares WHERE token=?");
    st.bind(1, token);
    if (!st.step())
        return std::nullopt;
    return st.integer(0);
}
} // namespace

std::optional<ShareRow> create(Database &db, const std::string &project, const std::string &render,
                               const std::string &title, const std::string &created)
{
    auto guard = db.lock();
    if (auto existing = first(db, "render=?", render))
        return existing;
    ShareRow row{TokenStore::randomSecret().substr(0, tokenLength), project, render, title, std::nullopt, created};
    const bool stored = db.prepare("INSERT INTO shares(token, project, render, title, created) VALUES(?,?,?,?,?)")
                            .bind(1, row.token).bind(2, row.project).bind(3, row.render).bind(4, row.title)
                            .bind(5, row.created)
                            .run();
    if (!stored)
        return std::nullopt;
    return row;
}

std::optional<ShareRow> find(Database &db, const std::string &token)
{
    return first(db, "token=?", token);
}

std::vector<ShareRow> all(Database &db)
{
    auto guard = db.lock();
    auto st = db.prepare(std::string("SELECT ") + columns + " FROM shares ORDER BY created DESC, rowid DESC");
    std::vector<ShareRow> rows;
    while (st.step())
        rows.push_back(rowOf(st));
    return rows;
}

bool update(Database &db, const std::string &token, const std::string &title, const std::string &description)
{
    auto guard = db.lock();
    if (!find(db, token))
        return false;
    return db.prepare("UPDATE shares SET title=?, description=? WHERE token=?")
        .bind(1, title).bind(2, description).bind(3, token)
        .run();
}

bool remove(Database &db, const std::string &token)
{
    auto guard = db.lock();
    if (!find(db, token))
        return false;
    return db.prepare("DELETE FROM shares WHERE token=?").bind(1, token).run();
}

void removeOfRender(Database &db, const std::string &render)
{
    auto guard = db.lock();
    db.prepare("DELETE FROM shares WHERE render=?").bind(1, render).run();
}

void removeOfProject(Database &db, const std::string &project)
{
    auto guard = db.lock();
    db.prepare("DELETE FROM shares WHERE project=?").bind(1, project).run();
}

std::optional<std::int64_t> countView(Database &db, const std::string &token)
{
    return bump(db, "views", token);
}

std::optional<std::int64_t> countHeart(Database &db, const std::string &token)
{
    return bump(db, "hearts", token);
}

ordered_json json(const ShareRow &row, const std::string &base, const std::optional<double> &duration)
{
    ordered_json out{{"token", row.token},
                     {"url", base + "/s/" + row.token},
                     {"projectId", row.project},
                     {"renderId", row.render},
                     {"title", row.title}};
    if (row.description)
        out["description"] = *row.description;
    if (duration)
        out["duration"] = *duration;
    out["created"] = row.created;
    out["views"] = row.views;
    out["hearts"] = row.hearts;
    return out;
}

} // namespace ShareStore
