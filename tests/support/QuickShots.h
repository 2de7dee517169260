#pragma once

#include "TestPaths.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QImage>
#include <QQuickItem>
#include <QQuickWindow>
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
