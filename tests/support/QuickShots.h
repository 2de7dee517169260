#pragma once

#include "TestPaths.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QQuickItem>
#include <QQuickView>
#include <QQuickWindow>
#include <QTemporaryDir>
#include <QThread>

/// Finding items and saving pictures in tests that draw QML.
namespace QuickShots {

/// The item named `name` at or below `from`: items made by views and repeaters hang in the
/// item tree, not always in the object tree.
inline QQuickItem *findItem(QQuickItem *from, const QString &name)
{
    if (!from)
        return nullptr;
    if (from->objectName() == name)
        return from;
    for (QQuickItem *child : from->childItems())
        if (QQuickItem *found = findItem(child, name))
            return found;
    return nullptr;
}

/// Writes `qml` to Harness.qml in `dir` and loads it into `view`, whose context properties are
/// already set. Gives the first error, or nothing when the view is ready.
inline std::string load(QQuickView &view, const QTemporaryDir &dir, const QByteArray &qml)
{
    QFile file(dir.filePath(QStringLiteral("Harness.qml")));
    if (!file.open(QIODevice::WriteOnly) || file.write(qml) != qml.size())
        return "can't write " + file.fileName().toStdString();
    file.close();
    view.setSource(QUrl::fromLocalFile(file.fileName()));
    if (view.status() != QQuickView::Ready)
        return view.errors().value(0).toString().toStdString();
    return {};
}

/// Saves what `window` shows, once pending frames are drawn, as <build>/screenshots/<name>.png.
inline void save(QQuickWindow &window, const QString &name)
{
    QCoreApplication::processEvents();
    QThread::msleep(150);
    QCoreApplication::processEvents();
    const QImage picture = window.grabWindow();
    ASSERT_FALSE(picture.isNull());
    const QDir shots(TestPaths::buildDir() + "/screenshots");
    shots.mkpath(".");
    ASSERT_TRUE(picture.save(shots.filePath(name + ".png")));
}

} // namespace QuickShots
