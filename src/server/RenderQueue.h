#pragma once

#include "Database.h"
#include "Library.h"
#include "MusicMaker.h"
#include "RenderOrder.h"
#include "RenderStore.h"
#include "ServerConfig.h"

#include <atomic>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

/// @brief Makes the library's story videos, one at a time for the whole library, on a thread
/// of its own; a second request while one runs is turned away.
///
/// A job's videos are stored when they are whole; a failure is remembered (until the story's
/// next job) so the story's status can tell it.
class RenderQueue
{
public:
    /// The job in hand.
    struct Running {
        std::string projectId;
        std::string id;  ///< the id its (first) video will have
        double progress = 0;
    };

    RenderQueue(const ServerConfig &config, const Library &library, Database &db, MusicMaker &music);
    ~RenderQueue();
    RenderQueue(const RenderQueue &) = delete;
    RenderQueue &operator=(const RenderQueue &) = delete;

    /// Starts making a video of a story whose items are `items` (JSON text); the id of its
    /// first video, or nothing when a job is already running.
    [[nodiscard]] std::optional<std::string> start(RenderOrder order, std::string items);
    [[nodiscard]] std::optional<Running> running() const;
    /// The words of the story's last job, when that job failed.
    [[nodiscard]] std::optional<std::string> lastFailure(const std::string &projectId) const;
    /// Stops the story's job, if it is the one running, and returns once it has ended.
    void cancel(const std::string &projectId);
    /// Stops any job and returns once it has ended; nothing starts after this.
    void stop();

private:
    void work(std::stop_token stop, RenderOrder order, std::string items, std::string id);
    /// Stores the rows of a finished job; the failure's words when they can't be kept.
    [[nodiscard]] std::optional<std::string> store(const std::string &projectId, std::vector<RenderRow> rows);
    void finish(const std::string &projectId, const std::optional<std::string> &failure);
    void stopWorker(std::unique_lock<std::mutex> lock);

    const ServerConfig &m_config;
    const Library &m_library;
    Database &m_db;
    MusicMaker &m_music;

    mutable std::mutex m_mutex;
    std::jthread m_worker;
    std::optional<Running> m_running;
    std::atomic<double> m_progress{0};
    std::map<std::string, std::string> m_failures;
    bool m_stopped = false;
};
