#include "SrtRetimer.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace SrtRetimer {

namespace {

const QRegularExpression timing(QStringLiteral(
    "^\\s*(\\d+):(\\d{2}):(\\d{2})[,.](\\d{1,3})\\s*-->\\s*(\\d+):(\\d{2}):(\\d{2})[,.](\\d{1,3})"));
const QRegularExpression number(QStringLiteral("^\\s*\\d+\\s*$"));

struct Cue {
    qint64 start = 0;
    qint64 end = 0;
    QStringList body;
};

// The fraction is a plain count of milliseconds, as the telemetry reader takes it.
qint64 millis(const QRegularExpressionMatch &m, int first)
{
    return m.capturedView(first).toLongLong() * 3'600'000 + m.capturedView(first + 1).toLongLong() * 60'000
           + m.capturedView(first + 2).toLongLong() * 1000 + m.capturedView(first + 3).toLongLong();
}

std::vector<Cue> cues(const QStringList &lines)
{
    std::vector<Cue> out;
    for (const QString &line : lines) {
        const auto m = timing.match(line);
        if (m.hasMatch()) {
            // The line before a timing line is the cue's number; it is written anew.
            if (!out.empty() && !out.back().body.isEmpty() && number.match(out.back().body.last()).hasMatch())
                out.back().body.removeLast();
            out.push_back({millis(m, 1), millis(m, 5), {}});
        } else if (!out.empty()) {
            out.back().body.append(line);
        }
    }
    for (Cue &cue : out) {
        while (!cue.body.isEmpty() && cue.body.last().trimmed().isEmpty())
            cue.body.removeLast();
    }
    return out;
}

QString write(const std::vector<Cue> &cues, const QString &newline)
{
    QString out;
    int n = 0;
    for (const Cue &cue : cues) {
        out += QString::number(++n) + newline;
        out += stamp(cue.start) + QStringLiteral(" --> ") + stamp(cue.end) + newline;
        for (const QString &line : cue.body)
            out += line + newline;
        out += newline;
    }
    return out;
}

QString bracket(const char *name, const std::optional<double> &value, int decimals)
{
    if (!value)
        return {};
    return QStringLiteral("[%1: %2] ").arg(QLatin1String(name), QString::number(*value, 'f', decimals));
}

} // namespace

QString stamp(qint64 ms)
{
    ms = std::max<qint64>(0, ms);
    return QString::asprintf("%02lld:%02lld:%02lld,%03lld", ms / 3'600'000, ms / 60'000 % 60, ms / 1000 % 60, ms % 1000);
}

QString retime(const QString &text, double start, double end)
{
    const QString newline = text.contains(QStringLiteral("\r\n")) ? QStringLiteral("\r\n") : QStringLiteral("\n");
    QString plain = text;
    plain.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    const qint64 from = std::llround(start * 1000);
    const qint64 to = std::llround(end * 1000);

    std::vector<Cue> kept;
    for (Cue &cue : cues(plain.split(QLatin1Char('\n')))) {
        // The cue on screen when the clip begins is kept too: the first frame has its telemetry.
        const qint64 end = std::max(cue.end, cue.start + 1);
        if (end <= from || cue.start >= to)
            continue;
        cue.start = std::max(cue.start, from) - from;
        cue.end = std::min(end, to) - from;
        kept.push_back(std::move(cue));
    }
    return write(kept, newline);
}

QString fromSamples(const std::vector<TelemetrySample> &samples, double duration)
{
    std::vector<Cue> out;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const TelemetrySample &s = samples[i];
        const double next = i + 1 < samples.size() ? samples[i + 1].t : std::max(duration, s.t);
        QString fields = bracket("iso", s.iso, 0);
        if (s.shutter)
            fields += QStringLiteral("[shutter: %1] ").arg(s.shutter->isText() ? s.shutter->toText()
                                                                                : QString::number(*s.shutter->toNumber()));
        fields += bracket("fnum", s.fnum, 1);
        fields += QStringLiteral("[latitude: %1] [longitude: %2] ")
                      .arg(QString::number(s.lat, 'f', 6), QString::number(s.lon, 'f', 6));
        if (s.relAlt && s.absAlt) {
            fields += QStringLiteral("[rel_alt: %1 abs_alt: %2] ")
                          .arg(QString::number(*s.relAlt, 'f', 3), QString::number(*s.absAlt, 'f', 3));
        }
        if (s.yaw && s.pitch && s.roll) {
            fields += QStringLiteral("[drone_yaw: %1 drone_pitch: %2 drone_roll: %3] ")
                          .arg(QString::number(*s.yaw, 'f', 1), QString::number(*s.pitch, 'f', 1),
                               QString::number(*s.roll, 'f', 1));
        }
        if (s.gimbalYaw && s.gimbalPitch) {
            fields += QStringLiteral("[gb_yaw: %1 gb_pitch: %2] ")
                          .arg(QString::number(*s.gimbalYaw, 'f', 1), QString::number(*s.gimbalPitch, 'f', 1));
        }
        out.push_back({std::llround(s.t * 1000), std::llround(next * 1000),
                       {QStringLiteral("<font size=\"28\">") + fields.trimmed() + QStringLiteral(" </font>")}});
    }
    return write(out, QStringLiteral("\n"));
}

} // namespace SrtRetimer
