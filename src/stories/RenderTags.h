#pragma once

#include "RenderRecords.h"

#include <QString>
#include <QStringList>

#include <optional>

/// @brief The words shown beside a made video: its tags, its music and when it was made.
namespace RenderTags {

/// What the tags are made of; an entry of the history and a status of the video screen both
/// reduce to it.
struct Facts {
    std::optional<RenderSettings> settings;
    std::optional<QString> aspect;
    std::optional<double> duration;
    std::optional<qint64> size;
    bool stale = false;
};

[[nodiscard]] Facts of(const RenderEntry &entry);
[[nodiscard]] Facts of(const RenderStatus &status);

/// In this order, each only when known: "bar-sync", "HUD", "▯ vertical", the length "0:42",
/// the size "12MB" (whole megabytes, cut off), "⚠ stale".
[[nodiscard]] QStringList tags(const Facts &facts);
/// The music track under its display name, or "no music".
[[nodiscard]] QString music(const std::optional<RenderSettings> &settings);
/// "MMM d, h:mm a" of a `rendered` time; "?" when it is absent or doesn't read as a time.
[[nodiscard]] QString dateText(const std::optional<QString> &rendered);
[[nodiscard]] bool isVertical(const std::optional<QString> &aspect);

} // namespace RenderTags
