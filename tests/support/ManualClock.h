#pragma once

#include "Clock.h"

#include <QList>

#include <chrono>

/// @brief A clock that moves only when a test says so. `advance()` fires every timer that falls
/// due on the way, in time order, each at its own moment, so a repeating timer fires once per
/// interval passed and work started by one timer can fall due in the same advance.
class ManualClock final : public Clock
{
public:
    using Micros = std::chrono::microseconds;

    ~ManualClock() override;
    [[nodiscard]] Ticker *makeTicker(QObject *parent) override;

    /// Time since the clock was made.
    [[nodiscard]] Micros now() const { return m_now; }
    void advance(Micros by);
    /// Timers now running.
    [[nodiscard]] int activeTickers() const;

private:
    class Manual;
    friend class Manual;
    Micros m_now{0};
    QList<Manual *> m_tickers;
};
