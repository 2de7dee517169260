#pragma once

#include "ProcessRunner.h"
#include "ToolLocator.h"

#include <Result.h>

#include <QCoroTask>
#include <QStringList>

/// @brief The executable and arguments of one exiftool run: our own copy goes through
/// `/usr/bin/perl -I <lib> <script>`, any other is run as it stands.
struct ExifToolCommand {
    QString program;
    QStringList arguments;
};

[[nodiscard]] ExifToolCommand exifToolCommand(const ToolLocator::ExifTool &tool, const QStringList &args);

/// `exiftool -ver`, trimmed; a non-zero status fails with the name of the program that ran.
[[nodiscard]] QCoro::Task<Result<QString>> exifToolVersion(ToolLocator::ExifTool tool);

inline const QString perlPath = QStringLiteral("/usr/bin/perl");
