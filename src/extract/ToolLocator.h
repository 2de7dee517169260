#pragma once

#include <QCoroTask>
#include <QString>
#include <QStringList>

#include <optional>

/// @brief Finds ffmpeg, ffprobe and exiftool, and tells in words what is missing.
///
/// Search order: the environment variable (taken unchecked), the program's own resources
/// (`<prefix>/libexec/aeroloom/`, then the build tree's third_party folder), then
/// /opt/homebrew/bin, /usr/local/bin and /usr/bin.
namespace ToolLocator {

/// @brief Where exiftool is: its script, and its Perl modules when it is our own copy.
struct ExifTool {
    QString script;
    std::optional<QString> libDir; ///< present exactly when the tool comes from our resources
    bool operator==(const ExifTool &) const = default;
};

inline constexpr const char *ffmpegEnv = "AEROLOOM_FFMPEG";
inline constexpr const char *ffprobeEnv = "AEROLOOM_FFPROBE";
inline constexpr const char *exiftoolEnv = "AEROLOOM_EXIFTOOL";

/// `name` is "ffmpeg" or "ffprobe", `envKey` the matching variable.
[[nodiscard]] std::optional<QString> find(const QString &name, const char *envKey);
[[nodiscard]] std::optional<QString> ffmpeg();
[[nodiscard]] std::optional<QString> ffprobe();
[[nodiscard]] std::optional<ExifTool> findExifTool();

/// The program's own resource folders, most specific first: the install folder beside the
/// executable, then the build tree's.
[[nodiscard]] QStringList resourceDirs();

/// One text per problem; empty when all three tools are usable.
[[nodiscard]] QCoro::Task<QStringList> preflight();

} // namespace ToolLocator
