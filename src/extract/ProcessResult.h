#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>

/// @brief What a finished child process left: its exit status, its raw standard output and
/// its standard error as text (empty when that was not valid UTF-8).
struct ProcessResult {
    std::int32_t status = 0;
    QByteArray stdOut;
    QString stdErr;
};
