#include "CutFlowModel.h"

#include "CutPlanner.h"
#include "TrackNames.h"

#include <FolderBookmarks.h>
#include <Preferences.h>

#include <QDir>
#include <QFileInfo>
#include <QPointer>
#include <QUrl>
#include <QVariantMap>

namespace {
const QString fastKey = QStringLiteral("cut.fast");
const QString makeStoryKey = QStringLiteral("cut.makeStory");
const QString verticalKey = QStringLiteral("cut.storyVertical");
const QString originalsKey = QStringLiteral("cut.originals");
const QString outputRootKey = QStringLiteral("cut.outputRoot");

QString plural(int n, const QString &word)
{
    return QString::number(n) + QLatin1Char(' ') + word + (n == 1 ? QString() : QStringLiteral("s"));
}
} // namespace

CutFlowModel::CutFlowModel(std::shared_ptr<const APIClient> client, Preferences *prefs, QObject *parent)
    : QObject(parent)
    , m_client(std::move(client))
    , m_prefs(prefs)
    , m_rows(new CutRowsModel(this))
{
    if (m_prefs) {
        m_outputRoot = FolderBookmarks::load(*m_prefs, outputRootKey).value_or(QString());
        m_originalsFolder = FolderBookmarks::load(*m_prefs, originalsKey).value_or(QString());
        m_fast = m_prefs->boolValue(fastKey);
        m_makeStory = m_prefs->boolValue(makeStoryKey);
        m_storyVertical = m_prefs->boolValue(verticalKey);
    }
    connect(m_rows, &CutRowsModel::statusesChanged, this, &CutFlowModel::countsChanged);
}

CutFlowModel::~CutFlowModel()
{
    // ffmpeg stops with the window; the batch then ends quietly, removing its partial clip.
    if (m_worker)
        m_worker->cancel();
}

// ---- Loading and choosing ----

QCoro::Task<> CutFlowModel::load()
{
    QPointer<CutFlowModel> self(this);
    const auto client = m_client;
    setLoading(true);
    auto reels = co_await client->fetchProjects();
    if (!self)
        co_return;
    if (reels.ok()) {
        m_reels = std::move(reels).value();
    } else {
        m_reels.clear();
        setError(QStringLiteral("Couldn't load stories: ") + reels.errorText());
    }
    Q_EMIT reelsChanged();
    // The music menu then offers only its two fixed entries.
    auto tracks = co_await client->fetchMusic();
    if (!self)
        co_return;
    if (tracks.ok() && tracks.value() != m_tracks) {
        m_tracks = tracks.value();
        Q_EMIT tracksChanged();
    }
    setLoading(false);
}

QCoro::Task<> CutFlowModel::chooseReel(ProjectSummary reel)
{
    QPointer<CutFlowModel> self(this);
    const int generation = ++m_reelGeneration;
    m_selectedReel = reel;
    Q_EMIT selectedReelChanged();
    m_rows->setRows({});
    setStitch({});
    setBatchRan(false);
    const auto client = m_client;
    auto edl = co_await client->fetchEDL(reel.id);
    if (!self || generation != m_reelGeneration)
        co_return;
    if (!edl.ok()) {
        setError(QStringLiteral("Couldn't fetch the cut list: ") + edl.errorText());
        co_return;
    }
    setEdl(std::move(edl).value().edl);
    // Walked again on every choice, so a card copied in meanwhile is seen.
    if (m_originalsFolder.isEmpty()) {
        rebuildRows(false);
        co_return;
    }
    // Named first: GCC 12 mishandles a braced list inside a co_await operand.
    const QStringList folders{m_originalsFolder};
    co_await indexFolders(folders, false);
}

QCoro::Task<> CutFlowModel::chooseOriginals(QString folder, bool additional)
{
    folder = QDir::cleanPath(folder);
    if (!additional) {
        if (m_originalsFolder != folder) {
            m_originalsFolder = folder;
            Q_EMIT originalsFolderChanged();
        }
        if (m_prefs)
            FolderBookmarks::save(*m_prefs, folder, originalsKey);
        setIndex({}, false);
    }
    const QStringList folders{folder};
    co_await indexFolders(folders, additional);
}

