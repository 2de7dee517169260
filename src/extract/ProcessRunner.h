#pragma once

#include "OutputCollector.h"
#include "ProcessResult.h"

#include <CancelToken.h>
#include <Result.h>

#include <QCoroTask>
#include <QStringList>

#include <chrono>
#include <stop_token>

/// @brief The one way this program starts a child process and collects what it prints.
///
/// Standard input is the null device, the environment is inherited, output is read as it comes
/// (a child that writes a lot never stalls on a full pipe). A non-zero exit status is not a
/// failure here: the caller decides. The only failure is a child that cannot be started.
/// Cancelling asks the child to terminate and kills it after `terminateGrace`; the run then ends
/// normally with the child's status, and the caller knows it cancelled.
namespace ProcessRunner {

using LineHandler = OutputCollector::LineHandler;

inline constexpr std::chrono::milliseconds terminateGrace{3000};

/// Runs `tool` with `args` on the calling thread's event loop. `onLine` gets each line of
/// standard output on that thread. A token already cancelled before the start does not stop the
/// child, since there is nothing to stop yet when it fires; check it before calling.
[[nodiscard]] QCoro::Task<Result<ProcessResult>> run(QString tool, QStringList args, LineHandler onLine = {},
                                                     CancelToken *token = nullptr);

/// The same rules, blocking the calling thread until the child ends: for headless callers on
/// worker threads. A stop request terminates the child (then kills it after the grace period).
[[nodiscard]] Result<ProcessResult> runBlocking(const QString &tool, const QStringList &args,
                                                LineHandler onLine = {}, std::stop_token stop = {});

} // namespace ProcessRunner
