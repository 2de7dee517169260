#include "ToolRun.h"

#include "ProcessError.h"
#include "ProcessRunner.h"
#include "ToolLocator.h"

#include <condition_variable>
#include <mutex>
#include <stop_token>
#include <thread>

namespace ToolRun {

QString ffmpeg()
{
    return ToolLocator::ffmpeg().value_or(QString());
}

Result<void> run(const QString &program, const QStringList &arguments, std::chrono::milliseconds timeout,
                 std::stop_token cancel)
{
    if (program.isEmpty())
        return ProcessError::startFailed(QStringLiteral("ffmpeg"), QStringLiteral("it was not found"));
    // A child that runs past its time is stopped the way a cancelled one is.
    std::stop_source stop;
    const std::stop_callback cancelled(cancel, [&stop] { stop.request_stop(); });
    std::jthread watchdog([&stop, timeout](std::stop_token done) {
        std::mutex mutex;
        std::condition_variable_any wake;
        std::unique_lock lock(mutex);
        wake.wait_for(lock, done, timeout, [] { return false; });
        if (!done.stop_requested())
            stop.request_stop();
    });
    const auto result = ProcessRunner::runBlocking(program, arguments, {}, stop.get_token());
    if (!result)
        return result.failure();
    if (result->status != 0)
        return ProcessError::failed(program, result->status, result->stdErr);
    return {};
}

} // namespace ToolRun
