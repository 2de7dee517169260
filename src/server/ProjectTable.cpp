#include "ProjectTable.h"

#include "TokenStore.h"

#include <QDateTime>

namespace ProjectTable {

std::string now()
{
    return QDateTime::currentDateTimeUtc().toString(Qt::ISODate).toStdString();
}

std::string timeText(const std::string &stored)
{
    // "2024-05-01T10:00:00.123Z" -> "2024-05-01T10:00:00Z"
    const auto dot = stored.find('.');
    if (dot != 19)
        return stored;
    auto end = dot + 1;
    while (end < stored.size() && stored[end] >= '0' && stored[end] <= '9')
        ++end;
    return stored.substr(0, dot) + stored.substr(end);
}

std::string localText(std::chrono::system_clock::time_point when)
{
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(when.time_since_epoch()).count();
    return QDateTime::fromMSecsSinceEpoch(ms, Qt::LocalTime).toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss")).toStdString();
}

std::string newId()
{
    return TokenStore::randomSecret().substr(0, 12);
}

std::optional<ProjectRow> find(Database &db, const std::string &id)
{
    auto guard = db.lock();
    auto st = db.prepare("SELECT id, title, notes, items, created, updated FROM projects WHERE id=?");
    st.bind(1, id);
    if (!st.step())
        return std::nullopt;
    return ProjectRow{st.text(0), st.text(1), st.text(2), st.text(3), st.text(4), st.text(5)};
}

bool insert(Database &db, const ProjectRow &row)
{
    auto guard = db.lock();
    return db.prepare("INSERT INTO projects(id, title, notes, items, created, updated) VALUES(?,?,?,?,?,?)")
        .bind(1, row.id).bind(2, row.title).bind(3, row.notes).bind(4, row.items).bind(5, row.created)
        .bind(6, row.updated).run();
}

nlohmann::ordered_json projectJson(const ProjectRow &row)
{
    return {{"id", row.id},
            {"title", row.title},
            {"notes", row.notes},
            {"items", nlohmann::ordered_json::parse(row.items, nullptr, false)}};
}

} // namespace ProjectTable
