#include "CutPlanner.h"

#include <QDir>
#include <QFileInfo>

namespace CutPlanner {

QString safeComponent(QString name, const QString &fallback)
{
    name.replace(QLatin1Char('/'), QLatin1Char('_')).replace(QLatin1Char('\\'), QLatin1Char('_'));
    name.remove(QChar(0));
    if (name.trimmed().isEmpty() || name == QLatin1String(".") || name == QLatin1String(".."))
        return fallback;
    return name;
}

QString reelBase(const std::optional<EDL> &edl)
{
    const QString reel = QStringLiteral("reel");
    if (!edl)
        return reel;
    if (edl->slug && !edl->slug->isEmpty())
        return safeComponent(*edl->slug, reel);
    return safeComponent(edl->id, reel);
}

QString outputName(const EDL &edl, const EDLItem &item)
{
    const QString base = (edl.slug && !edl.slug->isEmpty()) ? *edl.slug : edl.id;
    const QString planned = base + QString::asprintf("_%02d.mp4", item.seq);
    return safeComponent(item.output.isEmpty() ? planned : item.output, safeComponent(planned, QStringLiteral("clip.mp4")));
}

bool hasContent(const QString &path)
{
    const QFileInfo info(path);
    return info.isFile() && info.size() > 0;
}

CutPlanRow::Status statusFor(const EDLItem &item, const std::optional<QString> &source, const QString &outURL,
                             bool force)
{
    using Kind = CutPlanRow::Status::Kind;
    if (!item.start || !item.end || *item.end - *item.start <= 0)
        return CutPlanRow::Status::of(Kind::zeroDuration);
    if (!source)
        return CutPlanRow::Status::of(Kind::missingSource);
    if (!force && hasContent(outURL))
        return CutPlanRow::Status::of(Kind::existing);
    return CutPlanRow::Status::of(Kind::pending);
}

namespace {
std::optional<QString> lookUp(const QHash<QString, QString> &index, const std::optional<QString> &source)
{
    if (!source)
        return std::nullopt;
    const auto found = index.constFind(source->toLower());
    return found == index.cend() ? std::nullopt : std::optional(*found);
}
} // namespace

QList<CutPlanRow> plan(const EDL &edl, const QHash<QString, QString> &index, const QString &folder, bool force)
{
    QList<CutPlanRow> rows;
    rows.reserve(edl.items.size());
    const QDir dir(folder);
    for (const EDLItem &item : edl.items) {
        CutPlanRow row;
        row.item = item;
        row.outURL = dir.filePath(outputName(edl, item));
        row.sourceURL = lookUp(index, item.source);
        row.status = statusFor(item, row.sourceURL, row.outURL, force);
        rows.append(std::move(row));
    }
    return rows;
}

void refresh(QList<CutPlanRow> &rows, const QHash<QString, QString> &index, bool force)
{
    for (CutPlanRow &row : rows) {
        if (row.status.kind != CutPlanRow::Status::Kind::missingSource)
            continue;
        const auto source = lookUp(index, row.item.source);
        if (!source)
            continue;
        row.sourceURL = source;
        // Only the two last rules can apply: the times were fine, or the row would be zero-length.
        row.status = CutPlanRow::Status::of(!force && hasContent(row.outURL) ? CutPlanRow::Status::Kind::existing
                                                                             : CutPlanRow::Status::Kind::pending);
    }
}

} // namespace CutPlanner
