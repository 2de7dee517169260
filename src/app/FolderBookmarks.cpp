#include "FolderBookmarks.h"

#include "Preferences.h"

#include <QDir>

namespace FolderBookmarks {

void save(Preferences &prefs, const QString &path, const QString &key)
{
    prefs.setValue(key, QDir::cleanPath(path));
    prefs.remove(key + QStringLiteral(".path"));
}

std::optional<QString> load(const Preferences &prefs, const QString &key)
{
    for (const QString &candidate : {key, key + QStringLiteral(".path")}) {
        const QString path = prefs.stringValue(candidate).trimmed();
        if (!path.isEmpty())
            return QDir::cleanPath(path);
    }
    return std::nullopt;
}

} // namespace FolderBookmarks
