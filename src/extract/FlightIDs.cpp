#include "FlightIDs.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTimeZone>

namespace {

// Stems are matched anywhere ("copy of DJI_..._0007_D (1)"), ignoring case. \d is ASCII-only in
// PCRE2 without Unicode properties, which keeps ids stable.
const QRegularExpression &cameraForm()
{
    static const QRegularExpression re(QStringLiteral("DJI_(\\d{14})_(\\d+)"), QRegularExpression::CaseInsensitiveOption);
    return re;
}

const QRegularExpression &exportForm()
{
    static const QRegularExpression re(QStringLiteral("dji_fly_(\\d{8})_(\\d{6})_(\\d+)"),
                                       QRegularExpression::CaseInsensitiveOption);
    return re;
}

// Cameras write local wall-clock time; "yyyyMMddHHmmss" fixed-width, Gregorian.
std::optional<QDateTime> localDate(const QString &digits)
{
    const QDate date(digits.mid(0, 4).toInt(), digits.mid(4, 2).toInt(), digits.mid(6, 2).toInt());
    const QTime time(digits.mid(8, 2).toInt(), digits.mid(10, 2).toInt(), digits.mid(12, 2).toInt());
    if (!date.isValid() || !time.isValid())
        return std::nullopt;
    QDateTime when(date, time, Qt::LocalTime);
    return when.isValid() ? std::optional<QDateTime>(when) : std::nullopt;
}

std::optional<QDateTime> utcDate(const std::optional<QString> &creationTime)
{
    // Only the first 19 characters count; fraction and zone are ignored without a look.
    if (!creationTime || creationTime->size() < 19)
        return std::nullopt;
    const QString text = creationTime->left(19);
    static const QRegularExpression shape(QStringLiteral("^(\\d{4})-(\\d{2})-(\\d{2})T(\\d{2}):(\\d{2}):(\\d{2})$"));
    const auto m = shape.match(text);
    if (!m.hasMatch())
        return std::nullopt;
    const QDate date(m.captured(1).toInt(), m.captured(2).toInt(), m.captured(3).toInt());
    const QTime time(m.captured(4).toInt(), m.captured(5).toInt(), m.captured(6).toInt());
    if (!date.isValid() || !time.isValid())
        return std::nullopt;
    return QDateTime(date, time, QTimeZone::utc());
}

QString digestHead(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("0000");
    const QByteArray head = file.read(FlightIDs::hashedBytes);
    if (head.isEmpty())
        return QStringLiteral("0000");
    return QString::fromLatin1(QCryptographicHash::hash(head, QCryptographicHash::Md5).toHex().left(4));
}

} // namespace

namespace FlightIDs {

const QSet<QString> &videoExtensions()
{
    static const QSet<QString> extensions{QStringLiteral("mp4"), QStringLiteral("mov")};
    return extensions;
}

FlightIdentity parseFileName(const QString &path)
{
    // The name without its last extension; a name that is all extension (".MP4") stays whole.
    const QFileInfo info(path);
    const QString stem = info.completeBaseName().isEmpty() ? info.fileName() : info.completeBaseName();
    if (const auto m = cameraForm().match(stem); m.hasMatch()) {
        const QString t = m.captured(1);
        return {t.left(8) + QLatin1Char('_') + t.mid(8) + QLatin1Char('_') + m.captured(2), localDate(t)};
    }
    if (const auto m = exportForm().match(stem); m.hasMatch()) {
        const QString n = m.captured(3).right(4).rightJustified(4, QLatin1Char('0'));
        return {m.captured(1) + QLatin1Char('_') + m.captured(2) + QLatin1Char('_') + n,
                localDate(m.captured(1) + m.captured(2))};
    }
    return {stem, std::nullopt};
}

FlightIdentity fallbackIdentity(const QString &path, const std::optional<QString> &creationTime)
{
    const auto date = utcDate(creationTime);
    const QString first = date ? date->toString(QStringLiteral("yyyyMMdd_HHmmss")) : QStringLiteral("00000000_000000");
    return {first + QLatin1Char('_') + digestHead(path), date};
}

} // namespace FlightIDs
