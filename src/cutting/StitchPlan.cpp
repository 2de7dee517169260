#include "StitchPlan.h"

#include <StrictNumber.h>

#include <QFileInfo>

#include <algorithm>
#include <cmath>

namespace StitchPlan {

namespace {
int evenAtLeastTwo(int value)
{
    return std::max(2, value) / 2 * 2;
}

QString trimmedOutput(const QByteArray &output)
{
    return QString::fromUtf8(output).trimmed().remove(QLatin1Char(','));
}
} // namespace

Size outputSize(const std::optional<FlightVideo> &probed, bool vertical)
{
    Size size = probed ? Size{evenAtLeastTwo(probed->w), evenAtLeastTwo(probed->h)} : Size{1920, 1080};
    // Wider than 9:16: keep the height, take the middle. In integers, so 3840 × 2160 gives 1214.
    if (vertical && static_cast<qint64>(size.h) * 9 < static_cast<qint64>(size.w) * 16)
        size.w = evenAtLeastTwo(static_cast<int>(size.h * 9 * 0.0625));
    return size;
}

QString frameRate(const QByteArray &output)
{
    const QString text = trimmedOutput(output);
    QList<double> parts;
    for (const QString &part : text.split(QLatin1Char('/'), Qt::SkipEmptyParts)) {
        if (const auto n = strictNumber(part))
            parts << *n;
    }
    if (parts.size() == 2 && parts[0] > 0 && parts[1] > 0)
        return text;
    return QStringLiteral("30");
}

double duration(const QByteArray &output)
{
    return strictNumber(trimmedOutput(output)).value_or(0);
}

Timing timing(const QList<double> &durations, double xfade, double fade)
{
    Timing t;
    const qsizetype n = durations.size();
    t.xfade = n == 1 ? 0 : xfade;
    double sum = 0;
    for (qsizetype k = 0; k < n; ++k) {
        sum += durations[k];
        if (k < n - 1)
            t.offsets << sum - t.xfade * static_cast<double>(k + 1);
    }
    t.total = sum - t.xfade * static_cast<double>(std::max<qsizetype>(0, n - 1));
    t.videoFadeOutStart = std::max(0.0, t.total - fade);
    t.audioFadeLength = std::min(t.total / 3, 2.5);
    t.audioFadeOutStart = t.total - t.audioFadeLength;
    return t;
}

QString filterGraph(const Graph &g)
{
    QStringList parts;
    const QString w = QString::number(g.size.w);
    const QString h = QString::number(g.size.h);
    const QString fit = g.vertical
        ? QStringLiteral("scale=%1:%2:force_original_aspect_ratio=increase:flags=lanczos,crop=%1:%2").arg(w, h)
        : QStringLiteral("scale=%1:%2:force_original_aspect_ratio=decrease,pad=%1:%2:(ow-iw)/2:(oh-ih)/2").arg(w, h);
    for (int i = 0; i < g.clips; ++i) {
        parts << QStringLiteral("[%1:v]").arg(i) + fit + QStringLiteral(",fps=") + g.rate
                     + QStringLiteral(",settb=AVTB,setsar=1,format=yuv420p[v%1]").arg(i);
    }
    for (int k = 1; k < g.clips; ++k) {
        const QString previous = k == 1 ? QStringLiteral("v0") : QStringLiteral("x%1").arg(k - 1);
        parts << QStringLiteral("[%1][v%2]xfade=transition=fade:").arg(previous).arg(k)
                     + QString::asprintf("duration=%.3f:offset=%.3f", g.timing.xfade, g.timing.offsets.value(k - 1))
                     + QStringLiteral("[x%1]").arg(k);
    }
    const QString last = g.clips <= 1 ? QStringLiteral("v0") : QStringLiteral("x%1").arg(g.clips - 1);
    parts << QStringLiteral("[%1]").arg(last) + QString::asprintf("fade=t=in:st=0:d=%.2f,", g.fade)
                 + QString::asprintf("fade=t=out:st=%.3f:d=%.2f", g.timing.videoFadeOutStart, g.fade) + g.outputSuffix
                 + QStringLiteral("[vout]");
    if (g.bed) {
        parts << QStringLiteral("[%1:a]").arg(g.clips)
                     + QString::asprintf("atrim=0:%.3f,asetpts=PTS-STARTPTS,", g.timing.total)
                     + QStringLiteral("afade=t=in:st=0:d=0.75,")
                     + QString::asprintf("afade=t=out:st=%.3f:d=%.2f", g.timing.audioFadeOutStart,
                                         g.timing.audioFadeLength)
                     + QStringLiteral("[aout]");
    }
    return parts.join(QLatin1Char(';'));
}

QStringList arguments(const Command &c)
{
    QStringList args{QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-y"),
                     QStringLiteral("-nostats"), QStringLiteral("-progress"), QStringLiteral("pipe:1")};
    args << c.beforeInputs;
    for (const QString &clip : c.clips)
        args << QStringLiteral("-i") << QFileInfo(clip).absoluteFilePath();
    if (c.bed) {
        if (c.loopBed)
            args << QStringLiteral("-stream_loop") << QStringLiteral("-1");
        args << QStringLiteral("-i") << QFileInfo(*c.bed).absoluteFilePath();
    }
    args << QStringLiteral("-filter_complex") << c.graph << QStringLiteral("-map") << QStringLiteral("[vout]");
    if (c.bed) {
        args << QStringLiteral("-map") << QStringLiteral("[aout]") << QStringLiteral("-c:a") << QStringLiteral("aac")
             << QStringLiteral("-b:a") << QStringLiteral("192k");
    }
    args << c.videoCodec << QStringLiteral("-movflags") << QStringLiteral("+faststart")
         << QFileInfo(c.output).absoluteFilePath();
    return args;
}

} // namespace StitchPlan
