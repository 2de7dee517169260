#pragma once

#include <QString>

/// @brief How a music track's file name reads on screen: "rock/03.Highway Run.mp3" reads
/// "Highway Run  ·  rock" (extension and leading number dropped, folders after a middle dot).
namespace TrackNames {

[[nodiscard]] QString displayName(const QString &track);

} // namespace TrackNames
