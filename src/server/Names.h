#pragma once

#include <string>
#include <string_view>

/// @brief The rules for names that arrive in request paths and end up as file names.
///
/// Every id and file name from a URL passes one of these before it touches the disk, so no
/// request can reach outside the library folder.
namespace Names {
/// Longest flight or story id accepted, in bytes.
inline constexpr std::size_t maxIdLength = 128;

/// A flight or story id: 1..128 bytes, no "/", "\", control characters, and no leading ".".
[[nodiscard]] bool isSafeId(std::string_view id);
/// One of the four files a flight upload consists of.
[[nodiscard]] bool isUploadName(std::string_view name);
/// A file of a flight that may be served: the upload names, the 480 proxy, clips.json,
/// and clip thumbnails "clipthumb_<clip>_<tenths>.jpg".
[[nodiscard]] bool isServedName(std::string_view name);
/// For a clip thumbnail name, the time in tenths of a second; -1 for any other name.
[[nodiscard]] long long clipThumbTenths(std::string_view name);
/// A music track path: safe segments joined by "/".
[[nodiscard]] bool isSafeTrack(std::string_view track);
/// The MIME type served for a file name.
[[nodiscard]] std::string contentType(std::string_view name);
}
