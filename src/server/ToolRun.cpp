#include "ToolRun.h"

#include <QProcess>
#include <QStandardPaths>

namespace ToolRun {

QString ffmpeg()
{
    const QString fromEnv = qEnvironmentVariable("AEROLOOM_FFMPEG");
    if (!fromEnv.isEmpty())
        return fromEnv;
    return QStandardPaths::findExecutable(QStringLiteral("ffmpeg"));
}

Result<void> run(const QString &program, const QStringList &arguments, std::chrono::milliseconds timeout)
{
    const auto failure = [&program](const QString &why) {
        return Failure{QStringLiteral("process"), 1, QStringLiteral("%1 failed: %2").arg(program, why)};
    };
    if (program.isEmpty())
        return failure(QStringLiteral("the tool was not found"));
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.start(program, arguments);
    if (!process.waitForStarted(10000))
        return failure(QStringLiteral("it could not be started"));
    if (!process.waitForFinished(static_cast<int>(timeout.count()))) {
        process.kill();
        process.waitForFinished(-1);
        return failure(QStringLiteral("it took too long"));
    }
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        const QString err = QString::fromUtf8(process.readAllStandardError()).trimmed();
        return failure(err.right(300));
    }
    return {};
}

} // namespace ToolRun
