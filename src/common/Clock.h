#pragma once

#include <QObject>

#include <chrono>
#include <functional>

/// @brief A timer handed out by a `Clock`: one-shot or repeating, firing `timeout()` on the
/// thread that owns it. Deleting it stops it.
class Ticker : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    /// Starts (or restarts) the timer: `timeout()` after `interval`, and every `interval` after
    /// that when `repeating`.
    virtual void start(std::chrono::microseconds interval, bool repeating) = 0;
    virtual void stop() = 0;
    [[nodiscard]] virtual bool isActive() const = 0;

Q_SIGNALS:
    void timeout();
};

/// @brief Where models get their timers from: the event loop in the program, a clock moved by
/// hand in tests, so that rules about toasts, ticks and polls are proven without waiting.
class Clock
{
public:
    virtual ~Clock() = default;
    /// A stopped timer owned by `parent`.
    [[nodiscard]] virtual Ticker *makeTicker(QObject *parent) = 0;

    /// Runs `action` once after `delay`, unless `context` is destroyed first.
    void after(std::chrono::milliseconds delay, QObject *context, std::function<void()> action);

    /// `clock`, or the event loop's clock when it is null.
    [[nodiscard]] static Clock &orSystem(Clock *clock);
};

/// @brief The event loop's clock: precise `QTimer`s.
class SystemClock final : public Clock
{
public:
    [[nodiscard]] Ticker *makeTicker(QObject *parent) override;
};
