#pragma once

#include "ClipRecords.h"
#include "RenderRecords.h"
#include "StoryRecords.h"
#include "Toast.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QStringList>

#include <QCoroTask>

#include <functional>
#include <memory>
#include <optional>

class APIClient;
class VideoPlayer;

/// @brief What the stories hub holds: every story, the library's clips a story can use, every
/// made video and the live share links, plus the toast the hub shows.
///
/// A cache of the server: reloaded whole by `load()` and patched after each action. It raises
/// nothing; every action ends in a toast or in `loadFailed`. Two overlapping loads are not
/// guarded against: the last answer wins.
class ReelsStore : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool loading READ loading NOTIFY loadingChanged FINAL)
    Q_PROPERTY(bool loadFailed READ loadFailed NOTIFY loadingChanged FINAL)
    Q_PROPERTY(QString toast READ toast NOTIFY toastChanged FINAL)
    Q_PROPERTY(QObject *client READ clientObject NOTIFY clientChanged FINAL)
public:
    explicit ReelsStore(std::shared_ptr<APIClient> client, QObject *parent = nullptr);
    ~ReelsStore() override;

    /// Signing in makes a new client: what the old one loaded is forgotten.
    void setClient(std::shared_ptr<APIClient> client);
    [[nodiscard]] std::shared_ptr<APIClient> client() const { return m_client; }
    [[nodiscard]] QObject *clientObject() const;

    /// Makes the players of the previews (each owned by whoever asked).
    using PlayerFactory = std::function<VideoPlayer *()>;
    void setPlayerFactory(PlayerFactory factory) { m_playerFactory = std::move(factory); }
    /// A new player, or null when none can be made here.
    [[nodiscard]] VideoPlayer *makePlayer() const { return m_playerFactory ? m_playerFactory() : nullptr; }

    /// Whether players opened from the stories take the full proxy.
    [[nodiscard]] bool hqPlayback() const { return m_hqPlayback; }
    void setHqPlayback(bool hq) { m_hqPlayback = hq; }

    [[nodiscard]] const QList<ProjectSummary> &summaries() const { return m_summaries; }
    [[nodiscard]] const QList<PoolClip> &pool() const { return m_pool; }
    [[nodiscard]] const QList<RenderEntry> &renders() const { return m_renders; }
    /// Keyed by projectId + "/" + renderId.
    [[nodiscard]] const QHash<QString, ReelShare> &shares() const { return m_shares; }
    [[nodiscard]] bool loading() const { return m_loading; }
    [[nodiscard]] bool loadFailed() const { return m_loadFailed; }
    [[nodiscard]] QString toast() const { return m_toast.text(); }
    [[nodiscard]] Toast &toastSlot() { return m_toast; }

    [[nodiscard]] std::optional<ProjectSummary> summary(const QString &id) const;
    /// The videos of a story, in the order of `renders`; entries without a story never match.
    [[nodiscard]] QList<RenderEntry> videosOf(const QString &projectId) const;
    /// True when any of the story's videos has a live link.
    [[nodiscard]] bool isShared(const QString &projectId) const;

    // The actions, awaitable by tests; the slots below start them and forget them.
    QCoro::Task<> reload();
    QCoro::Task<> reloadRenders();
    QCoro::Task<> reloadShares();
    /// The new story, or nothing after a toast that says why.
    QCoro::Task<std::optional<Project>> create(QString title);
    /// The server drafts a story from the best moments; the summary of it once it is listed.
    QCoro::Task<std::optional<ProjectSummary>> autoStory(QStringList flights, double seconds,
                                                         std::optional<QString> place);
    QCoro::Task<> rename(ProjectSummary summary, QString title);
    QCoro::Task<> deleteStory(ProjectSummary summary);

    /// An edit of an open story, shown in the hub before the server has answered.
    void touchSummary(const QString &id, const QString &title, int count);

public Q_SLOTS:
    void load();
    void refreshRenders();
    void refreshShares();
    void showToast(const QString &text);

Q_SIGNALS:
    void clientChanged();
    void loadingChanged();
    void toastChanged();
    void summariesChanged();
    void poolChanged();
    void rendersChanged();
    void sharesChanged();

private:
    void setLoading(bool loading, bool failed);
    void setSummaries(QList<ProjectSummary> summaries);
    /// The story list again after an action; a failure here alone changes nothing.
    QCoro::Task<> refetchSummaries();

    std::shared_ptr<APIClient> m_client;
    QList<ProjectSummary> m_summaries;
    QList<PoolClip> m_pool;
    QList<RenderEntry> m_renders;
    QHash<QString, ReelShare> m_shares;
    bool m_loading = false;
    bool m_loadFailed = false;
    bool m_hqPlayback = false;
    PlayerFactory m_playerFactory;
    Toast m_toast;
};