void CutFlowModel::chooseOutputRoot(const QString &folder)
{
    const QString clean = QDir::cleanPath(folder);
    if (m_prefs)
        FolderBookmarks::save(*m_prefs, clean, outputRootKey);
    if (m_outputRoot != clean) {
        m_outputRoot = clean;
        Q_EMIT outputRootChanged();
        Q_EMIT pathsChanged();
    }
    rebuildRows(false);
}

QCoro::Task<> CutFlowModel::indexFolders(QStringList folders, bool merge)
{
    QPointer<CutFlowModel> self(this);
    const int generation = ++m_indexGeneration;
    // Named first: GCC 12 destroys a temporary of a co_await operand twice.
    OriginalsIndex::Index base = merge ? m_index : OriginalsIndex::Index();
    auto index = co_await OriginalsIndex::buildInBackground(folders, base);
    if (!self || generation != m_indexGeneration)
        co_return;
    setIndex(std::move(index), true);
    rebuildRows(merge);
}

void CutFlowModel::reload()
{
    (void)load();
}

void CutFlowModel::openReel(int index)
{
    if (index >= 0 && index < m_reels.size())
        (void)chooseReel(m_reels[index]);
}

void CutFlowModel::pickOriginals(const QUrl &folder, bool additional)
{
    if (folder.isLocalFile())
        (void)chooseOriginals(folder.toLocalFile(), additional);
}

void CutFlowModel::pickOutputRoot(const QUrl &folder)
{
    if (folder.isLocalFile())
        chooseOutputRoot(folder.toLocalFile());
}

void CutFlowModel::back()
{
    setEdl(std::nullopt);
    m_rows->setRows({});
}

void CutFlowModel::dismissError()
{
    setError({});
}

// ---- Planning ----

void CutFlowModel::rebuildRows(bool keepRows)
{
    if (!m_edl)
        return;
    if (keepRows && !rows().isEmpty()) {
        QList<CutPlanRow> refreshed = rows();
        CutPlanner::refresh(refreshed, m_index, m_force);
        m_rows->setRows(std::move(refreshed));
        return;
    }
    const QString folder = reelFolder();
    m_rows->setRows(folder.isEmpty() ? QList<CutPlanRow>() : CutPlanner::plan(*m_edl, m_index, folder, m_force));
}

void CutFlowModel::setRowStatus(int row, const CutPlanRow::Status &status)
{
    m_rows->setStatus(row, status);
}

QString CutFlowModel::reelFolder() const
{
    if (m_outputRoot.isEmpty())
        return {};
    return QDir(m_outputRoot).filePath(CutPlanner::reelBase(m_edl));
}

QString CutFlowModel::storyURL() const
{
    const QString folder = reelFolder();
    if (folder.isEmpty())
        return {};
    const QString name = CutPlanner::reelBase(m_edl) + QStringLiteral("_story")
                         + (m_storyVertical ? QStringLiteral("_vertical") : QString()) + QStringLiteral(".mp4");
    return QDir(folder).filePath(name);
}

// ---- Setters ----

void CutFlowModel::setFast(bool fast)
{
    if (m_prefs)
        m_prefs->setValue(fastKey, fast);
    if (m_fast == fast)
        return;
    m_fast = fast;
    Q_EMIT fastChanged();
    rebuildRows(false);
}

void CutFlowModel::setForce(bool force)
{
    if (m_force == force)
        return;
    m_force = force;
    Q_EMIT forceChanged();
    rebuildRows(false);
}

void CutFlowModel::setMakeStory(bool makeStory)
{
    if (m_prefs)
        m_prefs->setValue(makeStoryKey, makeStory);
    if (m_makeStory == makeStory)
        return;
    m_makeStory = makeStory;
    Q_EMIT makeStoryChanged();
    Q_EMIT countsChanged();
}

void CutFlowModel::setStoryVertical(bool vertical)
{
    if (m_prefs)
        m_prefs->setValue(verticalKey, vertical);
    if (m_storyVertical == vertical)
        return;
    m_storyVertical = vertical;
    Q_EMIT storyVerticalChanged();
    Q_EMIT pathsChanged();
}

