#pragma once

#include "Result.h"

#include <QString>
#include <QStringList>

#include <chrono>
#include <stop_token>

/// @brief How the server runs ffmpeg (samples, music and clip thumbnails): through the
/// program's one process runner, blocking, since callers are request threads or start-up.
namespace ToolRun {
/// ffmpeg as the program finds it everywhere else; empty when there is none.
[[nodiscard]] QString ffmpeg();
/// Runs a tool to its end; a failure carries the tool's last words on stderr.
[[nodiscard]] Result<void> run(const QString &program, const QStringList &arguments,
                               std::chrono::milliseconds timeout = std::chrono::minutes(5),
                               std::stop_token cancel = {});
}
