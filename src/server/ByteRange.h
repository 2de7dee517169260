#pragma once

#include <cstdint>
#include <string>

/// @brief One "Range: bytes=..." header resolved against a file's size.
///
/// Only a single range is honoured; several ranges get the whole file, which HTTP allows.
/// A range that starts past the end is unsatisfiable (416); one that runs past the end is cut
/// at the end; a suffix range longer than the file is the whole file.
struct ByteRange {
    enum class Kind { Whole, Partial, Unsatisfiable };
    Kind kind = Kind::Whole;
    std::uint64_t first = 0;
    std::uint64_t last = 0;  ///< inclusive

    [[nodiscard]] std::uint64_t length() const { return last - first + 1; }
    [[nodiscard]] static ByteRange resolve(const std::string &header, std::uint64_t size);
};
