#include "Clock.h"

#include <QTimer>

namespace {
class TimerTicker final : public Ticker
{
public:
    explicit TimerTicker(QObject *parent) : Ticker(parent)
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        connect(&m_timer, &QTimer::timeout, this, &Ticker::timeout);
    }
    void start(std::chrono::microseconds interval, bool repeating) override
    {
        m_timer.setSingleShot(!repeating);
        // QTimer counts whole milliseconds: 1/30 s runs at 33 ms.
        m_timer.start(std::chrono::duration_cast<std::chrono::milliseconds>(interval + std::chrono::microseconds(500)));
    }
    void stop() override { m_timer.stop(); }
    [[nodiscard]] bool isActive() const override { return m_timer.isActive(); }

private:
    QTimer m_timer;
};
} // namespace

Ticker *SystemClock::makeTicker(QObject *parent)
{
    return new TimerTicker(parent);
}

void Clock::after(std::chrono::milliseconds delay, QObject *context, std::function<void()> action)
{
    Ticker *ticker = makeTicker(context);
    QObject::connect(ticker, &Ticker::timeout, context, [ticker, action = std::move(action)] {
        ticker->deleteLater();
        action();
    });
    ticker->start(delay, false);
}

Clock &Clock::orSystem(Clock *clock)
{
    static SystemClock system;
    return clock ? *clock : system;
}
