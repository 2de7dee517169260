#pragma once

#include "CutRowsModel.h"
#include "OriginalsIndex.h"
#include "SourceTelemetry.h"
#include "StitchState.h"

#include <APIClient.h>
#include <CancelToken.h>

#include <QObject>
#include <QStringList>
#include <QVariantList>

#include <QCoroTask>

#include <functional>
#include <memory>
#include <optional>

class Preferences;

/// @brief The cut window: a story's cut list matched to the originals on disk, cut into clips
/// one at a time, and optionally stitched into one story video. The window's only model; the
/// headless `cut` command drives the same one.
///
/// Folders and the three switches are remembered in the preferences (when given); `force`,
/// `track` and the index are not. All state lives on the GUI thread; the folder walk runs on a
/// worker thread and the batch is one task that stops with `stop()` or with the model.
class CutFlowModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QVariantList reels READ reelsList NOTIFY reelsChanged FINAL)
    Q_PROPERTY(bool loading READ loading NOTIFY loadingChanged FINAL)
    Q_PROPERTY(QString selectedReelId READ selectedReelId NOTIFY selectedReelChanged FINAL)
    Q_PROPERTY(bool hasEdl READ hasEdl NOTIFY edlChanged FINAL)
    Q_PROPERTY(QString edlTitle READ edlTitle NOTIFY edlChanged FINAL)
    Q_PROPERTY(CutRowsModel *rows READ rowsModel CONSTANT FINAL)
    Q_PROPERTY(QString originalsFolder READ originalsFolder NOTIFY originalsFolderChanged FINAL)
    Q_PROPERTY(QString outputRoot READ outputRoot NOTIFY outputRootChanged FINAL)
    Q_PROPERTY(bool fast READ fast WRITE setFast NOTIFY fastChanged FINAL)
    Q_PROPERTY(bool force READ force WRITE setForce NOTIFY forceChanged FINAL)
    Q_PROPERTY(bool running READ running NOTIFY runningChanged FINAL)
    Q_PROPERTY(int indexCount READ indexCount NOTIFY indexChanged FINAL)
    /// "<n> videos indexed" once the originals folder has been walked, else empty.
    Q_PROPERTY(QString indexText READ indexText NOTIFY indexChanged FINAL)
    Q_PROPERTY(QString error READ error NOTIFY errorChanged FINAL)
    Q_PROPERTY(bool makeStory READ makeStory WRITE setMakeStory NOTIFY makeStoryChanged FINAL)
    Q_PROPERTY(bool storyVertical READ storyVertical WRITE setStoryVertical NOTIFY storyVerticalChanged FINAL)
    Q_PROPERTY(QString track READ track WRITE setTrack NOTIFY trackChanged FINAL)
    Q_PROPERTY(QStringList tracks READ tracks NOTIFY tracksChanged FINAL)
    /// The Music menu: `tag` and `text` of "Random", "No music" and each track.
    Q_PROPERTY(QVariantList musicChoices READ musicChoices NOTIFY tracksChanged FINAL)
    Q_PROPERTY(QString stitchState READ stitchStateName NOTIFY stitchChanged FINAL)
    Q_PROPERTY(QString stitchText READ stitchText NOTIFY stitchChanged FINAL)
    Q_PROPERTY(double stitchProgress READ stitchProgress NOTIFY stitchChanged FINAL)
    Q_PROPERTY(QString stitchURL READ stitchURL NOTIFY stitchChanged FINAL)
    Q_PROPERTY(QString stitchFileName READ stitchFileName NOTIFY stitchChanged FINAL)
    Q_PROPERTY(int readyCount READ readyCount NOTIFY countsChanged FINAL)
    Q_PROPERTY(int missingCount READ missingCount NOTIFY countsChanged FINAL)
    Q_PROPERTY(int doneCount READ doneCount NOTIFY countsChanged FINAL)
    Q_PROPERTY(QString missingText READ missingText NOTIFY countsChanged FINAL)
    Q_PROPERTY(QString actionText READ actionText NOTIFY countsChanged FINAL)
    Q_PROPERTY(bool actionIsStory READ actionIsStory NOTIFY countsChanged FINAL)
    Q_PROPERTY(bool canStart READ canStart NOTIFY countsChanged FINAL)
    Q_PROPERTY(QString doneText READ doneText NOTIFY countsChanged FINAL)
    /// A batch ran since the story was chosen: the footer shows its result.
    Q_PROPERTY(bool batchRan READ batchRan NOTIFY batchRanChanged FINAL)
    Q_PROPERTY(QString reelFolder READ reelFolder NOTIFY pathsChanged FINAL)
    Q_PROPERTY(QString storyURL READ storyURL NOTIFY pathsChanged FINAL)
