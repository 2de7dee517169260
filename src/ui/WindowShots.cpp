#include "WindowShots.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QImage>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QTimer>

#include <cstdio>

WindowShots::WindowShots(QQmlApplicationEngine &engine, QObject *parent)
    : QObject(parent)
    , m_engine(engine)
{
}

QList<QQuickWindow *> WindowShots::windows() const
{
    QList<QQuickWindow *> found;
    for (QObject *root : m_engine.rootObjects()) {
        if (auto *window = qobject_cast<QQuickWindow *>(root))
            found.append(window);
        for (auto *child : root->findChildren<QQuickWindow *>())
            found.append(child);
    }
    return found;
}

void WindowShots::captureAllInto(const QDir &dir, const QString &prefix)
{
    for (QQuickWindow *window : windows())
        window->show();
    // Give the scene a moment to lay out, load and finish its entry animations.
    QTimer::singleShot(900, this, [this, dir, prefix] { captureWhenDrawn(dir, prefix); });
}

void WindowShots::captureWhenDrawn(QDir dir, QString prefix)
{
    dir.mkpath(QStringLiteral("."));
    int failures = 0;
    for (QQuickWindow *window : windows()) {
        const QString name = window->objectName().isEmpty() ? QStringLiteral("window") : window->objectName();
        const QImage image = window->grabWindow();
        const QString path = dir.filePath(prefix + QLatin1Char('-') + name + QStringLiteral(".png"));
        if (image.isNull() || !image.save(path)) {
            std::fprintf(stderr, "could not capture %s\n", qPrintable(path));
            ++failures;
        } else {
            std::printf("captured %s\n", qPrintable(path));
        }
    }
    std::fflush(stdout);
    QCoreApplication::exit(failures ? 2 : 0);
}

void WindowShots::exitOnFirstFrame(qint64 processStartMs)
{
    const auto all = windows();
    if (all.isEmpty()) {
        QCoreApplication::exit(3);
        return;
    }
    connect(all.first(), &QQuickWindow::frameSwapped, this, [processStartMs] {
        std::printf("first-frame %lld\n", static_cast<long long>(QDateTime::currentMSecsSinceEpoch() - processStartMs));
        std::fflush(stdout);
        QCoreApplication::exit(0);
    }, Qt::SingleShotConnection);
}
