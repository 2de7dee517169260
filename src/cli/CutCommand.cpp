#include "CliCommand.h"
#include "ServerArguments.h"
#include "StopSignals.h"

#include <APIClient.h>
#include <CutFlowModel.h>

#include <QFileInfo>

#include <algorithm>
#include <variant>

#include <QCoroSignal>

namespace {

struct Options {
    QString server;
    std::optional<QString> authHeader;
    QString story;
    QStringList originals;
    QString out;
    bool fast = false;
    bool force = false;
    bool stitch = false;
    bool vertical = false;
    QString music = QStringLiteral("random");
};

std::optional<QString> parse(QStringList args, Options &o)
{
    const ServerArguments server = ServerArguments::take(args);
    o.server = server.server;
    o.authHeader = server.authHeader;
    bool musicGiven = false;
    while (!args.isEmpty()) {
        const QString arg = args.takeFirst();
        auto value = [&]() -> std::optional<QString> { return args.isEmpty() ? std::nullopt : std::optional(args.takeFirst()); };
        std::optional<QString> v;
        if (arg == QLatin1String("--story") && (v = value()))
            o.story = *v;
        else if (arg == QLatin1String("--originals") && (v = value()))
            o.originals << *v;
        else if (arg == QLatin1String("--out") && (v = value()))
            o.out = *v;
        else if (arg == QLatin1String("--music") && (v = value()))
            o.music = *v, musicGiven = true;
        else if (arg == QLatin1String("--fast"))
            o.fast = true;
        else if (arg == QLatin1String("--force"))
            o.force = true;
        else if (arg == QLatin1String("--stitch"))
            o.stitch = true;
        else if (arg == QLatin1String("--vertical"))
            o.vertical = true;
        else
            return QStringLiteral("aeroloom-cli cut: unknown or incomplete option “%1”").arg(arg);
    }
    if (o.server.isEmpty())
        return QStringLiteral("aeroloom-cli cut: --server URL is needed");
    if (o.story.isEmpty())
        return QStringLiteral("aeroloom-cli cut: --story ID or TITLE is needed");
    if (o.originals.isEmpty())
        return QStringLiteral("aeroloom-cli cut: --originals DIR is needed");
    if (o.out.isEmpty())
        return QStringLiteral("aeroloom-cli cut: --out DIR is needed");
    if ((o.vertical || musicGiven) && !o.stitch)
        return QStringLiteral("aeroloom-cli cut: --vertical and --music go with --stitch");
    for (const QString &folder : std::as_const(o.originals)) {
        if (!QFileInfo(folder).isDir())
            return QStringLiteral("aeroloom-cli cut: %1: no such folder").arg(folder);
    }
    return std::nullopt;
}

/// The story named by id, else by its exact title; an error's words when none or several match.
std::variant<ProjectSummary, QString> findStory(const QList<ProjectSummary> &reels, const QString &wanted)
{
    for (const ProjectSummary &reel : reels) {
        if (reel.id == wanted)
            return reel;
    }
    QList<ProjectSummary> titled;
    std::copy_if(reels.cbegin(), reels.cend(), std::back_inserter(titled),
                 [&](const ProjectSummary &r) { return r.title == wanted; });
    if (titled.size() == 1)
        return titled.first();
    if (titled.isEmpty())
        return QStringLiteral("aeroloom-cli cut: there is no story “%1” in the library").arg(wanted);
    return QStringLiteral("aeroloom-cli cut: %1 stories are called “%2”; name one by its id").arg(titled.size()).arg(wanted);
}

/// One line per change of a row's words ("<file><TAB><words>"), and of the story's.
class Reporter
{
public:
    explicit Reporter(const CutFlowModel &model) : m_model(model) {}

