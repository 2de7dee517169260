#pragma once

#include "ClipRecords.h"
#include "StoryRecords.h"

#include <QList>
#include <QString>
#include <QUuid>

#include <functional>
#include <optional>

/// @brief One stretch of a flight's proxy to be watched: a story item or a library clip.
struct ClipPreview {
    QUuid id = QUuid::createUuid();
    QString flightId;
    double start = 0;  ///< seconds in the flight's proxy
    double end = 0;
    QString label;
    QString subtitle;
    std::optional<bool> p480;  ///< the flight has the 480-line proxy
    std::function<void()> onAdd;  ///< when set, the preview offers "Add to story"

    /// From a library clip: its place and date below the label.
    [[nodiscard]] static ClipPreview of(const PoolClip &clip);
    /// From a story item, with what its library clip (when still there) knows of the flight.
    [[nodiscard]] static ClipPreview of(const ReelItem &item, const std::optional<PoolClip> &clip);
    /// "Place · MMM d, yyyy", either part left out when unknown.
    [[nodiscard]] static QString subtitleOf(const PoolClip &clip);
    /// The clip's date as "MMM d, yyyy", empty when absent or not a date.
    [[nodiscard]] static QString dateText(const PoolClip &clip);
};
