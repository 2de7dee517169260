#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

/// @brief Threads that run the server's requests, as many as are busy plus a few spare.
///
/// A request may hold its thread for a long time (an upload paused for up to a minute, a player
/// that stops reading a proxy it streams), so a fixed pool would let a handful of such requests
/// lock out everyone else. This one starts a thread whenever a job arrives and none is idle, up
/// to `maxThreads`; threads beyond `keepThreads` end after `idleExit` without work.
class WorkerPool
{
public:
    WorkerPool(std::size_t keepThreads, std::size_t maxThreads, std::chrono::milliseconds idleExit);
    ~WorkerPool();
    WorkerPool(const WorkerPool &) = delete;
    WorkerPool &operator=(const WorkerPool &) = delete;

    /// Runs `job` on a worker; once stopped, the job is dropped.
    void post(std::function<void()> job);
    /// Lets the running jobs finish, drops the queued ones and joins every thread.
    void stop();

private:
    void work();
    void reapFinished(std::unique_lock<std::mutex> &lock);

    const std::size_t m_keep;
    const std::size_t m_max;
    const std::chrono::milliseconds m_idleExit;

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<std::function<void()>> m_jobs;
    std::map<std::thread::id, std::thread> m_threads;
    std::vector<std::thread> m_finished;  ///< ended on their own, to be joined
    std::size_t m_idle = 0;
    bool m_stopping = false;
};