void CutFlowModel::setTrack(const QString &track)
{
    if (m_track == track)
        return;
    m_track = track;
    Q_EMIT trackChanged();
}

void CutFlowModel::setError(const QString &error)
{
    if (m_error == error)
        return;
    m_error = error;
    Q_EMIT errorChanged();
}

void CutFlowModel::setLoading(bool loading)
{
    if (m_loading == loading)
        return;
    m_loading = loading;
    Q_EMIT loadingChanged();
}

void CutFlowModel::setRunning(bool running)
{
    if (m_running == running)
        return;
    m_running = running;
    Q_EMIT runningChanged();
    Q_EMIT countsChanged();
}

void CutFlowModel::setBatchRan(bool ran)
{
    if (m_batchRan == ran)
        return;
    m_batchRan = ran;
    Q_EMIT batchRanChanged();
}

void CutFlowModel::setEdl(std::optional<EDL> edl)
{
    m_edl = std::move(edl);
    Q_EMIT edlChanged();
    Q_EMIT pathsChanged();
}

void CutFlowModel::setIndex(OriginalsIndex::Index index, bool indexed)
{
    m_index = std::move(index);
    m_indexed = indexed;
    Q_EMIT indexChanged();
}

// ---- What the screens read ----

QVariantList CutFlowModel::reelsList() const
{
    QVariantList out;
    for (const ProjectSummary &reel : m_reels)
        out.append(QVariantMap{{QStringLiteral("id"), reel.id},
                               {QStringLiteral("title"), reel.title},
                               {QStringLiteral("countText"), plural(reel.count, QStringLiteral("clip"))}});
    return out;
}

QString CutFlowModel::indexText() const
{
    return m_indexed ? QString::number(indexCount()) + QStringLiteral(" videos indexed") : QString();
}

QString CutFlowModel::stitchFileName() const
{
    return m_stitch.url.isEmpty() ? QString() : QFileInfo(m_stitch.url).fileName();
}

QVariantList CutFlowModel::musicChoices() const
{
    QVariantList out{QVariantMap{{QStringLiteral("tag"), QStringLiteral("random")}, {QStringLiteral("text"), QStringLiteral("Random")}},
                     QVariantMap{{QStringLiteral("tag"), QStringLiteral("none")}, {QStringLiteral("text"), QStringLiteral("No music")}}};
    for (const QString &track : m_tracks)
        out.append(QVariantMap{{QStringLiteral("tag"), track}, {QStringLiteral("text"), TrackNames::displayName(track)}});
    return out;
}

int CutFlowModel::countOf(CutPlanRow::Status::Kind kind) const
{
    return static_cast<int>(std::count_if(rows().cbegin(), rows().cend(),
                                           [kind](const CutPlanRow &row) { return row.status.kind == kind; }));
}

int CutFlowModel::readyCount() const
{
    return countOf(CutPlanRow::Status::Kind::pending);
}

int CutFlowModel::missingCount() const
{
    return countOf(CutPlanRow::Status::Kind::missingSource);
}

int CutFlowModel::doneCount() const
{
    return countOf(CutPlanRow::Status::Kind::done);
}

QString CutFlowModel::missingText() const
{
    const int missing = missingCount();
    if (missing == 0)
        return {};
    return plural(missing, QStringLiteral("clip"))
           + QStringLiteral(" have no original in this folder — copy cards verbatim (not via Photos, which renames files).");
}

bool CutFlowModel::actionIsStory() const
{
    return readyCount() == 0 && m_makeStory;
}

QString CutFlowModel::actionText() const
{
    return actionIsStory() ? QStringLiteral("Make Story Video") : QStringLiteral("Cut ") + plural(readyCount(), QStringLiteral("Clip"));
}

bool CutFlowModel::canStart() const
{
    if (m_running || reelFolder().isEmpty())
        return false;
    if (readyCount() > 0)
        return true;
    return m_makeStory && (doneCount() + countOf(CutPlanRow::Status::Kind::existing)) > 0;
}

QString CutFlowModel::doneText() const
{
    return QString::number(doneCount()) + QStringLiteral(" done");
}
