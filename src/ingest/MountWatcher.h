#pragma once

#include <QObject>

class QSocketNotifier;

/// @brief Tells when something is mounted or unmounted, without polling: the kernel marks
/// /proc/self/mountinfo as changed, which wakes a socket notifier.
class MountWatcher : public QObject
{
    Q_OBJECT
public:
    explicit MountWatcher(QObject *parent = nullptr);
    ~MountWatcher() override;

Q_SIGNALS:
    void mountsChanged();

private:
    int m_fd = -1;
    QSocketNotifier *m_notifier = nullptr;
};
