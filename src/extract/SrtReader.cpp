#include "SrtReader.h"

#include "FlightSummary.h"
#include "LineBreaks.h"
#include "StrictNumber.h"
#include "TelemetryError.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStringDecoder>

namespace {

const QRegularExpression cuePattern(QStringLiteral("^(\\d+):(\\d{2}):(\\d{2})[,.](\\d{1,3})\\s*-->"));
// The two brackets of a position may stand on different lines of one cue.
const QRegularExpression positionPattern(QStringLiteral("\\[latitude:\\s*(-?[\\d.]+)\\].*?\\[longitude:\\s*(-?[\\d.]+)\\]"),
                                         QRegularExpression::DotMatchesEverythingOption);
const QRegularExpression altitudePattern(QStringLiteral("\\[rel_alt:\\s*(-?[\\d.]+)\\s+abs_alt:\\s*(-?[\\d.]+)\\]"));
const QRegularExpression isoPattern(QStringLiteral("\\[iso:\\s*([\\d.]+)\\]"));
const QRegularExpression shutterPattern(QStringLiteral("\\[shutter:\\s*([\\d/.]+)\\]"));
const QRegularExpression fnumPattern(QStringLiteral("\\[fnum:\\s*([\\d.]+)\\]"));

std::optional<double> group(const QRegularExpressionMatch &m, int n)
{
    return m.hasMatch() ? strictNumber(m.capturedView(n)) : std::nullopt;
}

} // namespace

void SrtReader::addLine(const QString &line)
{
    const auto cue = cuePattern.match(trimBlanks(line));
    if (cue.hasMatch()) {
        const auto h = strictInteger(cue.capturedView(1));
        const auto m = strictInteger(cue.capturedView(2));
        const auto s = strictInteger(cue.capturedView(3));
        const auto f = strictInteger(cue.capturedView(4));
        if (h && m && s && f) {
            closeBlock();
            // The fraction is read as a plain number: ",5" is 5 milliseconds.
            m_time = static_cast<double>(*h) * 3600 + static_cast<double>(*m) * 60 + static_cast<double>(*s) +
                     static_cast<double>(*f) / 1000;
            m_lines.clear();
            return;
        }
    }
    if (m_time)
        m_lines.append(line);
}

void SrtReader::closeBlock()
{
    if (!m_time || m_lines.isEmpty())
        return;
    const QString block = m_lines.join(QLatin1Char('\n'));
    m_lines.clear();
    const auto position = positionPattern.match(block);
    const auto lat = group(position, 1);
    const auto lon = group(position, 2);
    if (!lat || !lon)
        return;
    if (*lat == 0.0 && *lon == 0.0) {
        ++m_zeroFixes;
        return;
    }
    TelemetrySample s;
    s.t = *m_time;
    s.lat = *lat;
    s.lon = *lon;
    const auto altitudes = altitudePattern.match(block);
    s.relAlt = group(altitudes, 1);
    s.absAlt = group(altitudes, 2);
    s.iso = group(isoPattern.match(block), 1);
    s.fnum = group(fnumPattern.match(block), 1);
    if (const auto shutter = shutterPattern.match(block); shutter.hasMatch()) {
        QString text = shutter.captured(1);
        if (text.endsWith(QStringLiteral(".0")))
            text.chop(2);
        s.shutter = RawJSON::text(text);
    }
    m_samples.push_back(std::move(s));
}

Result<FlightData> SrtReader::finish(const std::optional<QString> &model, std::optional<double> duration,
                                     const QString &source)
{
    closeBlock();
    m_time.reset();
    if (m_samples.empty())
        return m_zeroFixes > 0 ? TelemetryError::noGPSFix(source, m_zeroFixes) : TelemetryError::noTelemetry(source);
    QString name = model ? trimBlanks(*model) : QString();
    if (name.isEmpty())
        name = QStringLiteral("DJI");
    return FlightSummary::makeFlightData(std::move(m_samples), name, duration, source, true);
}

namespace TelemetryParser {

Result<FlightData> parseSRT(const QString &text, const std::optional<QString> &model, std::optional<double> duration,
                            const QString &source)
{
    SrtReader reader;
    QString buffer = text;
    qsizetype scanned = 0;
    cutLines(buffer, scanned, [&](const QString &line) { reader.addLine(line); });
    reader.addLine(buffer);
    return reader.finish(model, duration, source);
}

Result<FlightData> parseSRTFile(const QString &path, const std::optional<QString> &model,
                                std::optional<double> duration, const QString &source)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return Failure{QStringLiteral("read"), 1,
                       QStringLiteral("Could not read %1: %2").arg(QFileInfo(path).fileName(), file.errorString())};
    }
    SrtReader reader;
    QStringDecoder decoder(QStringDecoder::Utf8);
    QString buffer;
    qsizetype scanned = 0;
    while (!file.atEnd()) {
        const QByteArray chunk = file.read(1 << 20);
        if (chunk.isEmpty())
            break;
        buffer.append(decoder.decode(chunk));
        if (decoder.hasError())
            break;
        // The unfinished tail stays in the buffer, so a carriage return at the end of one chunk
        // still pairs with a line feed at the start of the next.
        cutLines(buffer, scanned, [&](const QString &line) { reader.addLine(line); });
    }
    buffer.append(decoder.decode(QByteArray()));
    if (decoder.hasError() || file.error() != QFileDevice::NoError) {
        return Failure{QStringLiteral("read"), 2,
                       QStringLiteral("Could not read %1: it is not UTF-8 text").arg(QFileInfo(path).fileName())};
    }
    reader.addLine(buffer);
    return reader.finish(model, duration, source);
}

} // namespace TelemetryParser
