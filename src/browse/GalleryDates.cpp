#include "GalleryDates.h"

#include <QHash>
#include <QLocale>
#include <QRegularExpression>

namespace GalleryDates {

namespace {
struct Patterns {
    QLocale locale;
    QString date;
    QString time;
    Patterns()
    {
        // The same medium form as the records' date text: the long date without its weekday,
        // with the short month name, then the short time.
        date = locale.dateFormat(QLocale::LongFormat);
        date.remove(QRegularExpression(QStringLiteral(R"(dddd[,.]?\s*)")));
        date.replace(QStringLiteral("MMMM"), QStringLiteral("MMM"));
        date = date.trimmed();
        time = locale.timeFormat(QLocale::ShortFormat);
    }
};

const Patterns &patterns()
{
    static const Patterns shared;
    return shared;
}

int digits(QStringView text, qsizetype from, qsizetype count)
{
    int value = 0;
    for (qsizetype i = from; i < from + count; ++i) {
        const char16_t c = text[i].unicode();
        if (c < u'0' || c > u'9')
            return -1;
        value = value * 10 + (c - u'0');
    }
    return value;
}
} // namespace

std::optional<WallClock> parse(QStringView t)
{
    if (t.size() != 19 || t[4] != u'-' || t[7] != u'-' || t[10] != u'T' || t[13] != u':' || t[16] != u':')
        return std::nullopt;
    const int y = digits(t, 0, 4), mo = digits(t, 5, 2), d = digits(t, 8, 2);
    const int h = digits(t, 11, 2), mi = digits(t, 14, 2), s = digits(t, 17, 2);
    if (y < 0 || mo < 0 || d < 0 || h < 0 || mi < 0 || s < 0)
        return std::nullopt;
    WallClock when{QDate(y, mo, d), QTime(h, mi, s)};
    if (!when.date.isValid() || !when.time.isValid())
        return std::nullopt;
    return when;
}

QDate dateOf(qint64 seconds)
{
    return QDate::fromJulianDay(seconds / 86400);
}

QString mediumLabel(const WallClock &when)
{
    const Patterns &p = patterns();
    return p.locale.toString(when.date, p.date) + QStringLiteral(", ") + p.locale.toString(when.time, p.time);
}

QString dayKey(QDate date)
{
    return QString::asprintf("%04d-%02d-%02d", date.year(), date.month(), date.day());
}

QString monthKey(QDate date)
{
    return QString::asprintf("%04d-%02d", date.year(), date.month());
}

// Section headers are asked for on every redraw and there are only so many days: each is
// worded once per thread.
QString dayLabel(QDate date)
{
    thread_local QHash<qint64, QString> known;
    auto found = known.constFind(date.toJulianDay());
    if (found == known.constEnd())
        found = known.insert(date.toJulianDay(), patterns().locale.toString(date, QStringLiteral("ddd, MMM d, yyyy")));
    return *found;
}

QString monthLabel(QDate date)
{
    thread_local QHash<qint64, QString> known;
    const qint64 month = qint64(date.year()) * 12 + date.month();
    auto found = known.constFind(month);
    if (found == known.constEnd())
        found = known.insert(month, patterns().locale.toString(date, QStringLiteral("MMMM yyyy")));
    return *found;
}

QString monthYear(QDate date)
{
    return patterns().locale.toString(date, QStringLiteral("MMM yyyy"));
}

} // namespace GalleryDates
