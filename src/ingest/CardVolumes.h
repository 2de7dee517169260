#pragma once

#include <QList>
#include <QString>

#include <optional>

/// @brief Which mounted volumes look like a drone's memory card.
///
/// A card is browsable, removable (or known to be external), has a "DCIM" folder at its root,
/// and holds .LRF, .MP4 or .MOV files within two folder levels below it.
namespace CardVolumes {

struct Volume {
    QString root;  ///< mount point
    QString name;  ///< what the banner calls it
    bool operator==(const Volume &) const = default;
};

/// What the platform tells of a mounted volume; an absent answer is unknown.
struct MountFacts {
    QString root;
    QString name;
    QString device;  ///< e.g. /dev/sdb1
    QString fileSystem;
    bool hidden = false;
    std::optional<bool> browsable;
    std::optional<bool> removable;
    std::optional<bool> internal;
};

/// The qualifying volumes among what is mounted now, in mount order.
[[nodiscard]] QList<Volume> cardVolumes();
/// The rule itself, over given facts (for tests and other platforms).
[[nodiscard]] QList<Volume> qualifying(const QList<MountFacts> &mounts);
/// The mounted volumes with what /sys says of their devices.
[[nodiscard]] QList<MountFacts> mountedVolumes(const QString &sysRoot = QStringLiteral("/sys"));
/// True when `dcim` holds clips directly or up to two folder levels below.
[[nodiscard]] bool hasMedia(const QString &dcim, int depth = 2);

} // namespace CardVolumes
