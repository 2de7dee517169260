#pragma once

#include <QObject>
#include <QPointer>

#include <mutex>

/// @brief Carries mpv's "a new frame is ready", which comes on mpv's own threads, to an item
/// on the GUI thread as a queued `update()`, for as long as the item is there. Shared by the
/// item and the render context, which may outlive it on the render thread.
class MpvFrameSignal
{
public:
    explicit MpvFrameSignal(QObject *item) : m_item(item) {}

    /// Any thread.
    void notify()
    {
        const std::lock_guard lock(m_mutex);
        if (m_item)
            QMetaObject::invokeMethod(m_item, "update", Qt::QueuedConnection);
    }
    /// From the item's destructor: nothing is sent after this returns.
    void detach()
    {
        const std::lock_guard lock(m_mutex);
        m_item = nullptr;
    }

private:
    std::mutex m_mutex;
    QObject *m_item;
};
