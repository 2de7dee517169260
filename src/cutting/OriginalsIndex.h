#pragma once

#include <QCoroTask>
#include <QHash>
#include <QString>
#include <QStringList>

/// @brief The originals under some folders, by lower-cased file stem: "dji_0001" → its path.
///
/// Only .mp4 and .mov files count, whatever the case of the extension; hidden files and folders
/// are skipped, and symbolic links to folders are not followed. The first file seen under a stem
/// wins, across every folder: a copy in a later folder never replaces it.
namespace OriginalsIndex {

using Index = QHash<QString, QString>;

/// Walks the folders in order, adding to `base`. A folder that can't be read adds nothing.
[[nodiscard]] Index build(const QStringList &folders, Index base = {});

/// The same walk on a worker thread: a card of thousands of files never stalls the window.
[[nodiscard]] QCoro::Task<Index> buildInBackground(QStringList folders, Index base = {});

} // namespace OriginalsIndex
