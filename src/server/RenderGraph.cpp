#include "RenderGraph.h"

#include <algorithm>
#include <cmath>

namespace {
constexpr int longestShortSide = 720;

int even(double v)
{
    return std::max(2, int(std::lround(v / 2)) * 2);
}

QString seconds(double s)
{
    return QString::number(s, 'f', 6);
}

QString escaped(const QString &text, const QString &special)
{
    QString out;
    for (const QChar c : text) {
        if (special.contains(c))
            out += QLatin1Char('\\');
        out += c;
    }
    return out;
}

/// One piece from its input: its frames at the video's rate (the last one held should the
/// source end early), cut to length.
QString pieceChain(std::size_t i, const CutPlan::Piece &piece, int fps)
{
    return QStringLiteral("[%1:v]setpts=PTS-STARTPTS,fps=%2,tpad=stop=-1:stop_mode=clone,trim=end_frame=%3")
        .arg(i)
        .arg(fps)
        .arg(piece.frames);
}

QString fitted(const RenderSetup::Frame &f)
{
    return QStringLiteral("scale=%1:%2:force_original_aspect_ratio=decrease,pad=%1:%2:(ow-iw)/2:(oh-ih)/2,setsar=1,"
                          "format=yuv420p")
        .arg(f.width)
        .arg(f.height);
}

QString filled(const RenderSetup::Frame &f)
{
    return QStringLiteral("scale=%1:%2:force_original_aspect_ratio=increase,crop=%1:%2,setsar=1,format=yuv420p")
        .arg(f.width)
        .arg(f.height);
}

/// The pieces labelled `<prefix><i>` joined by cross-fades into `[<out>]`.
QString joined(const CutPlan &plan, const QString &prefix, const QString &out)
{
    const auto &pieces = plan.pieces();
    if (pieces.size() == 1)
        return QStringLiteral("[%1%2]null[%3]").arg(prefix).arg(0).arg(out);
    if (plan.xfadeFrames() == 0) {
        QString inputs;
        for (std::size_t i = 0; i < pieces.size(); ++i)
            inputs += QStringLiteral("[%1%2]").arg(prefix).arg(i);
        return QStringLiteral("%1concat=n=%2:v=1:a=0[%3]").arg(inputs).arg(pieces.size()).arg(out);
    }
    QString graph;
    QString last = prefix + QLatin1Char('0');
    for (std::size_t i = 1; i < pieces.size(); ++i) {
        const QString next = i + 1 == pieces.size() ? out : QStringLiteral("%1x%2").arg(prefix).arg(i);
        graph += QStringLiteral("[%1][%2%3]xfade=transition=fade:duration=%4:offset=%5[%6];")
                     .arg(last, prefix)
                     .arg(i)
                     .arg(seconds(double(plan.xfadeFrames()) / plan.fps()), seconds(double(pieces[i].offset) / plan.fps()),
                          next);
        last = next;
    }
    graph.chop(1);
    return graph;
}

QStringList encoded(const QString &video, const std::optional<QString> &audio, const std::filesystem::path &file)
{
    QStringList args{QStringLiteral("-map"), QStringLiteral("[%1]").arg(video)};
    if (audio)
        args << QStringLiteral("-map") << QStringLiteral("[%1]").arg(*audio);
    args << QStringLiteral("-c:v") << QStringLiteral("libx264") << QStringLiteral("-preset") << QStringLiteral("veryfast")
         << QStringLiteral("-crf") << QStringLiteral("20") << QStringLiteral("-g") << QStringLiteral("60");
    if (audio)
        args << QStringLiteral("-c:a") << QStringLiteral("aac") << QStringLiteral("-b:a") << QStringLiteral("160k");
    args << QStringLiteral("-movflags") << QStringLiteral("+faststart") << QStringLiteral("-f") << QStringLiteral("mp4")
         << QStringLiteral("-y") << QString::fromStdString(file.string());
    return args;
}
} // namespace

