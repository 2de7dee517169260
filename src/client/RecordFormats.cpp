#include "RecordFormats.h"

#include <QLocale>
#include <QRegularExpression>

#include <charconv>
#include <cmath>

namespace RecordFormats {

namespace {

struct Formats {
    QLocale locale;
    QString mediumDateShortTime;
    QRegularExpression iso8601{QStringLiteral(
        R"(^\d{4}-\d{2}-\d{2}T\d{2}:\d{2}:\d{2}(Z|[+-]\d{2}:?\d{2})$)")};

    Formats()
    {
        // Qt has no medium date style: the long one without its weekday and with the short
        // month name comes closest ("dddd, MMMM d, yyyy" -> "MMM d, yyyy").
        QString date = locale.dateFormat(QLocale::LongFormat);
        date.remove(QRegularExpression(QStringLiteral(R"(dddd[,.]?\s*)")));
        date.replace(QStringLiteral("MMMM"), QStringLiteral("MMM"));
        mediumDateShortTime = date.trimmed() + QStringLiteral(", ") + locale.timeFormat(QLocale::ShortFormat);
    }
};

const Formats &formats()
{
    static const Formats shared;
    return shared;
}

QString show(const QDateTime &when, const char *format)
{
    return formats().locale.toString(when.toLocalTime(), QString::fromLatin1(format));
}

} // namespace

std::optional<QDateTime> parseLocal(const QString &text)
{
    // Read by position rather than through a format parser: the gallery does this per flight.
    // "yyyy-MM-dd'T'HH:mm:ss", nothing before or after.
    static constexpr char shape[] = "dddd-dd-ddTdd:dd:dd";
    if (text.size() != qsizetype(sizeof shape - 1))
        return std::nullopt;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (shape[i] == 'd' ? !(c >= QLatin1Char('0') && c <= QLatin1Char('9')) : c != QLatin1Char(shape[i]))
            return std::nullopt;
    }
    const auto number = [&](qsizetype at, qsizetype length) { return QStringView(text).mid(at, length).toInt(); };
    const QDate date(number(0, 4), number(5, 2), number(8, 2));
    const QTime time(number(11, 2), number(14, 2), number(17, 2));
    if (!date.isValid() || !time.isValid())
        return std::nullopt;
    QDateTime when(date, time, Qt::LocalTime);
    if (!when.isValid())  // a clock time skipped by a daylight-saving change
        return std::nullopt;
    return when;
}

std::optional<QDateTime> parseISO8601(const QString &text)
{
    if (!formats().iso8601.match(text).hasMatch())
        return std::nullopt;
    QDateTime when = QDateTime::fromString(text, Qt::ISODate);
    if (!when.isValid())
        return std::nullopt;
    return when;
}

QString mediumDateShortTime(const QDateTime &when)
{
    return formats().locale.toString(when.toLocalTime(), formats().mediumDateShortTime);
}

QString monthDay(const QDateTime &when)
{
    return show(when, "MMM d");
}

QString monthDayYear(const QDateTime &when)
{
    return show(when, "MMM d, yyyy");
}

QString dayKey(const QDateTime &when)
{
    return show(when, "yyyy-MM-dd");
}

QString monthKey(const QDateTime &when)
{
    return show(when, "yyyy-MM");
}

QString dayLabel(const QDateTime &when)
{
    return show(when, "ddd, MMM d, yyyy");
}

QString monthLabel(const QDateTime &when)
{
    return show(when, "MMMM yyyy");
}

QString doubleText(double value)
{
    if (std::isnan(value))
        return QStringLiteral("nan");
    if (std::isinf(value))
        return value > 0 ? QStringLiteral("inf") : QStringLiteral("-inf");
    char buffer[64];
    const double magnitude = std::fabs(value);
    const bool scientific = magnitude != 0.0 && (magnitude < 1e-4 || magnitude >= 1e16);
    const auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, value,
                                         scientific ? std::chars_format::scientific : std::chars_format::fixed);
    Q_UNUSED(ec) // 64 characters hold any double in either form
    QString text = QString::fromLatin1(buffer, end - buffer);
    if (!scientific && !text.contains(QLatin1Char('.')))
        text += QStringLiteral(".0");
    return text;
}

} // namespace RecordFormats