public:
    /// Shows a file or folder in the desktop's file manager.
    using Reveal = std::function<void(const QString &path)>;

    /// `prefs` may be null (the headless command): nothing is then read or stored.
    CutFlowModel(std::shared_ptr<const APIClient> client, Preferences *prefs, QObject *parent = nullptr);
    ~CutFlowModel() override;

    void setReveal(Reveal reveal) { m_reveal = std::move(reveal); }

    // ---- The steps, awaitable (the headless command and the tests wait for them) ----

    /// The story list, then the music list (whose failure is ignored).
    QCoro::Task<> load();
    /// Fetches the story's cut list and plans it against the originals folder, walked afresh.
    QCoro::Task<> chooseReel(ProjectSummary reel);
    /// The primary originals folder (remembered), or another one searched for the missing.
    QCoro::Task<> chooseOriginals(QString folder, bool additional);
    /// The save folder (remembered); each story gets a folder inside it.
    void chooseOutputRoot(const QString &folder);

    // ---- What the window calls ----

    Q_INVOKABLE void reload();
    Q_INVOKABLE void openReel(int index);
    Q_INVOKABLE void pickOriginals(const QUrl &folder, bool additional);
    Q_INVOKABLE void pickOutputRoot(const QUrl &folder);
    Q_INVOKABLE void start();
    Q_INVOKABLE void stop();
    Q_INVOKABLE void back();
    Q_INVOKABLE void revealFolder();
    Q_INVOKABLE void revealStory();
    Q_INVOKABLE void dismissError();

    // ---- State ----

    [[nodiscard]] const QList<ProjectSummary> &reels() const { return m_reels; }
    [[nodiscard]] QVariantList reelsList() const;
    [[nodiscard]] bool loading() const { return m_loading; }
    [[nodiscard]] const std::optional<ProjectSummary> &selectedReel() const { return m_selectedReel; }
    [[nodiscard]] QString selectedReelId() const { return m_selectedReel ? m_selectedReel->id : QString(); }
    [[nodiscard]] const std::optional<EDL> &edl() const { return m_edl; }
    [[nodiscard]] bool hasEdl() const { return m_edl.has_value(); }
    [[nodiscard]] QString edlTitle() const { return m_edl ? m_edl->title : QString(); }
    [[nodiscard]] CutRowsModel *rowsModel() const { return m_rows; }
    [[nodiscard]] const QList<CutPlanRow> &rows() const { return m_rows->rows(); }
    [[nodiscard]] QString originalsFolder() const { return m_originalsFolder; }
    [[nodiscard]] QString outputRoot() const { return m_outputRoot; }
    [[nodiscard]] bool fast() const { return m_fast; }
    [[nodiscard]] bool force() const { return m_force; }
    [[nodiscard]] bool running() const { return m_running; }
    [[nodiscard]] const OriginalsIndex::Index &index() const { return m_index; }
    [[nodiscard]] int indexCount() const { return static_cast<int>(m_index.size()); }
    [[nodiscard]] QString indexText() const;
    [[nodiscard]] QString error() const { return m_error; }
    [[nodiscard]] bool makeStory() const { return m_makeStory; }
    [[nodiscard]] bool storyVertical() const { return m_storyVertical; }
    [[nodiscard]] QString track() const { return m_track; }
    [[nodiscard]] QStringList tracks() const { return m_tracks; }
    [[nodiscard]] QVariantList musicChoices() const;
    [[nodiscard]] const StitchState &stitch() const { return m_stitch; }
    [[nodiscard]] QString stitchStateName() const { return m_stitch.name(); }
    [[nodiscard]] QString stitchText() const { return m_stitch.words(); }
    [[nodiscard]] double stitchProgress() const { return m_stitch.fraction; }
    [[nodiscard]] QString stitchURL() const { return m_stitch.url; }
    [[nodiscard]] QString stitchFileName() const;
    [[nodiscard]] int readyCount() const;
    [[nodiscard]] int missingCount() const;
    [[nodiscard]] int doneCount() const;
    [[nodiscard]] QString missingText() const;
    [[nodiscard]] QString actionText() const;
    [[nodiscard]] bool actionIsStory() const;
    [[nodiscard]] bool canStart() const;
    [[nodiscard]] QString doneText() const;
    [[nodiscard]] bool batchRan() const { return m_batchRan; }
    /// The story's folder inside the save folder; empty without a save folder.
    [[nodiscard]] QString reelFolder() const;
    /// "<story>_story.mp4" or "<story>_story_vertical.mp4" in the story's folder; empty without one.
    [[nodiscard]] QString storyURL() const;

    void setFast(bool fast);
    void setForce(bool force);
    void setMakeStory(bool makeStory);
    void setStoryVertical(bool vertical);
    void setTrack(const QString &track);

