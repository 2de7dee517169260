#include "MediaProbe.h"

#include "ProcessRunner.h"
#include "StrictNumber.h"

#include <QFileInfo>
#include <QStringDecoder>

#include <nlohmann/json.hpp>

using json = nlohmann::json;

namespace MediaProbe {

QStringList formatArguments(const QString &file)
{
    // The absolute path keeps a file named like an option ("-i.mp4") a file.
    return {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-show_entries"),
            QStringLiteral("format=duration:format_tags"), QStringLiteral("-of"), QStringLiteral("json"),
            QFileInfo(file).absoluteFilePath()};
}

QStringList videoArguments(const QString &file)
{
    return {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-select_streams"), QStringLiteral("v:0"),
            QStringLiteral("-show_entries"), QStringLiteral("stream=width,height:stream_side_data=rotation"),
            QStringLiteral("-of"), QStringLiteral("csv=p=0"), QFileInfo(file).absoluteFilePath()};
}

MediaInfo readFormat(const QByteArray &bytes)
{
    MediaInfo info;
    const json root = json::parse(bytes.begin(), bytes.end(), nullptr, false);
    if (root.is_discarded() || !root.is_object())
        return info;
    const auto format = root.find("format");
    if (format == root.end() || !format->is_object())
        return info;
    if (const auto d = format->find("duration"); d != format->end() && d->is_string())
        info.duration = strictNumber(QString::fromStdString(d->get<std::string>()));
    const auto tags = format->find("tags");
    if (tags == format->end() || !tags->is_object())
        return info;
    if (const auto e = tags->find("encoder"); e != tags->end() && e->is_string()) {
        const QString encoder = QString::fromStdString(e->get<std::string>()).trimmed();
        if (!encoder.isEmpty())
            info.encoder = encoder;
    }
    if (const auto c = tags->find("creation_time"); c != tags->end() && c->is_string())
        info.creationTime = QString::fromStdString(c->get<std::string>());
    return info;
}

std::optional<FlightVideo> readVideo(const QByteArray &csv)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = QString(decoder.decode(csv)).trimmed();
    const QStringList lines = text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    const QStringList fields = (lines.isEmpty() ? QString() : lines.first()).split(QLatin1Char(','));
    if (fields.size() < 2)
        return std::nullopt;
    const auto width = strictInteger(fields[0]);
    const auto height = strictInteger(fields[1]);
    if (!width || !height || *width < 0 || *height < 0 || *width > INT32_MAX || *height > INT32_MAX)
        return std::nullopt;
    int w = static_cast<int>(*width);
    int h = static_cast<int>(*height);
    for (qsizetype i = 2; i < fields.size(); ++i) {
        const auto rotation = strictNumber(fields[i].trimmed());
        if (!rotation)
            continue;
        // A quarter turn displays tall; the sign of the turn does not matter.
        if (static_cast<long long>(*rotation) % 180 != 0)
            std::swap(w, h);
        break;
    }
    return FlightVideo{w, h, w < h};
}

QCoro::Task<MediaInfo> probeFormat(QString ffprobe, QString file, CancelToken *token)
{
    const auto result = co_await ProcessRunner::run(ffprobe, formatArguments(file), {}, token);
    if (!result.ok() || result->status != 0)
        co_return MediaInfo{};
    co_return readFormat(result->stdOut);
}

QCoro::Task<std::optional<FlightVideo>> probeVideo(QString ffprobe, QString file, CancelToken *token)
{
    const auto result = co_await ProcessRunner::run(ffprobe, videoArguments(file), {}, token);
    if (!result.ok() || result->status != 0)
        co_return std::nullopt;
    co_return readVideo(result->stdOut);
}

MediaInfo probeFormatBlocking(const QString &ffprobe, const QString &file)
{
    const auto result = ProcessRunner::runBlocking(ffprobe, formatArguments(file));
    return result.ok() && result->status == 0 ? readFormat(result->stdOut) : MediaInfo{};
}

std::optional<FlightVideo> probeVideoBlocking(const QString &ffprobe, const QString &file)
{
    const auto result = ProcessRunner::runBlocking(ffprobe, videoArguments(file));
    return result.ok() && result->status == 0 ? readVideo(result->stdOut) : std::nullopt;
}

} // namespace MediaProbe
