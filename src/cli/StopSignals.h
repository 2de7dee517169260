#pragma once

#include <QObject>

class QSocketNotifier;

/// @brief Turns SIGINT and SIGTERM into a Qt signal, so a headless run can stop its work
/// cleanly (ffmpeg ended, its partial file removed) rather than die mid-write.
class StopSignals : public QObject
{
    Q_OBJECT
public:
    explicit StopSignals(QObject *parent = nullptr);
    ~StopSignals() override;

Q_SIGNALS:
    void stopRequested();

private:
    QSocketNotifier *m_notifier = nullptr;
};
