#pragma once

#include <QDateTime>
#include <QString>

#include <optional>

/// @brief Date parsing and display forms shared by every record helper.
///
/// The formats are worked out once for the process and reused: the gallery runs them for every
/// flight. Parsing is fixed (C locale); display follows the user's locale and time zone.
namespace RecordFormats {
/// "yyyy-MM-dd'T'HH:mm:ss" read as the machine's local clock; nullopt when it doesn't match.
[[nodiscard]] std::optional<QDateTime> parseLocal(const QString &text);
/// ISO 8601 internet date and time with a zone ("2024-05-01T10:00:00Z", "+02:00"), no fraction.
[[nodiscard]] std::optional<QDateTime> parseISO8601(const QString &text);

/// Medium date and short time of the user's locale, e.g. "Nov 21, 2026, 4:27 PM".
[[nodiscard]] QString mediumDateShortTime(const QDateTime &when);
/// "MMM d"
[[nodiscard]] QString monthDay(const QDateTime &when);
/// "MMM d, yyyy"
[[nodiscard]] QString monthDayYear(const QDateTime &when);

// Gallery grouping forms.
[[nodiscard]] QString dayKey(const QDateTime &when);     ///< "yyyy-MM-dd"
[[nodiscard]] QString monthKey(const QDateTime &when);   ///< "yyyy-MM"
[[nodiscard]] QString dayLabel(const QDateTime &when);   ///< "EEE, MMM d, yyyy"
[[nodiscard]] QString monthLabel(const QDateTime &when); ///< "MMMM yyyy"

/// The shortest text that reads back as the same double, with ".0" on whole numbers
/// ("12.0", "0.5", "1e-05"): the form list identities are built from.
[[nodiscard]] QString doubleText(double value);
} // namespace RecordFormats
