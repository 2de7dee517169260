// The batch, the story stitch around it, and revealing what they made.
#include "CutFlowModel.h"

#include "ClipCutter.h"
#include "ClipSidecars.h"
#include "StoryStitcher.h"

#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QRandomGenerator>
#include <QUuid>

namespace {
constexpr double storyCrossfade = 0.5;
constexpr double storyFade = 0.75;

bool isCut(const CutPlanRow &row)
{
    return row.status.kind == CutPlanRow::Status::Kind::existing || row.status.kind == CutPlanRow::Status::Kind::done;
}
} // namespace

void CutFlowModel::start()
{
    if (m_running)
        return;
    setRunning(true);
    setStitch({});
    setBatchRan(true);
    m_worker = std::make_shared<CancelToken>();
    (void)runWorker(rows(), m_fast, m_force, m_worker);
}

void CutFlowModel::stop()
{
    if (m_worker)
        m_worker->cancel();
    m_worker.reset();
    setRunning(false);
}

QCoro::Task<> CutFlowModel::runWorker(QList<CutPlanRow> rows, bool fast, bool force, std::shared_ptr<CancelToken> token)
{
    QPointer<CutFlowModel> self(this);
    auto telemetry = std::make_shared<SourceTelemetryCache>();
    // Rows are addressed by index: a plan replaced meanwhile ignores the reports.
    auto setStatus = [self](int row, const CutPlanRow::Status &status) {
        if (self)
            self->setRowStatus(row, status);
    };
    co_await ClipCutter::cutRows(rows, fast, force, setStatus, token, telemetry);
    if (!self)
        co_return;
    if (m_makeStory && !token->isCancelled()) {
        co_await stitch(token, telemetry);
        if (!self)
            co_return;
    }
    // A stopped batch already gave the window back; a newer one may be running now.
    if (m_worker == token) {
        m_worker.reset();
        setRunning(false);
    }
    Q_EMIT finished();
}

std::optional<QString> CutFlowModel::chosenTrack() const
{
    if (m_track == QLatin1String("none"))
        return std::nullopt;
    if (m_track == QLatin1String("random")) {
        if (m_tracks.isEmpty())
            return std::nullopt;
        return m_tracks[QRandomGenerator::global()->bounded(static_cast<int>(m_tracks.size()))];
    }
    return m_track;
}

QCoro::Task<> CutFlowModel::stitch(std::shared_ptr<CancelToken> token, std::shared_ptr<SourceTelemetryCache> telemetry)
{
    QPointer<CutFlowModel> self(this);
    QStringList clips;
    QList<CutPlanRow> spans;
    for (const CutPlanRow &row : rows()) {
        if (!isCut(row))
            continue;
        clips << row.outURL;
        spans << row;
    }
    if (clips.isEmpty()) {
        setStitch(StitchState::failed(QStringLiteral("No cut clips to stitch")));
        co_return;
    }
    const QString story = storyURL();
    if (story.isEmpty()) {
        setStitch(StitchState::failed(QStringLiteral("Choose a save folder first")));
        co_return;
    }
    setStitch(StitchState::running(0));

    const auto client = m_client;
    const bool vertical = m_storyVertical;
    std::optional<QString> bed;
    std::optional<Failure> failure;
    if (const auto track = chosenTrack()) {
        const QString extension = QFileInfo(*track).suffix();
        const QString name = QStringLiteral("story_bed_") + QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper()
                             + (extension.isEmpty() ? QString() : QLatin1Char('.') + extension);
        // No silent fallback: a story asked with music and made without it would be a surprise.
        const QString relative = QStringLiteral("music/") + *track;
        auto download = co_await client->downloadToTemporary(relative, name, token.get());
        if (download.ok())
            bed = download.value();
        else
            failure = download.failure();
    }
    if (!failure) {
        auto progress = [self](double p) {
            // A late report never overwrites an end state.
            if (self && self->m_stitch.kind == StitchState::Kind::running)
                self->setStitch(StitchState::running(p));
        };
        auto made = co_await StoryStitcher::stitchStory(clips, bed, story, vertical, storyCrossfade, storyFade, progress,
                                                        token);
        if (!made.ok())
            failure = made.failure();
    }
    if (!failure) {
        QList<GpxWriter::Segment> segments;
        for (const CutPlanRow &row : std::as_const(spans)) {
            if (!row.sourceURL || !row.item.start || !row.item.end)
                continue;
            const auto read = co_await SourceTelemetryCache::read(telemetry, *row.sourceURL, token.get());
            segments << ClipSidecars::segment(read, *row.item.start, *row.item.end);
        }
        ClipSidecars::writeStory(segments, story);
    } else {
        QFile::remove(story);
    }
    if (bed)
        QFile::remove(*bed);
    if (!self)
        co_return;
    if (!failure)
        setStitch(StitchState::done(story));
    else
        setStitch(token->isCancelled() ? StitchState() : StitchState::failed(failure->text));
}

void CutFlowModel::setStitch(const StitchState &stitch)
{
    if (m_stitch == stitch)
        return;
    m_stitch = stitch;
    Q_EMIT stitchChanged();
}

void CutFlowModel::revealFolder()
{
    const QString folder = reelFolder();
    if (!folder.isEmpty() && m_reveal)
        m_reveal(folder);
}

void CutFlowModel::revealStory()
{
    if (m_stitch.kind == StitchState::Kind::done && m_reveal)
        m_reveal(m_stitch.url);
}
