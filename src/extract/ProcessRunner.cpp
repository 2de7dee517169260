#include "ProcessRunner.h"

#include "ProcessError.h"

#include <QCoroProcess>
#include <QElapsedTimer>
#include <QProcess>
#include <QTimer>

namespace {

void prepare(QProcess &process, const QString &tool, const QStringList &args, OutputCollector &collector)
{
    process.setProgram(tool);
    process.setArguments(args);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setProcessChannelMode(QProcess::SeparateChannels);
    // Both channels are drained as data arrives, in the event loop or inside the blocking waits.
    QObject::connect(&process, &QProcess::readyReadStandardOutput, &process,
                     [&process, &collector] { collector.addOutput(process.readAllStandardOutput()); });
    QObject::connect(&process, &QProcess::readyReadStandardError, &process, [&process, &collector] {
        const QByteArray bytes = process.readAllStandardError();
        if (!bytes.isEmpty())
            collector.addError(bytes);
    });
}

ProcessResult finish(QProcess &process, OutputCollector &collector)
{
    QObject::disconnect(&process, &QProcess::readyReadStandardOutput, nullptr, nullptr);
    QObject::disconnect(&process, &QProcess::readyReadStandardError, nullptr, nullptr);
    collector.addOutput(process.readAllStandardOutput());
    collector.addError(process.readAllStandardError());
    // A child ended by a signal reports the signal number, as a shell's wait status would.
    int status = process.exitCode();
    if (process.exitStatus() == QProcess::CrashExit && status == 0)
        status = -1;
    return ProcessResult{status, collector.output(), collector.errorText()};
}

} // namespace

namespace ProcessRunner {

QCoro::Task<Result<ProcessResult>> run(QString tool, QStringList args, LineHandler onLine, CancelToken *token)
{
    OutputCollector collector(std::move(onLine));
    QTimer killTimer; // outlives the process, whose connections use it
    QProcess process;
    prepare(process, tool, args, collector);

    killTimer.setSingleShot(true);
    killTimer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&killTimer, &QTimer::timeout, &process, [&process] { process.kill(); });
    if (token) {
        QObject::connect(token, &CancelToken::cancelled, &process, [&process, &killTimer] {
            if (process.state() == QProcess::NotRunning)
                return;
            process.terminate();
            killTimer.start(terminateGrace);
        });
    }

    process.start();
    // Starting is a fork and an exec: waiting for it blocks no longer than that, and unlike an
    // awaited start it also returns when the exec fails.
    if (!process.waitForStarted(-1))
        co_return ProcessError::startFailed(tool, process.errorString());
    co_await qCoro(process).waitForFinished(-1);
    killTimer.stop();
    co_return finish(process, collector);
}

Result<ProcessResult> runBlocking(const QString &tool, const QStringList &args, LineHandler onLine,
                                  std::stop_token stop)
{
    OutputCollector collector(std::move(onLine));
    QProcess process;
    prepare(process, tool, args, collector);
    process.start();
    if (!process.waitForStarted(-1))
        return ProcessError::startFailed(tool, process.errorString());

    QElapsedTimer sinceTerminate;
    while (process.state() != QProcess::NotRunning) {
        if (process.waitForFinished(50))
            break;
        if (stop.stop_requested() && !sinceTerminate.isValid()) {
            process.terminate();
            sinceTerminate.start();
        } else if (sinceTerminate.isValid() && sinceTerminate.elapsed() > terminateGrace.count()) {
            process.kill();
        }
    }
    return finish(process, collector);
}

} // namespace ProcessRunner
