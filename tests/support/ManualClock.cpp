#include "ManualClock.h"


class ManualClock::Manual final : public Ticker
{
public:
    Manual(ManualClock &clock, QObject *parent) : Ticker(parent), m_clock(&clock) { clock.m_tickers.append(this); }
    ~Manual() override
    {
        if (m_clock)
            m_clock->m_tickers.removeOne(this);
    }
    void start(std::chrono::microseconds interval, bool repeating) override
    {
        m_interval = std::max(interval, std::chrono::microseconds(1));
        m_repeating = repeating;
        m_due = m_clock->m_now + m_interval;
        m_active = true;
    }
    void stop() override { m_active = false; }
    [[nodiscard]] bool isActive() const override { return m_active; }

    ManualClock *m_clock;
    Micros m_interval{0};
    Micros m_due{0};
    bool m_repeating = false;
    bool m_active = false;

    void fire()
    {
        if (m_repeating)
            m_due += m_interval;
        else
            m_active = false;
        Q_EMIT timeout();
    }
};

ManualClock::~ManualClock()
{
    for (Manual *ticker : std::as_const(m_tickers))
        ticker->m_clock = nullptr;
}

Ticker *ManualClock::makeTicker(QObject *parent)
{
    return new Manual(*this, parent);
}

void ManualClock::advance(Micros by)
{
    const Micros target = m_now + by;
    for (;;) {
        Manual *next = nullptr;
        for (Manual *ticker : std::as_const(m_tickers)) {
            if (ticker->m_active && ticker->m_due <= target && (!next || ticker->m_due < next->m_due))
                next = ticker;
        }
        if (!next)
            break;
        m_now = next->m_due;
        next->fire();
    }
    m_now = target;
}

int ManualClock::activeTickers() const
{
    int n = 0;
    for (const Manual *ticker : m_tickers)
        n += ticker->m_active;
    return n;
}
