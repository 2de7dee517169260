#pragma once

#include "ProcessRunner.h"
#include "Result.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <chrono>
#include <stop_token>

/// @brief How the server runs ffmpeg and ffprobe (samples, music, clip thumbnails, story
/// videos): through the program's one process runner, blocking, since callers are request
/// threads, the render thread or start-up.
namespace ToolRun {
/// ffmpeg as the program finds it everywhere else; empty when there is none.
[[nodiscard]] QString ffmpeg();
/// ffprobe, found the same way; empty when there is none.
[[nodiscard]] QString ffprobe();
/// Runs a tool to its end; a failure carries the tool's last words on stderr.
[[nodiscard]] Result<void> run(const QString &program, const QStringList &arguments,
                               std::chrono::milliseconds timeout = std::chrono::minutes(5),
                               std::stop_token cancel = {});
/// The same, giving what the tool wrote on standard output.
[[nodiscard]] Result<QByteArray> output(const QString &program, const QStringList &arguments,
                                        std::chrono::milliseconds timeout = std::chrono::minutes(1));
/// Runs a tool for as long as it takes, handing each line of its standard output to `onLine`;
/// a request on `stop` ends the child. A stopped child is a failure like any other exit.
[[nodiscard]] Result<void> run(const QString &program, const QStringList &arguments,
                               ProcessRunner::LineHandler onLine, std::stop_token stop);
}
