#pragma once

#include "Result.h"

#include <QString>
#include <QStringList>

#include <chrono>

/// @brief The one place the server starts child processes (ffmpeg, for samples, music and
/// clip thumbnails). Blocking: callers are request threads or start-up.
namespace ToolRun {
/// ffmpeg: $AEROLOOM_FFMPEG when set, else the one on PATH; empty when there is none.
[[nodiscard]] QString ffmpeg();
/// Runs a tool to its end; a failure carries the tool's last words on stderr.
[[nodiscard]] Result<void> run(const QString &program, const QStringList &arguments,
                               std::chrono::milliseconds timeout = std::chrono::minutes(5));
}
