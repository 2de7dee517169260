#pragma once

#include <QQuickItem>
#include <QString>

/// The item called `name` at or below `from`. Searched through the item tree: items made by
/// views and repeaters hang there, not always in the object tree.
inline QQuickItem *findItem(QQuickItem *from, const QString &name)
{
    if (from->objectName() == name)
        return from;
    for (QQuickItem *child : from->childItems())
        if (QQuickItem *found = findItem(child, name))
            return found;
    return nullptr;
}
