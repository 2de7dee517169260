#include "FlightIndex.h"

namespace {
std::vector<std::string> column(Database &db, const char *sql)
{
    auto guard = db.lock();
    auto st = db.prepare(sql);
    std::vector<std::string> out;
    while (st.step())
        out.push_back(st.text(0));
    return out;
}
} // namespace

std::vector<std::string> FlightIndex::ids()
{
    return column(m_db, "SELECT id FROM flights ORDER BY id");
}

bool FlightIndex::exists(const std::string &id)
{
    auto guard = m_db.lock();
    auto st = m_db.prepare("SELECT 1 FROM flights WHERE id=?");
    st.bind(1, id);
    return st.step();
}

std::optional<FlightIndex::Row> FlightIndex::row(const std::string &id)
{
    auto guard = m_db.lock();
    auto st = m_db.prepare("SELECT id, entry, source, bytes, sample, clips FROM flights WHERE id=?");
    st.bind(1, id);
    if (!st.step())
        return std::nullopt;
    return Row{st.text(0), st.text(1), st.text(2), st.integer(3), st.integer(4) != 0, st.optionalText(5)};
}

std::int64_t FlightIndex::usedBytes()
{
    auto guard = m_db.lock();
    auto st = m_db.prepare("SELECT COALESCE(SUM(bytes),0) FROM flights");
    return st.step() ? st.integer(0) : 0;
}

bool FlightIndex::put(const Row &row)
{
    bool ok = false;
    {
        auto guard = m_db.lock();
        auto st = m_db.prepare(
            "INSERT INTO flights(id, entry, source, bytes, sample, clips, added) VALUES(?,?,?,?,?,?,datetime('now')) "
            "ON CONFLICT(id) DO UPDATE SET entry=excluded.entry, source=excluded.source, bytes=excluded.bytes, "
            "sample=excluded.sample, clips=excluded.clips");
        st.bind(1, row.id).bind(2, row.entry).bind(3, row.source).bind(4, row.bytes).bind(5, std::int64_t(row.sample));
        if (row.clips)
            st.bind(6, *row.clips);
        else
            st.bindNull(6);
        ok = st.run();
    }
    changed();
    return ok;
}

bool FlightIndex::remove(const std::string &id)
{
    bool ok = false;
    {
        auto guard = m_db.lock();
        ok = m_db.prepare("DELETE FROM flights WHERE id=?").bind(1, id).run();
    }
    changed();
    return ok;
}

std::shared_ptr<const std::string> FlightIndex::manifest()
{
    std::uint64_t generation = 0;
    {
        std::lock_guard guard(m_cacheMutex);
        if (m_manifest)
            return m_manifest;
        generation = m_generation;
    }
    auto body = std::make_shared<std::string>("{\"flights\":[");
    {
        auto guard = m_db.lock();
        auto st = m_db.prepare("SELECT entry FROM flights ORDER BY id");
        bool first = true;
        while (st.step()) {
            if (!first)
                body->push_back(',');
            first = false;
            body->append(st.text(0));
        }
    }
    body->append("]}");
    std::lock_guard guard(m_cacheMutex);
    // A change while the body was being built makes it stale: hand it out, but don't keep it.
    if (generation == m_generation)
        m_manifest = body;
    return body;
}

std::vector<std::string> FlightIndex::hidden()
{
    return column(m_db, "SELECT id FROM flights WHERE hidden=1 ORDER BY id");
}

bool FlightIndex::setHidden(const std::string &id, bool hidden)
{
    auto guard = m_db.lock();
    if (!exists(id))
        return false;
    return m_db.prepare("UPDATE flights SET hidden=? WHERE id=?").bind(1, std::int64_t(hidden)).bind(2, id).run();
}

bool FlightIndex::setClips(const std::string &id, const std::string &clips)
{
    auto guard = m_db.lock();
    return m_db.prepare("UPDATE flights SET clips=? WHERE id=?").bind(1, clips).bind(2, id).run();
}

bool FlightIndex::updateEntry(const std::string &id, std::int64_t bytes,
                              const std::function<void(nlohmann::ordered_json &)> &change)
{
    bool ok = false;
    {
        auto guard = m_db.lock();
        auto st = m_db.prepare("SELECT entry FROM flights WHERE id=?");
        st.bind(1, id);
        if (!st.step())
            return false;
        auto entry = nlohmann::ordered_json::parse(st.text(0), nullptr, false);
        if (!entry.is_object())
            return false;
        change(entry);
        ok = m_db.prepare("UPDATE flights SET entry=?, bytes=? WHERE id=?").bind(1, entry.dump()).bind(2, bytes).bind(3, id).run();
    }
    changed();
    return ok;
}

std::vector<FlightIndex::Row> FlightIndex::withClips()
{
    auto guard = m_db.lock();
    auto st = m_db.prepare("SELECT id, entry, clips FROM flights WHERE clips IS NOT NULL ORDER BY id");
    std::vector<Row> out;
    while (st.step())
        out.push_back(Row{st.text(0), st.text(1), {}, 0, false, st.text(2)});
    return out;
}

FlightIndex::SampleTotals FlightIndex::samples()
{
    auto guard = m_db.lock();
    SampleTotals totals;
    auto st = m_db.prepare("SELECT COUNT(*), COALESCE(SUM(bytes),0) FROM flights WHERE sample=1");
    if (st.step()) {
        totals.count = st.integer(0);
        totals.bytes = st.integer(1);
    }
    auto parked = m_db.prepare("SELECT COUNT(*) FROM parked");
    if (parked.step())
        totals.restorable = parked.integer(0);
    return totals;
}

std::vector<std::string> FlightIndex::sampleIds()
{
    return column(m_db, "SELECT id FROM flights WHERE sample=1 ORDER BY id");
}

std::vector<std::string> FlightIndex::parkedIds()
{
    return column(m_db, "SELECT id FROM parked ORDER BY id");
}

bool FlightIndex::park(const std::string &id)
{
    return moveRow("INSERT OR REPLACE INTO parked(id, entry, source, bytes, clips) "
                   "SELECT id, entry, source, bytes, clips FROM flights WHERE id=? AND sample=1",
                   "DELETE FROM flights WHERE id=?", id);
}

bool FlightIndex::unpark(const std::string &id)
{
    return moveRow("INSERT INTO flights(id, entry, source, bytes, sample, clips, added) "
                   "SELECT id, entry, source, bytes, 1, clips, datetime('now') FROM parked WHERE id=?",
                   "DELETE FROM parked WHERE id=?", id);
}

bool FlightIndex::moveRow(const char *copy, const char *remove, const std::string &id)
{
    bool ok = false;
    {
        auto guard = m_db.lock();
        m_db.exec("BEGIN");
        ok = m_db.prepare(copy).bind(1, id).run() && m_db.prepare(remove).bind(1, id).run();
        m_db.exec(ok ? "COMMIT" : "ROLLBACK");
    }
    changed();
    return ok;
}

void FlightIndex::changed()
{
    std::lock_guard guard(m_cacheMutex);
    m_manifest.reset();
    ++m_generation;
}
