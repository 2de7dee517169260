#pragma once

#include <QString>

/// @brief Shows a file or folder selected in the desktop's file manager, through the
/// freedesktop `org.freedesktop.FileManager1.ShowItems` call on the session bus. Where no file
/// manager answers it, the folder holding the item is opened instead.
namespace FileReveal {

inline const QString service = QStringLiteral("org.freedesktop.FileManager1");
inline const QString path = QStringLiteral("/org/freedesktop/FileManager1");

/// Returns at once; the fallback, when needed, follows the bus's answer.
void show(const QString &item);

} // namespace FileReveal
