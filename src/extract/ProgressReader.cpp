#include "ProgressReader.h"

#include "StrictNumber.h"

#include <algorithm>

ProcessRunner::LineHandler progressReader(double totalSeconds, std::function<void(double)> onProgress)
{
    return [totalSeconds, onProgress = std::move(onProgress)](const QString &line) {
        static const QString key = QStringLiteral("out_time_ms=");
        if (!line.startsWith(key))
            return;
        const auto micros = strictNumber(QStringView(line).mid(key.size()));
        if (!micros)
            return;
        onProgress(std::min(1.0, *micros / 1'000'000.0 / totalSeconds));
    };
}
