#include "ByteRange.h"

#include <charconv>
#include <optional>

namespace {
std::optional<std::uint64_t> number(const std::string &text)
{
    std::uint64_t value = 0;
    const auto *end = text.data() + text.size();
    const auto [ptr, ec] = std::from_chars(text.data(), end, value);
    if (ec != std::errc() || ptr != end || text.empty())
        return std::nullopt;
    return value;
}

std::string trimmed(const std::string &text)
{
    const auto a = text.find_first_not_of(" \t");
    const auto b = text.find_last_not_of(" \t");
    return a == std::string::npos ? std::string() : text.substr(a, b - a + 1);
}
} // namespace

ByteRange ByteRange::resolve(const std::string &header, std::uint64_t size)
{
    const ByteRange whole{Kind::Whole, 0, size ? size - 1 : 0};
    const std::string h = trimmed(header);
    if (h.rfind("bytes=", 0) != 0)
        return whole;
    const std::string ranges = trimmed(h.substr(6));
    if (ranges.find(',') != std::string::npos)
        return whole;
    const auto dash = ranges.find('-');
    if (dash == std::string::npos)
        return whole;
    const std::string a = trimmed(ranges.substr(0, dash));
    const std::string b = trimmed(ranges.substr(dash + 1));

    if (a.empty()) {  // the last N bytes
        const auto n = number(b);
        if (!n)
            return whole;
        if (*n == 0 || size == 0)
            return {Kind::Unsatisfiable, 0, 0};
        return {Kind::Partial, *n >= size ? 0 : size - *n, size - 1};
    }
    const auto first = number(a);
    if (!first)
        return whole;
    std::uint64_t last = size ? size - 1 : 0;
    if (!b.empty()) {
        const auto l = number(b);
        if (!l || *l < *first)
            return whole;
        last = std::min(*l, last);
    }
    if (*first >= size)
        return {Kind::Unsatisfiable, 0, 0};
    return {Kind::Partial, *first, last};
}
