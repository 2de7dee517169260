#pragma once

#include "Library.h"

#include <mutex>
#include <string>
#include <vector>

/// @brief The music beds of the library: a few tracks synthesised with ffmpeg the first time
/// they are asked for (no recorded music is shipped), plus any the pilot drops into music/.
class MusicMaker
{
public:
    explicit MusicMaker(const Library &library) : m_library(library) {}

    /// Makes the built-in tracks when the music folder holds none.
    void ensure();
    /// Track paths relative to music/, sorted.
    [[nodiscard]] std::vector<std::string> tracks() const;

private:
    const Library &m_library;
    std::mutex m_mutex;
    bool m_checked = false;
};
