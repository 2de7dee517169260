#pragma once

#include <QMetaObject>
#include <QObject>

#include <functional>
#include <map>

class QTimer;

/// @brief Periodic time observers for a `VideoPlayer`: each ticks on its own timer on the GUI
/// thread and hands the player's time to its callback, until it is removed or its context
/// object is destroyed. Any player, real or scripted, can keep its observers in one of these.
class TimeObservers : public QObject
{
    Q_OBJECT
public:
    using Id = int;
    using Observer = std::function<void(double time)>;

    /// `now` reads the player's time at each tick.
    explicit TimeObservers(std::function<double()> now, QObject *parent = nullptr);
    ~TimeObservers() override;

    /// Ticks every `intervalSeconds` (at least a millisecond) from now on. Without a context
    /// it lives until removed.
    Id add(double intervalSeconds, QObject *context, Observer observer);
    /// Nothing more is called for `id` once this returns; unknown ids are ignored. May be
    /// called from inside the observer's own tick.
    void remove(Id id);
    [[nodiscard]] int count() const { return int(m_entries.size()); }

private:
    struct Entry {
        QTimer *timer = nullptr;
        QMetaObject::Connection contextGone;
    };

    std::function<double()> m_now;
    std::map<Id, Entry> m_entries;
    Id m_next = 1;
};