void RenderSetup::frameFor(int shortSide, Frame &landscape, Frame &vertical)
{
    const int side = even(std::clamp(shortSide, 2, longestShortSide));
    const int longSide = even(side * 16.0 / 9.0);
    landscape = {longSide, side};
    vertical = {side, longSide};
}

namespace RenderGraph {

QString filterPath(const std::filesystem::path &file)
{
    // First for the option parser (which splits at ':'), then for the graph parser (which
    // splits at ',' ';' and brackets); both take '\' and quotes as their own.
    return escaped(escaped(QString::fromStdString(file.string()), QStringLiteral("\\':")),
                   QStringLiteral("\\'[],;"));
}

QString filter(const RenderSetup &setup)
{
    const CutPlan &plan = setup.plan;
    const bool wide = setup.landscapeFile.has_value();
    const bool tall = setup.verticalFile.has_value();
    QStringList parts;
    for (std::size_t i = 0; i < plan.pieces().size(); ++i) {
        QString chain = pieceChain(i, plan.pieces()[i], plan.fps());
        if (wide && tall)
            chain += QStringLiteral(",split=2[sw%1][st%1];[sw%1]%2[w%1];[st%1]%3[t%1]")
                         .arg(i)
                         .arg(fitted(setup.landscape), filled(setup.vertical));
        else if (wide)
            chain += QStringLiteral(",%1[w%2]").arg(fitted(setup.landscape)).arg(i);
        else
            chain += QStringLiteral(",%1[t%2]").arg(filled(setup.vertical)).arg(i);
        parts << chain;
    }
    if (wide) {
        parts << joined(plan, QStringLiteral("w"), setup.hud ? QStringLiteral("wj") : QStringLiteral("wide"));
        if (setup.hud)
            parts << QStringLiteral("[wj]ass=filename=%1[wide]").arg(filterPath(*setup.hud));
    }
    if (tall)
        parts << joined(plan, QStringLiteral("t"), QStringLiteral("tall"));
    if (setup.music) {
        const double length = plan.seconds();
        const double fadeIn = std::min(1.0, length / 4), fadeOut = std::min(2.0, length / 4);
        QString audio = QStringLiteral("[%1:a]atrim=duration=%2,asetpts=PTS-STARTPTS,afade=t=in:d=%3,afade=t=out:st=%4:d=%5")
                            .arg(plan.pieces().size())
                            .arg(seconds(length), seconds(fadeIn), seconds(length - fadeOut), seconds(fadeOut));
        audio += wide && tall ? QStringLiteral(",asplit=2[awide][atall]") : wide ? QStringLiteral("[awide]")
                                                                                 : QStringLiteral("[atall]");
        parts << audio;
    }
    return parts.join(QLatin1Char(';'));
}

QStringList arguments(const RenderSetup &setup)
{
    const CutPlan &plan = setup.plan;
    QStringList args{QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-nostats"),
                     QStringLiteral("-progress"), QStringLiteral("pipe:1")};
    for (std::size_t i = 0; i < plan.pieces().size(); ++i) {
        const auto &piece = plan.pieces()[i];
        // Reading a second past the piece leaves the trim, not the demuxer, to decide its end.
        args << QStringLiteral("-ss") << seconds(piece.start) << QStringLiteral("-t")
             << seconds(double(piece.frames) / plan.fps() + 1.0) << QStringLiteral("-i")
             << QString::fromStdString(setup.sources.at(i).string());
    }
    if (setup.music)
        args << QStringLiteral("-stream_loop") << QStringLiteral("-1") << QStringLiteral("-i")
             << QString::fromStdString(setup.music->string());
    args << QStringLiteral("-filter_complex") << filter(setup);
    if (setup.landscapeFile)
        args << encoded(QStringLiteral("wide"), setup.music ? std::optional(QStringLiteral("awide")) : std::nullopt,
                        *setup.landscapeFile);
    if (setup.verticalFile)
        args << encoded(QStringLiteral("tall"), setup.music ? std::optional(QStringLiteral("atall")) : std::nullopt,
                        *setup.verticalFile);
    return args;
}

} // namespace RenderGraph
