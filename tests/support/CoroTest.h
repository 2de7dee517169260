#pragma once

#include <QCoroTask>

#include <optional>
#include <type_traits>

namespace detail {
template <typename T>
QCoro::Task<> storeInto(QCoro::Task<T> task, std::optional<T> &out)
{
    out.emplace(co_await std::move(task));
}
} // namespace detail

/// Runs a coroutine to its end inside the test's event loop and returns its value.
/// (Unlike QCoro::waitFor this takes values that have no default constructor.)
template <typename T>
T run(QCoro::Task<T> &&task)
{
    if constexpr (std::is_void_v<T>) {
        QCoro::waitFor(std::move(task));
    } else {
        std::optional<T> out;
        QCoro::waitFor(detail::storeInto(std::move(task), out));
        return std::move(*out);
    }
}

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QThread>

/// Spins the event loop until `done()` holds or `timeoutMs` pass; returns whether it held.
template <typename Predicate>
bool waitUntil(Predicate done, int timeoutMs = 5000)
{
    QDeadlineTimer deadline(timeoutMs);
    while (!done()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(1);
    }
    return true;
}