Q_SIGNALS:
    void reelsChanged();
    void loadingChanged();
    void selectedReelChanged();
    void edlChanged();
    void originalsFolderChanged();
    void outputRootChanged();
    void fastChanged();
    void forceChanged();
    void runningChanged();
    void indexChanged();
    void errorChanged();
    void makeStoryChanged();
    void storyVerticalChanged();
    void trackChanged();
    void tracksChanged();
    void stitchChanged();
    void countsChanged();
    void batchRanChanged();
    void pathsChanged();
    /// The task of a batch (and its stitch) has ended, by itself or, some moments after a stop,
    /// once ffmpeg has gone and its partial clip with it.
    void finished();

private:
    // Folders and planning (CutFlowModel.cpp).
    void rebuildRows(bool keepRows);
    QCoro::Task<> indexFolders(QStringList folders, bool merge);
    void setRowStatus(int row, const CutPlanRow::Status &status);
    void setError(const QString &error);
    void setLoading(bool loading);
    void setRunning(bool running);
    void setBatchRan(bool ran);
    void setEdl(std::optional<EDL> edl);
    void setIndex(OriginalsIndex::Index index, bool indexed);
    // The batch and the stitch (CutFlowBatch.cpp).
    QCoro::Task<> runWorker(QList<CutPlanRow> rows, bool fast, bool force, std::shared_ptr<CancelToken> token);
    QCoro::Task<> stitch(std::shared_ptr<CancelToken> token, std::shared_ptr<SourceTelemetryCache> telemetry);
    [[nodiscard]] std::optional<QString> chosenTrack() const;
    void setStitch(const StitchState &stitch);
    int countOf(CutPlanRow::Status::Kind kind) const;

    std::shared_ptr<const APIClient> m_client;
    Preferences *m_prefs = nullptr;
    Reveal m_reveal;
    QList<ProjectSummary> m_reels;
    bool m_loading = false;
    std::optional<ProjectSummary> m_selectedReel;
    std::optional<EDL> m_edl;
    CutRowsModel *m_rows = nullptr;
    QString m_originalsFolder;
    QString m_outputRoot;
    bool m_fast = false;
    bool m_force = false;
    bool m_running = false;
    QString m_error;
    bool m_makeStory = false;
    bool m_storyVertical = false;
    QString m_track = QStringLiteral("random");
    QStringList m_tracks;
    StitchState m_stitch;
    OriginalsIndex::Index m_index;
    bool m_indexed = false;
    bool m_batchRan = false;
    std::shared_ptr<CancelToken> m_worker;
    int m_indexGeneration = 0;  ///< only the latest walk lands
    int m_reelGeneration = 0;   ///< only the latest story choice lands
};
