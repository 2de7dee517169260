#pragma once

#include "ProcessRunner.h"

#include <functional>

/// Makes the line handler that reads ffmpeg's `-progress pipe:1` output: each "out_time_ms="
/// line (microseconds, whatever the key says) gives one call of `onProgress` with the fraction
/// of `totalSeconds`, capped at 1 and not floored. Other lines are ignored.
[[nodiscard]] ProcessRunner::LineHandler progressReader(double totalSeconds, std::function<void(double)> onProgress);
