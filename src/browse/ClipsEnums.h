#pragma once

#include "GalleryEnums.h"

#include <QObject>

/// @brief The clips browser's persisted choices, stored by their case names (see
/// `GalleryEnums::rawText` and `fromRawText`, which serve these too).
namespace ClipsEnums {
Q_NAMESPACE

/// Which clips show: every one, the pilot's own, or the library's suggestions.
enum class ClipsFilter { all, mine, suggested };
Q_ENUM_NS(ClipsFilter)

enum class ClipsGroupMode { place, month, flat };
Q_ENUM_NS(ClipsGroupMode)
} // namespace ClipsEnums

using ClipsEnums::ClipsFilter;
using ClipsEnums::ClipsGroupMode;
