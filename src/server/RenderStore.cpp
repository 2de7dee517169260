#include "RenderStore.h"

#include <QCryptographicHash>

namespace fs = std::filesystem;
using nlohmann::ordered_json;

namespace RenderStore {

namespace {
constexpr const char *columns = "id, project, aspect, rendered, millis, bytes, width, height, settings, cut";

RenderRow rowOf(const Database::Statement &st)
{
    return {st.text(0),    st.text(1),    st.text(2),         st.text(3),         st.integer(4),
            st.integer(5), int(st.integer(6)), int(st.integer(7)), st.text(8), st.text(9)};
}

std::vector<RenderRow> select(Database &db, const std::string &where, const std::optional<std::string> &value)
{
    auto guard = db.lock();
    auto st = db.prepare(std::string("SELECT ") + columns + " FROM renders " + where
                         + " ORDER BY rendered DESC, rowid DESC");
    if (value)
        st.bind(1, *value);
    std::vector<RenderRow> rows;
    while (st.step())
        rows.push_back(rowOf(st));
    return rows;
}

void removeFiles(const Library &library, const std::string &id)
{
    std::error_code ec;
    fs::remove(video(library, id), ec);
    fs::remove(poster(library, id), ec);
}
} // namespace

bool insert(Database &db, const RenderRow &row)
{
    auto guard = db.lock();
    return db.prepare(std::string("INSERT INTO renders(") + columns + ") VALUES(?,?,?,?,?,?,?,?,?,?)")
        .bind(1, row.id).bind(2, row.project).bind(3, row.aspect).bind(4, row.rendered).bind(5, row.millis)
        .bind(6, row.bytes).bind(7, std::int64_t(row.width)).bind(8, std::int64_t(row.height)).bind(9, row.settings)
        .bind(10, row.cut)
        .run();
}

std::optional<RenderRow> find(Database &db, const std::string &id)
{
    auto rows = select(db, "WHERE id=?", id);
    if (rows.empty())
        return std::nullopt;
    return rows.front();
}

std::vector<RenderRow> ofProject(Database &db, const std::string &project)
{
    return select(db, "WHERE project=?", project);
}

std::vector<RenderRow> all(Database &db)
{
    return select(db, "", std::nullopt);
}

bool remove(Database &db, const Library &library, const std::string &id)
{
    bool existed = false;
    {
        auto guard = db.lock();
        existed = find(db, id).has_value();
        db.prepare("DELETE FROM renders WHERE id=?").bind(1, id).run();
    }
    removeFiles(library, id);
    return existed;
}

void removeProject(Database &db, const Library &library, const std::string &project)
{
    std::vector<RenderRow> rows;
    {
        auto guard = db.lock();
        rows = ofProject(db, project);
        db.prepare("DELETE FROM renders WHERE project=?").bind(1, project).run();
    }
    for (const RenderRow &row : rows)
        removeFiles(library, row.id);
}

fs::path video(const Library &library, const std::string &id)
{
    return library.renders() / (id + ".mp4");
}

fs::path poster(const Library &library, const std::string &id)
{
    return library.renders() / (id + ".jpg");
}

std::string url(const std::string &id)
{
    return "renders/" + id + ".mp4";
}

std::string cutOf(const std::string &items)
{
    // Parsed and written again, so spacing in the stored text never makes a video stale.
    const auto parsed = ordered_json::parse(items, nullptr, false);
    const std::string canonical = parsed.is_discarded() ? items : parsed.dump();
    return QCryptographicHash::hash(QByteArray::fromStdString(canonical), QCryptographicHash::Sha1).toHex().toStdString();
}

ordered_json entryJson(const RenderRow &row, const std::optional<std::string> &currentCut, const std::string &projectTitle)
{
    ordered_json settings = ordered_json::parse(row.settings, nullptr, false);
    if (!settings.is_object())
        settings = ordered_json::object();
    return {{"id", row.id},
            {"url", url(row.id)},
            {"rendered", row.rendered},
            {"duration", double(row.millis) / 1000.0},
            {"size", row.bytes},
            {"stale", currentCut && *currentCut != row.cut},
            {"aspect", row.aspect},
            {"settings", settings},
            {"projectId", row.project},
            {"projectTitle", projectTitle}};
}

} // namespace RenderStore
