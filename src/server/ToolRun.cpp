#include "ToolRun.h"

#include "ProcessError.h"
#include "ToolLocator.h"

#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

namespace ToolRun {

namespace {
/// Runs `program`; a child that runs past `timeout` (when given) or is asked to stop is
/// stopped the way a cancelled one is.
Result<ProcessResult> runChild(const QString &program, const QStringList &arguments,
                               ProcessRunner::LineHandler onLine, std::stop_token external,
                               std::optional<std::chrono::milliseconds> timeout)
{
    if (program.isEmpty())
        return ProcessError::startFailed(QStringLiteral("ffmpeg"), QStringLiteral("it was not found"));
    std::stop_source stop;
    std::stop_callback forward(external, [&stop] { stop.request_stop(); });
    std::jthread watchdog;
    if (timeout) {
        watchdog = std::jthread([&stop, limit = *timeout](std::stop_token done) {
            std::mutex mutex;
            std::condition_variable_any wake;
            std::unique_lock lock(mutex);
            wake.wait_for(lock, done, limit, [] { return false; });
            if (!done.stop_requested())
                stop.request_stop();
        });
    }
    auto result = ProcessRunner::runBlocking(program, arguments, std::move(onLine), stop.get_token());
    if (!result)
        return result.failure();
    if (result->status != 0)
        return ProcessError::failed(program, result->status, result->stdErr);
    return std::move(result).value();
}
} // namespace

QString ffmpeg()
{
    return ToolLocator::ffmpeg().value_or(QString());
}

QString ffprobe()
{
    return ToolLocator::ffprobe().value_or(QString());
}

Result<void> run(const QString &program, const QStringList &arguments, std::chrono::milliseconds timeout,
                 std::stop_token cancel)
{
    const auto result = runChild(program, arguments, {}, std::move(cancel), timeout);
    if (!result)
        return result.failure();
    return {};
}

Result<QByteArray> output(const QString &program, const QStringList &arguments, std::chrono::milliseconds timeout)
{
    const auto result = runChild(program, arguments, {}, {}, timeout);
    if (!result)
        return result.failure();
    return result->stdOut;
}

Result<void> run(const QString &program, const QStringList &arguments, ProcessRunner::LineHandler onLine,
                 std::stop_token stop)
{
    const auto result = runChild(program, arguments, std::move(onLine), std::move(stop), std::nullopt);
    if (!result)
        return result.failure();
    return {};
}

} // namespace ToolRun
