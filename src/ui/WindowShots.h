#pragma once

#include <QDir>
#include <QObject>

class QQmlApplicationEngine;
class QQuickWindow;

/// @brief Headless self-checks of the desktop program: a picture of every window, or the time
/// to the first frame of the main window. Used by the smoke test and the start-up benchmark.
class WindowShots : public QObject
{
    Q_OBJECT
public:
    explicit WindowShots(QQmlApplicationEngine &engine, QObject *parent = nullptr);

    /// Shows every window, waits until each has drawn and settled, saves `<prefix>-<objectName>.png`
    /// into `dir`, then quits the program (exit code 2 when a picture could not be written).
    void captureAllInto(const QDir &dir, const QString &prefix);
    /// Prints "first-frame <ms since process start>" once the main window has drawn, then quits.
    void exitOnFirstFrame(qint64 processStartMs);

    /// Every top-level window the engine made, the main window first.
    [[nodiscard]] QList<QQuickWindow *> windows() const;

private:
    void captureWhenDrawn(QDir dir, QString prefix);

    QQmlApplicationEngine &m_engine;
};
