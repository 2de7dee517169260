#pragma once

#include <QStringView>

#include <optional>

/// Reads the whole text as a decimal floating-point number, as the C library's string-to-double
/// would, but refusing leading or trailing white space, anything left over ("1.2.3" fails) and
/// values that are not finite.
[[nodiscard]] std::optional<double> strictNumber(QStringView text);

/// Reads the whole text as a decimal integer (optional sign), nothing else.
[[nodiscard]] std::optional<long long> strictInteger(QStringView text);
