#pragma once

#include <QObject>
#include <QCoroTask>

#include <chrono>

/// @brief Cancellation handed to long work: a network reply aborts, a child process stops,
/// a sleep ends early. Whoever starts the work owns the token.
class CancelToken : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    [[nodiscard]] bool isCancelled() const { return m_cancelled; }

public Q_SLOTS:
    /// Idempotent: the signal is emitted once.
    void cancel();

Q_SIGNALS:
    void cancelled();

private:
    bool m_cancelled = false;
};

/// Sleeps for `duration`, or less when `token` is cancelled first.
/// Returns true when the full time passed, false when cancelled. A null token never cancels.
QCoro::Task<bool> sleepFor(std::chrono::milliseconds duration, CancelToken *token = nullptr);
