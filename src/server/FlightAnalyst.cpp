#include "FlightAnalyst.h"

#include "FlightFile.h"
#include "LibraryFiles.h"
#include "ShotFinder.h"
#include "Suggestions.h"

#include <QString>

#include <cstdio>

namespace fs = std::filesystem;
using nlohmann::ordered_json;

std::string FlightAnalyst::Outcome::text() const
{
    if (suggested <= 0)
        return "ok";
    return std::to_string(suggested) + (suggested == 1 ? " clip suggested" : " clips suggested");
}

FlightAnalyst::FlightAnalyst(const Library &library, FlightIndex &index, std::mutex &folderLock, bool log)
    : m_library(library), m_index(index), m_folderLock(folderLock), m_log(log)
{
}

FlightAnalyst::~FlightAnalyst()
{
    stop();
}

FlightAnalyst::Findings FlightAnalyst::findings(const FlightData &flight)
{
    Findings found{ShotFinder::find(flight.track), flight.meta.duration};
    if (!flight.track.empty())
        found.duration = std::max(found.duration, flight.track.back().t);
    return found;
}

Result<FlightAnalyst::Findings> FlightAnalyst::findings(const fs::path &flightFile)
{
    const auto flight = FlightFile::read(QString::fromStdString(flightFile.string()));
    if (!flight)
        return flight.failure();
    return findings(flight.value());
}

FlightAnalyst::Outcome FlightAnalyst::analyse(const std::string &id)
{
    const fs::path folder = m_library.flight(id);
    // The slow part, reading and measuring, happens outside the lock.
    const auto found = findings(folder / FlightFile::fileName);
    if (!found)
        return {};

    std::lock_guard guard(m_folderLock);
    const auto row = m_index.row(id);
    std::error_code ec;
    if (!row || !fs::is_directory(folder, ec))
        return {};  // deleted meanwhile
    const ordered_json current = row->clips ? ordered_json::parse(*row->clips, nullptr, false) : ordered_json();
    Outcome outcome;
    const ordered_json clips = Suggestions::clips(current, found->shots, found->duration, outcome.suggested);
    const ordered_json moments =
        Suggestions::moments(LibraryFiles::readJson(folder / "moments.json"), found->shots, clips);
    outcome.moments = static_cast<int>(found->shots.size());
    if (!LibraryFiles::replace(m_library, folder / "moments.json", moments.dump()))
        return {};
    // A flight without clips and without anything to suggest keeps having no clips.json.
    if ((row->clips || outcome.suggested > 0) && clips != current) {
        const std::string text = clips.dump();
        if (!LibraryFiles::replace(m_library, folder / "clips.json", text) || !m_index.setClips(id, text))
            return {};
    }
    outcome.stored = true;
    return outcome;
}

bool FlightAnalyst::upToDate(const std::string &id) const
{
    return Suggestions::upToDate(LibraryFiles::readJson(m_library.flight(id) / "moments.json"));
}

void FlightAnalyst::startSweep()
{
    if (m_thread.joinable())
        return;
    m_stop = false;
    m_sweeping = true;
    m_thread = std::thread([this] { sweep(); });
}

void FlightAnalyst::stop()
{
    m_stop = true;
    if (m_thread.joinable())
        m_thread.join();
    m_sweeping = false;
}

void FlightAnalyst::sweep()
{
    int analysed = 0;
    for (const auto &id : m_index.ids()) {
        if (m_stop)
            break;
        if (!upToDate(id) && analyse(id).stored)
            ++analysed;
    }
    if (m_log && analysed > 0)
        std::fprintf(stderr, "aeroloom-server: analysed %d flight%s\n", analysed, analysed == 1 ? "" : "s");
    m_sweeping = false;
}