    void rows()
    {
        const auto &rows = m_model.rows();
        m_shown.resize(rows.size());
        for (qsizetype i = 0; i < rows.size(); ++i) {
            const QString line = QFileInfo(rows[i].outURL).fileName() + QLatin1Char('\t') + rows[i].status.words();
            if (m_shown[i] != line) {
                m_shown[i] = line;
                CliIO::out((line + QLatin1Char('\n')).toUtf8());
            }
        }
    }
    void story()
    {
        const StitchState &stitch = m_model.stitch();
        QString words = stitch.kind == StitchState::Kind::done ? QStringLiteral("Done") : stitch.words();
        const QString line = QFileInfo(m_model.storyURL()).fileName() + QLatin1Char('\t') + words;
        if (!words.isEmpty() && line != m_story) {
            m_story = line;
            CliIO::out((line + QLatin1Char('\n')).toUtf8());
        }
    }

private:
    const CutFlowModel &m_model;
    QStringList m_shown;
    QString m_story;
};

QCoro::Task<int> runCut(QStringList args)
{
    Options o;
    if (const auto problem = parse(args, o))
        co_return CliIO::fail(*problem);

    CutFlowModel model(std::make_shared<APIClient>(o.server, o.authHeader), nullptr);
    co_await model.load();
    if (!model.error().isEmpty())
        co_return CliIO::fail(model.error());
    const auto story = findStory(model.reels(), o.story);
    if (const auto *problem = std::get_if<QString>(&story))
        co_return CliIO::fail(*problem);

    model.chooseOutputRoot(QFileInfo(o.out).absoluteFilePath());
    model.setFast(o.fast);
    model.setForce(o.force);
    model.setMakeStory(o.stitch);
    model.setStoryVertical(o.vertical);
    model.setTrack(o.music);
    const ProjectSummary chosen = std::get<ProjectSummary>(story);
    co_await model.chooseReel(chosen);
    if (!model.error().isEmpty())
        co_return CliIO::fail(model.error());
    for (qsizetype i = 0; i < o.originals.size(); ++i) {
        const QString folder = QFileInfo(o.originals[i]).absoluteFilePath();
        co_await model.chooseOriginals(folder, i > 0);
    }

    Reporter report(model);
    report.rows();
    QObject::connect(model.rowsModel(), &CutRowsModel::statusesChanged, &model, [&] { report.rows(); });
    QObject::connect(&model, &CutFlowModel::stitchChanged, &model, [&] { report.story(); });

    // Ctrl-C stops ffmpeg the way the window's Stop does, so no half-cut clip stays behind.
    StopSignals stopSignals;
    bool interrupted = false;
    QObject::connect(&stopSignals, &StopSignals::stopRequested, &model, [&] {
        interrupted = true;
        model.stop();
    });
    model.start();
    // With nothing to do the batch is over before start() returns.
    if (model.running())
        co_await qCoro(&model, &CutFlowModel::finished);
    if (interrupted) {
        CliIO::err(QStringLiteral("aeroloom-cli cut: stopped"));
        co_return 130;  // as a shell reports a run ended by Ctrl-C
    }

    const bool allCut = std::all_of(model.rows().cbegin(), model.rows().cend(), [](const CutPlanRow &row) {
        return row.status.kind == CutPlanRow::Status::Kind::done || row.status.kind == CutPlanRow::Status::Kind::existing;
    });
    const bool storyMade = !o.stitch || model.stitch().kind == StitchState::Kind::done;
    CliIO::err(model.doneText());
    co_return allCut && storyMade ? 0 : 1;
}

} // namespace

CliCommand cutCommand()
{
    return {QStringLiteral("cut"), QStringLiteral("cut a story's clips from the originals on disk"),
            QStringLiteral(
                "usage: aeroloom-cli cut --story ID|TITLE --originals DIR [--originals DIR...] --out DIR\n"
                "                        [--fast] [--force] [--stitch [--vertical] [--music random|none|NAME]]\n"
                "                        --server URL [--token T | --user U --password P]\n\n"
                "Cuts the clips of a story from the full-resolution originals, found by file name\n"
                "in the folders given (the first one first), into DIR/<story>/, as the cut window\n"
                "does. Prints a line \"<clip><TAB><status>\" for each change of a clip's status.\n"
                "Exits 0 only when every clip is cut (now or before) and, with --stitch, the story\n"
                "video is made.\n\n"
                "  --fast      copy the streams from the key frame before each start (±1–2 s)\n"
                "              instead of re-encoding from the exact frame\n"
                "  --force     cut again clips that already exist\n"
                "  --stitch    join the clips into DIR/<story>/<story>_story.mp4\n"
                "  --vertical  a 9:16 story, the middle of every shot\n"
                "  --music     a music bed: random (default), none, or a track of the library\n"),
            runCut};
}
