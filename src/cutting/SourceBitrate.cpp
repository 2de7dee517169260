#include "SourceBitrate.h"

#include <ProcessRunner.h>
#include <StrictNumber.h>

#include <QFileInfo>
#include <QStringDecoder>

#include <algorithm>
#include <cmath>

namespace SourceBitrate {

QStringList arguments(const QString &source)
{
    return {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-show_entries"), QStringLiteral("format=bit_rate"),
            QStringLiteral("-of"), QStringLiteral("csv=p=0"), QFileInfo(source).absoluteFilePath()};
}

QString fromOutput(const QByteArray &output)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = QString(decoder.decode(output)).trimmed();
    if (decoder.hasError())
        return fallback;
    // "N/A" when the container doesn't know; strictNumber refuses it and any other words.
    const auto rate = strictNumber(text);
    if (!rate || !std::isfinite(*rate))
        return fallback;
    const double clamped = std::clamp(*rate, floorBitsPerSecond, ceilingBitsPerSecond);
    return QString::number(static_cast<qint64>(clamped));
}

QCoro::Task<QString> measure(std::optional<QString> ffprobe, QString source, CancelToken *token)
{
    if (!ffprobe)
        co_return fallback;
    const auto result = co_await ProcessRunner::run(*ffprobe, arguments(source), {}, token);
    if (!result.ok() || result->status != 0)
        co_return fallback;
    co_return fromOutput(result->stdOut);
}

} // namespace SourceBitrate
