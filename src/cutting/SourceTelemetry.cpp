#include "SourceTelemetry.h"

#include <CardScanner.h>
#include <ClipTelemetry.h>
#include <FlightIDs.h>
#include <SrtReader.h>

#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>

#include <cmath>

namespace {

/// Sidecars of the longest flights stay far below this; anything bigger is not a sidecar.
constexpr qint64 sidecarLimit = 256LL * 1024 * 1024;

std::optional<QString> sidecarText(const QString &path)
{
    QFile file(path);
    if (file.size() > sidecarLimit || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder.decode(file.readAll());
    if (decoder.hasError() || file.error() != QFileDevice::NoError)
        return std::nullopt;
    return text;
}

} // namespace

std::vector<TelemetrySample> SourceTelemetry::span(double start, double end) const
{
    // In whole milliseconds, as the sidecar's cue times are written.
    const qint64 from = std::llround(start * 1000);
    const qint64 to = std::llround(end * 1000);
    std::vector<TelemetrySample> out;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const qint64 at = std::llround(samples[i].t * 1000);
        const bool next = i + 1 < samples.size();
        // The sample in effect when the clip begins stands at 0, as its cue does in the sidecar.
        const bool inEffect = at < from && next && std::llround(samples[i + 1].t * 1000) > from;
        if ((at < from && !inEffect) || at >= to)
            continue;
        TelemetrySample shifted = samples[i];
        shifted.t = static_cast<double>(std::max(at, from) - from) / 1000;
        out.push_back(std::move(shifted));
    }
    return out;
}

QCoro::Task<SourceTelemetry> SourceTelemetryCache::read(std::shared_ptr<SourceTelemetryCache> cache, QString original,
                                                        CancelToken *token)
{
    if (const auto known = cache->m_known.constFind(original); known != cache->m_known.cend())
        co_return SourceTelemetry(*known);

    SourceTelemetry telemetry;
    telemetry.started = FlightIDs::parseFileName(original).date;
    const QString name = QFileInfo(original).fileName();
    if (const auto sidecar = CardScanner::sidecar(original)) {
        telemetry.sidecarText = sidecarText(*sidecar);
        if (telemetry.sidecarText) {
            // Our reader takes LF lines only; a sidecar written with CR LF is the same text.
            QString lines = *telemetry.sidecarText;
            lines.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
            if (auto parsed = TelemetryParser::parseSRT(lines, std::nullopt, std::nullopt, name); parsed.ok())
                telemetry.samples = std::move(parsed.value().track);
        }
    } else {
        const std::optional<QString> noSidecar;
        auto embedded = co_await ClipTelemetry::read(original, noSidecar, token);
        if (embedded.ok())
            telemetry.samples = std::move(embedded.value().track);
    }
    // A stopped read says nothing about the file: it is asked again next time.
    if (!token || !token->isCancelled())
        cache->m_known.insert(original, telemetry);
    co_return telemetry;
}
