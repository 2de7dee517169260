#pragma once

#include "CutPlanRow.h"

#include <QHash>
#include <QList>
#include <QString>

#include <optional>

/// @brief Matching a story's cut list to the originals found on disk, and naming what it becomes.
namespace CutPlanner {

/// `name` as one path component: separators become "_", and an empty name, "." or ".." gives
/// `fallback`. Names come from the server, which must never place a file outside the save folder.
[[nodiscard]] QString safeComponent(QString name, const QString &fallback);

/// The story's name on disk: its slug, else its id, else "reel".
[[nodiscard]] QString reelBase(const std::optional<EDL> &edl);

/// The entry's `output`, else "<slug or id>_<seq, two digits>.mp4".
[[nodiscard]] QString outputName(const EDL &edl, const EDLItem &item);

/// A file that reports a size above 0. Missing, empty and unreadable files are no file.
[[nodiscard]] bool hasContent(const QString &path);

/// The first that applies: zero-length, no original, already cut (unless `force`), ready.
[[nodiscard]] CutPlanRow::Status statusFor(const EDLItem &item, const std::optional<QString> &source,
                                           const QString &outURL, bool force);

/// One row per entry, in the cut list's order, written into `folder`. `index` holds originals by
/// lower-cased stem.
[[nodiscard]] QList<CutPlanRow> plan(const EDL &edl, const QHash<QString, QString> &index, const QString &folder,
                                     bool force);

/// Resolves rows that had no original and now find one in `index`; every other row, done,
/// failed and cutting ones included, stays as it is.
void refresh(QList<CutPlanRow> &rows, const QHash<QString, QString> &index, bool force);

} // namespace CutPlanner
