#include "TimeObservers.h"

#include <QTimer>

#include <algorithm>
#include <cmath>

TimeObservers::TimeObservers(std::function<double()> now, QObject *parent)
    : QObject(parent)
    , m_now(std::move(now))
{
}

TimeObservers::~TimeObservers()
{
    // The timers go with this object; the contexts must not call back into it meanwhile.
    for (const auto &entry : m_entries)
        disconnect(entry.second.contextGone);
}

TimeObservers::Id TimeObservers::add(double intervalSeconds, QObject *context, Observer observer)
{
    const Id id = m_next++;
    auto *timer = new QTimer(this);
    timer->setTimerType(Qt::PreciseTimer);
    const double ms = std::isfinite(intervalSeconds) ? intervalSeconds * 1000.0 : 100.0;
    timer->setInterval(int(std::clamp(std::lround(ms), 1L, 86'400'000L)));
    // The context is the receiver, so a context that dies takes the connection with it.
    connect(timer, &QTimer::timeout, context ? context : this,
            [this, observer = std::move(observer)] { observer(m_now()); });
    Entry entry{timer, {}};
    if (context)
        entry.contextGone = connect(context, &QObject::destroyed, this, [this, id] { remove(id); });
    m_entries.emplace(id, entry);
    timer->start();
    return id;
}

void TimeObservers::remove(Id id)
{
    const auto found = m_entries.find(id);
    if (found == m_entries.end())
        return;
    const Entry entry = found->second;
    m_entries.erase(found);
    disconnect(entry.contextGone);
    entry.timer->stop();
    entry.timer->disconnect();
    // Later, not now: the observer may be removing itself from inside its own tick.
    entry.timer->deleteLater();
}
