#pragma once

#include "FoundFlight.h"

#include <QList>
#include <QStringList>

#include <QCoroTask>

#include <optional>

/// @brief Finds the flights in a folder tree or among dropped files.
///
/// A flight is one clip: a .LRF low-resolution file, or an .MP4/.MOV with an optional .SRT
/// sidecar. When a .LRF and a video share a stem the light .LRF is the flight.
namespace CardScanner {

/// Walks `folder` (hidden files skipped, no depth limit); sorted by path, no duplicates.
/// Blocking: call it off the GUI thread.
[[nodiscard]] QList<FoundFlight> scan(const QString &folder);
/// Classifies an explicit list of files, in the given order. Videos whose names carry no date
/// get the fallback identity from their content and creation time (may run ffprobe).
[[nodiscard]] QCoro::Task<QList<FoundFlight>> flights(QStringList files);
/// The clip's .SRT sidecar (upper case before lower case), if one lies beside it.
[[nodiscard]] std::optional<QString> sidecar(const QString &clip);

} // namespace CardScanner
