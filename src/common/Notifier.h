#pragma once

#include <QTimer>

#include <QCoroTask>

#include <chrono>
#include <coroutine>
#include <memory>
#include <vector>

namespace detail {
/// One suspended coroutine, resumed at most once and always from the event loop, never from
/// inside the emission that woke it. (QCoro's own signal awaiter can be resumed by a queued
/// emission after it has already ended, which crashes; this one cannot.)
struct Resumer {
    std::coroutine_handle<> handle;
    QTimer timer;  ///< the time limit, and the context of the queued resume
    bool fired = false;
    bool byTimer = false;

    void fire(bool timerRanOut)
    {
        if (fired)
            return;
        fired = true;
        byTimer = timerRanOut;
        timer.stop();
        QMetaObject::invokeMethod(&timer, [h = handle] { h.resume(); }, Qt::QueuedConnection);
    }
    void startTimer(std::chrono::milliseconds limit)
    {
        timer.setSingleShot(true);
        timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&timer, &QTimer::timeout, [this] { fire(true); });
        timer.start(limit);
    }
};
} // namespace detail

/// @brief Wakes coroutines that wait for "something changed" (a condition variable for
/// coroutines on one thread). Waiters re-check their condition after waking.
class Notifier
{
public:
    Notifier() = default;
    Notifier(const Notifier &) = delete;
    Notifier &operator=(const Notifier &) = delete;

    void notifyAll()
    {
        auto waiters = std::exchange(m_waiters, {});
        for (const auto &weak : waiters)
            if (auto resumer = weak.lock())
                resumer->fire(false);
    }

    struct Awaiter {
        Notifier *notifier;
        std::chrono::milliseconds limit;
        std::shared_ptr<detail::Resumer> state = std::make_shared<detail::Resumer>();

        bool await_ready() const noexcept { return false; }
        void await_suspend(std::coroutine_handle<> handle)
        {
            state->handle = handle;
            notifier->m_waiters.push_back(state);
            if (limit.count() >= 0)
                state->startTimer(limit);
        }
        /// True when notified, false when the time limit ran out.
        bool await_resume() const noexcept { return !state->byTimer; }
    };
    /// Waits for the next `notifyAll`, or at most `limit` (negative: no limit). True when notified.
    QCoro::Task<bool> wait(std::chrono::milliseconds limit = std::chrono::milliseconds(-1))
    {
        // Named, not a temporary: GCC 12 destroys temporaries of a co_await operand twice.
        Awaiter awaiter{this, limit};
        const bool notified = co_await awaiter;
        co_return notified;
    }

private:
    std::vector<std::weak_ptr<detail::Resumer>> m_waiters;
};
