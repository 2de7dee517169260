#include "PageScript.h"

#include "TestPaths.h"

#include <QDir>
#include <QProcess>

nlohmann::json runPageScript(const QString &script, const QStringList &arguments, int timeoutMs)
{
    QProcess node;
    node.setProgram(QStringLiteral("node"));
    node.setArguments(QStringList{QDir(TestPaths::sourceDir()).absoluteFilePath(script)} + arguments);
    node.setProcessChannelMode(QProcess::SeparateChannels);
    node.start();
    node.closeWriteChannel();
    if (!node.waitForStarted(10000))
        return {{"error", "node did not start: " + node.errorString().toStdString()}};
    if (!node.waitForFinished(timeoutMs)) {
        node.kill();
        node.waitForFinished(5000);
        return {{"error", "the page script did not finish in time"},
                {"stderr", QString::fromUtf8(node.readAllStandardError()).toStdString()}};
    }
    const QString out = QString::fromUtf8(node.readAllStandardOutput());
    const QString err = QString::fromUtf8(node.readAllStandardError());
    const qsizetype at = out.lastIndexOf(QStringLiteral("RESULT "));
    if (at < 0 || node.exitCode() != 0)
        return {{"error", "the page script failed (exit " + std::to_string(node.exitCode()) + ")"},
                {"stderr", err.toStdString()}, {"stdout", out.toStdString()}};
    const QString line = out.mid(at + 7).section(QLatin1Char('\n'), 0, 0);
    auto parsed = nlohmann::json::parse(line.toStdString(), nullptr, false);
    if (parsed.is_discarded())
        return {{"error", "the page script reported no JSON"}, {"stdout", out.toStdString()}};
    return parsed;
}
