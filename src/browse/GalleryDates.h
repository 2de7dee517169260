#pragma once

#include <QDate>
#include <QString>
#include <QStringView>
#include <QTime>

#include <optional>

/// @brief The gallery's date forms, made for ten thousand flights per load.
///
/// A flight's date is a wall-clock time without zone, so it is read and shown as a date and a
/// time of day and never turned into an instant: that keeps the time-zone database out of the
/// loop, which is where QDateTime spends its time. The texts are those of `Flight::dateText()` and
/// the record formats (the same locale patterns).
namespace GalleryDates {

struct WallClock {
    QDate date;
    QTime time;
    /// Seconds on a continuous wall-clock scale: sorts like the dates it came from.
    [[nodiscard]] qint64 seconds() const { return date.toJulianDay() * 86400 + time.msecsSinceStartOfDay() / 1000; }
};

/// "yyyy-MM-dd'T'HH:mm:ss" exactly, with a real date and time; nullopt otherwise.
[[nodiscard]] std::optional<WallClock> parse(QStringView text);
[[nodiscard]] QDate dateOf(qint64 seconds);

/// Medium date and short time of the user's locale.
[[nodiscard]] QString mediumLabel(const WallClock &when);
[[nodiscard]] QString dayKey(QDate date);    ///< "yyyy-MM-dd"
[[nodiscard]] QString monthKey(QDate date);  ///< "yyyy-MM"
[[nodiscard]] QString dayLabel(QDate date);  ///< "EEE, MMM d, yyyy"
[[nodiscard]] QString monthLabel(QDate date);  ///< "MMMM yyyy"
[[nodiscard]] QString monthYear(QDate date);   ///< "MMM yyyy"

} // namespace GalleryDates
