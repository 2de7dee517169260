#include "RenderQueue.h"

#include "ProjectTable.h"
#include "RenderJob.h"
#include "RenderStore.h"

#include <QString>

#include <chrono>
#include <cstdio>

RenderQueue::RenderQueue(const ServerConfig &config, const Library &library, Database &db, MusicMaker &music)
    : m_config(config), m_library(library), m_db(db), m_music(music)
{
}

RenderQueue::~RenderQueue()
{
    stop();
}

std::optional<std::string> RenderQueue::start(RenderOrder order, std::string items)
{
    std::lock_guard guard(m_mutex);
    if (m_running || m_stopped)
        return std::nullopt;
    // The last job's thread has said it is done; it only has to end.
    if (m_worker.joinable())
        m_worker.join();
    m_failures.erase(order.projectId);
    auto job = std::make_shared<RenderJob>(m_library, m_music, order, std::move(items));
    const std::string id = job->ids().front();
    m_running = Running{order.projectId, id, 0};
    m_progress = 0;
    m_worker = std::jthread([this, job](std::stop_token stop) {
        const auto started = std::chrono::steady_clock::now();
        std::optional<std::string> failure;
        if (auto prepared = job->prepare(); !prepared) {
            failure = prepared.errorText().toStdString();
        } else if (stop.stop_requested()) {
            failure = "Making the video was stopped.";
        } else {
            auto made = job->run(stop, [this](double fraction) { m_progress = fraction; });
            if (!made) {
                failure = made.errorText().toStdString();
            } else {
                failure = store(job->order().projectId, made.value());
            }
        }
        if (m_config.log) {
            const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
            std::fprintf(stderr, "render %s: %s after %.1f s\n", job->ids().front().c_str(),
                         failure ? failure->c_str() : "done", seconds);
        }
        finish(job->order().projectId, failure);
    });
    return id;
}

std::optional<std::string> RenderQueue::store(const std::string &projectId, std::vector<RenderRow> rows)
{
    const std::string rendered = ProjectTable::localText(m_config.now());
    auto guard = m_db.lock();
    // A story deleted while its video was made keeps nothing of it.
    const bool gone = !ProjectTable::find(m_db, projectId);
    // Lists put the row stored last first: the widescreen video of a pair goes in last.
    for (auto row = rows.rbegin(); row != rows.rend(); ++row) {
        row->rendered = rendered;
        if (gone || !RenderStore::insert(m_db, *row)) {
            for (const RenderRow &made : rows)
                RenderStore::remove(m_db, m_library, made.id);
            return gone ? "The story was deleted." : "The library can’t store the finished video.";
        }
    }
    return std::nullopt;
}

void RenderQueue::finish(const std::string &projectId, const std::optional<std::string> &failure)
{
    std::lock_guard guard(m_mutex);
    if (failure)
        m_failures[projectId] = *failure;
    m_running.reset();
}

std::optional<RenderQueue::Running> RenderQueue::running() const
{
    std::lock_guard guard(m_mutex);
    if (!m_running)
        return std::nullopt;
    Running out = *m_running;
    out.progress = m_progress;
    return out;
}

std::optional<std::string> RenderQueue::lastFailure(const std::string &projectId) const
{
    std::lock_guard guard(m_mutex);
    const auto found = m_failures.find(projectId);
    if (found == m_failures.end())
        return std::nullopt;
    return found->second;
}

void RenderQueue::stopWorker(std::unique_lock<std::mutex> lock)
{
    // The thread takes the lock once more as it ends: let go of it before waiting.
    std::jthread worker = std::move(m_worker);
    lock.unlock();
    if (worker.joinable()) {
        worker.request_stop();
        worker.join();
    }
}

void RenderQueue::cancel(const std::string &projectId)
{
    std::unique_lock lock(m_mutex);
    if (!m_running || m_running->projectId != projectId)
        return;
    stopWorker(std::move(lock));
    std::lock_guard guard(m_mutex);
    m_failures.erase(projectId);
}

void RenderQueue::stop()
{
    std::unique_lock lock(m_mutex);
    m_stopped = true;
    stopWorker(std::move(lock));
}
