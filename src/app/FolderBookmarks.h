#pragma once

#include <QString>

#include <optional>

class Preferences;

/// @brief A folder the user chose, remembered across restarts under a preference key.
///
/// This platform has no security-scoped bookmarks: the "bookmark" under `key` is the folder's
/// path itself. Older builds (and other platforms' copies of the settings) kept a plain path
/// under `key` + ".path"; loading falls back on it, and saving drops it so the two never
/// disagree.
namespace FolderBookmarks {

void save(Preferences &prefs, const QString &path, const QString &key);
[[nodiscard]] std::optional<QString> load(const Preferences &prefs, const QString &key);

} // namespace FolderBookmarks
