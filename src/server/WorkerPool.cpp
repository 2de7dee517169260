#include "WorkerPool.h"

#include <cstdio>
#include <exception>

WorkerPool::WorkerPool(std::size_t keepThreads, std::size_t maxThreads, std::chrono::milliseconds idleExit)
    : m_keep(keepThreads), m_max(std::max<std::size_t>(1, maxThreads)), m_idleExit(idleExit)
{
}

WorkerPool::~WorkerPool()
{
    stop();
}

void WorkerPool::post(std::function<void()> job)
{
    std::unique_lock lock(m_mutex);
    if (m_stopping)
        return;
    reapFinished(lock);
    m_jobs.push_back(std::move(job));
    if (m_jobs.size() > m_idle && m_threads.size() < m_max) {
        std::thread thread([this] { work(); });
        const auto id = thread.get_id();
        m_threads.emplace(id, std::move(thread));
    }
    m_wake.notify_one();
}

void WorkerPool::stop()
{
    std::deque<std::function<void()>> dropped;
    std::vector<std::thread> joining;
    {
        std::lock_guard lock(m_mutex);
        m_stopping = true;
        dropped.swap(m_jobs);
        for (auto &[id, thread] : m_threads)
            joining.push_back(std::move(thread));
        m_threads.clear();
        for (auto &thread : m_finished)
            joining.push_back(std::move(thread));
        m_finished.clear();
    }
    m_wake.notify_all();
    dropped.clear();
    for (auto &thread : joining) {
        if (thread.joinable())
            thread.join();
    }
}

void WorkerPool::reapFinished(std::unique_lock<std::mutex> &lock)
{
    if (m_finished.empty())
        return;
    std::vector<std::thread> done;
    done.swap(m_finished);
    lock.unlock();
    for (auto &thread : done)
        thread.join();
    lock.lock();
}

void WorkerPool::work()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        ++m_idle;
        const bool woken = m_wake.wait_for(lock, m_idleExit, [this] { return m_stopping || !m_jobs.empty(); });
        --m_idle;
        if (m_stopping)
            return;
        if (!woken) {
            if (m_threads.size() <= m_keep)
                continue;
            // Hand this thread's handle to whoever joins next; it ends as soon as this returns.
            auto self = m_threads.extract(std::this_thread::get_id());
            if (!self.empty())
                m_finished.push_back(std::move(self.mapped()));
            return;
        }
        auto job = std::move(m_jobs.front());
        m_jobs.pop_front();
        lock.unlock();
        try {
            job();
        } catch (const std::exception &e) {
            std::fprintf(stderr, "aeroloom-server: a request failed: %s\n", e.what());
        } catch (...) {
            std::fprintf(stderr, "aeroloom-server: a request failed\n");
        }
        job = nullptr;
        lock.lock();
    }
}
