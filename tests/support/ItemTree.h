#pragma once

#include <QQuickItem>
#include <QString>

/// The item named `name` at or below `from`. Items made by views, layouts and repeaters hang in
/// the item tree, not always in the object tree, so `findChild` misses them.
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
