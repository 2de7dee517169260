#pragma once

#include <QMetaEnum>
#include <QObject>
#include <QString>

#include <optional>

/// @brief The gallery's persisted choices. Each case is stored as its own name, so the names
/// below are the stored texts and must not be renamed.
namespace GalleryEnums {
Q_NAMESPACE

enum class GalleryLayout { grid, map };
Q_ENUM_NS(GalleryLayout)

enum class GroupMode { day, month, place, flat };
Q_ENUM_NS(GroupMode)

enum class SortOrder { newest, oldest, longestPath, highestAltitude, longestDuration };
Q_ENUM_NS(SortOrder)

enum class TimeOfDayFilter { all, day, golden, night };
Q_ENUM_NS(TimeOfDayFilter)

/// The stored text of a case.
template <typename E>
[[nodiscard]] QString rawText(E value)
{
    return QString::fromLatin1(QMetaEnum::fromType<E>().valueToKey(int(value)));
}

/// The case a stored text names; nullopt for any other text (the caller falls back on its default).
template <typename E>
[[nodiscard]] std::optional<E> fromRawText(const QString &text)
{
    bool ok = false;
    const int value = QMetaEnum::fromType<E>().keyToValue(text.toLatin1().constData(), &ok);
    if (!ok)
        return std::nullopt;
    return E(value);
}
} // namespace GalleryEnums

using GalleryEnums::GalleryLayout;
using GalleryEnums::GroupMode;
using GalleryEnums::SortOrder;
using GalleryEnums::TimeOfDayFilter;
