#include "ExifToolCommand.h"

#include "ProcessError.h"

#include <QFileInfo>
#include <QStringDecoder>

ExifToolCommand exifToolCommand(const ToolLocator::ExifTool &tool, const QStringList &args)
{
    if (!tool.libDir)
        return ExifToolCommand{tool.script, args};
    QStringList arguments{QStringLiteral("-I"), *tool.libDir, tool.script};
    arguments.append(args);
    return ExifToolCommand{perlPath, arguments};
}

QCoro::Task<Result<QString>> exifToolVersion(ToolLocator::ExifTool tool)
{
    const ExifToolCommand command = exifToolCommand(tool, QStringList{QStringLiteral("-ver")});
    const auto result = co_await ProcessRunner::run(command.program, command.arguments);
    if (!result.ok())
        co_return result.failure();
    if (result->status != 0)
        co_return ProcessError::failed(QFileInfo(command.program).fileName(), result->status, result->stdErr);
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder.decode(result->stdOut);
    co_return decoder.hasError() ? QString() : text.trimmed();
}
