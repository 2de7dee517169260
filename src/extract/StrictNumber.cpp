#include "StrictNumber.h"

#include <QString>

#include <charconv>
#include <cmath>
#include <string>

std::optional<double> strictNumber(QStringView text)
{
    if (text.isEmpty() || text.size() > 512)
        return std::nullopt;
    std::string ascii;
    ascii.reserve(static_cast<std::size_t>(text.size()));
    for (const QChar c : text) {
        if (c.unicode() > 0x7f)
            return std::nullopt;
        ascii.push_back(static_cast<char>(c.unicode()));
    }
    // from_chars ignores the locale (strtod does not) but refuses a leading "+", which strtod takes.
    const char *begin = ascii.data();
    const char *end = begin + ascii.size();
    if (*begin == '+') {
        ++begin;
        if (begin == end || *begin == '-' || *begin == '+')
            return std::nullopt;
    }
    double value = 0;
    const auto [ptr, ec] = std::from_chars(begin, end, value);
    // "inf" and "nan" parse, but no reading of ours can use them and flight.json cannot hold them.
    if (ec != std::errc() || ptr != end || !std::isfinite(value))
        return std::nullopt;
    return value;
}

std::optional<long long> strictInteger(QStringView text)
{
    bool ok = false;
    if (text.isEmpty() || text.front().isSpace() || text.back().isSpace())
        return std::nullopt;
    const long long value = text.toString().toLongLong(&ok, 10);
    return ok ? std::optional<long long>(value) : std::nullopt;
}
