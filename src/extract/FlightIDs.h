#pragma once

#include <QDateTime>
#include <QSet>
#include <QString>

#include <optional>

/// @brief The id and recording date of a flight, derived from its file alone, so the same file
/// gets the same id on every machine and every import.
namespace FlightIDs {

struct FlightIdentity {
    QString id;
    std::optional<QDateTime> date;
    bool operator==(const FlightIdentity &) const = default;
};

/// Lower-case extensions that count as video ("lrf" is tested for by itself).
[[nodiscard]] const QSet<QString> &videoExtensions();

/// From the file name only: the camera form "DJI_<14 digits>_<n>" or the app-export form
/// "dji_fly_<8>_<6>_<n>", dated in local time; otherwise the stem, undated. Never reads the file.
[[nodiscard]] FlightIdentity parseFileName(const QString &path);

/// For names without a usable date: "<UTC date from creation_time or zeros>_<first four hex digits
/// of the MD5 of the first MiB, or 0000>". Reads at most one mebibyte.
[[nodiscard]] FlightIdentity fallbackIdentity(const QString &path, const std::optional<QString> &creationTime);

inline constexpr qint64 hashedBytes = 1'048'576;

} // namespace FlightIDs
