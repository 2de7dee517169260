#pragma once

#include "ReelsHubRows.h"

#include <QObject>
#include <QPointer>
#include <QVariantList>

#include <QCoroTask>

class QSettings;
class ReelsStore;
class StoryDevHooks;
class StoryNavigator;

/// @brief The stories hub: the store's stories through the pilot's filter, the header, which
/// state the screen is in, and the hub's actions (new, auto-story, rename, delete, open).
///
/// The filter is kept under "storyHubFilter"; a value it doesn't know shows every story.
class ReelsHubModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString filter READ filter WRITE setFilter NOTIFY filterChanged FINAL)
    Q_PROPERTY(QVariantList filterChoices READ filterChoices CONSTANT FINAL)
    Q_PROPERTY(QString headerText READ headerText NOTIFY rowsChanged FINAL)
    /// "loading", "failed", "empty", "filtered" (the filter leaves nothing) or "list".
    Q_PROPERTY(QString state READ state NOTIFY rowsChanged FINAL)
    Q_PROPERTY(ReelsHubRows *rows READ rows CONSTANT FINAL)
    Q_PROPERTY(bool drafting READ drafting NOTIFY draftingChanged FINAL)
    Q_PROPERTY(QObject *store READ storeObject CONSTANT FINAL)
    Q_PROPERTY(QObject *hooks READ hooksObject CONSTANT FINAL)
public:
    static constexpr const char *filterKey = "storyHubFilter";

    /// `settings`, `navigator` and `hooks` stay owned by the caller; any may be null.
    ReelsHubModel(ReelsStore *store, QSettings *settings, StoryNavigator *navigator, StoryDevHooks *hooks = nullptr,
                  QObject *parent = nullptr);

    [[nodiscard]] QString filter() const { return m_filter; }
    void setFilter(const QString &filter);
    [[nodiscard]] QVariantList filterChoices() const;
    [[nodiscard]] QString headerText() const;
    [[nodiscard]] QString state() const;
    [[nodiscard]] ReelsHubRows *rows() const { return m_rows; }
    [[nodiscard]] bool drafting() const { return m_drafting; }
    [[nodiscard]] QObject *storeObject() const;
    [[nodiscard]] QObject *hooksObject() const;

    /// Whether a story with `videos` videos, shared or not, passes `filter`.
    [[nodiscard]] static bool passes(const QString &filter, int videos, bool shared);

    /// "Delete story “title”?"
    [[nodiscard]] Q_INVOKABLE QString deleteQuestion(const QString &title) const;

    // Awaitable by tests; the slots start them.
    QCoro::Task<> runCreate(QString title);
    QCoro::Task<> runAutoStory(int seconds);
    QCoro::Task<> runDelete(QString storyId);

public Q_SLOTS:
    /// The hub came on screen: loads only when nothing is listed yet.
    void appear();
    /// Pull to refresh and "Retry".
    void refresh();
    void open(const QString &storyId);
    void create(const QString &title);
    void autoStory(int seconds);
    void rename(const QString &storyId, const QString &title);
    void remove(const QString &storyId);
    /// A video sheet was closed: its story may have new videos or links.
    void videoSheetClosed();

Q_SIGNALS:
    void filterChanged();
    void rowsChanged();
    void draftingChanged();

private:
    void rebuild();
    void openPendingStory();

    QPointer<ReelsStore> m_store;
    QSettings *m_settings;
    QPointer<StoryNavigator> m_navigator;
    QPointer<StoryDevHooks> m_hooks;
    ReelsHubRows *m_rows;
    QString m_filter;
    bool m_drafting = false;
    QString m_pendingStory;  ///< a development aid's story, opened once the list is there
};
