#pragma once

#include "ClipPool.h"
#include "ClipRowsModel.h"
#include "ClipsBrowserStore.h"

#include <QObject>
#include <QSet>
#include <QVariantList>

#include <QCoroTask>

class QSettings;

/// @brief The clips section as the pilot works it: filter and grouping (kept under "clips.filter"
/// and "clips.group"), the sections and count line of what passes, picking clips into a new
/// story, and which clip the lightbox shows.
///
/// Picks are held by clip identity. A pick the filter hides stays picked but counts for nothing;
/// a retrim changes a clip's identity, so its old pick no longer matches. Enumerated controls
/// travel to QML as their stored names ("all", "mine", "suggested"; "place", "month", "flat").
class ClipsBrowserModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(ClipsBrowserStore *store READ store CONSTANT FINAL)
    Q_PROPERTY(QString filter READ filter WRITE setFilter NOTIFY controlsChanged FINAL)
    Q_PROPERTY(QString group READ group WRITE setGroup NOTIFY controlsChanged FINAL)
    Q_PROPERTY(QVariantList filterChoices READ filterChoices CONSTANT FINAL)
    Q_PROPERTY(QVariantList groupChoices READ groupChoices CONSTANT FINAL)
    Q_PROPERTY(ClipRowsModel *rows READ rows CONSTANT FINAL)
    Q_PROPERTY(QString screen READ screen NOTIFY screenChanged FINAL)
    Q_PROPERTY(int visibleCount READ visibleCount NOTIFY resultChanged FINAL)
    Q_PROPERTY(QString countLine READ countLine NOTIFY resultChanged FINAL)
    Q_PROPERTY(QString placeLine READ placeLine NOTIFY resultChanged FINAL)
    Q_PROPERTY(bool selecting READ selecting NOTIFY selectionChanged FINAL)
    Q_PROPERTY(int pickCount READ pickCount NOTIFY selectionChanged FINAL)
    Q_PROPERTY(QString selectedText READ selectedText NOTIFY selectionChanged FINAL)
    Q_PROPERTY(bool mixedAspect READ mixedAspect NOTIFY selectionChanged FINAL)
    Q_PROPERTY(bool makingStory READ makingStory NOTIFY selectionChanged FINAL)
    Q_PROPERTY(bool canMakeStory READ canMakeStory NOTIFY selectionChanged FINAL)
    Q_PROPERTY(bool lightboxOpen READ lightboxOpen NOTIFY lightboxChanged FINAL)
    Q_PROPERTY(int lightboxIndex READ lightboxIndex NOTIFY lightboxChanged FINAL)
    Q_PROPERTY(bool playAll READ playAll NOTIFY lightboxChanged FINAL)
public:
    static constexpr const char *filterKey = "clips.filter";
    static constexpr const char *groupKey = "clips.group";

    /// `settings` keeps the controls and stays owned by the caller (null keeps nothing).
    ClipsBrowserModel(ClipsBrowserStore *store, QSettings *settings, QObject *parent = nullptr);

    [[nodiscard]] ClipsBrowserStore *store() const { return m_store; }
    [[nodiscard]] QString filter() const;
    void setFilter(const QString &raw);
    [[nodiscard]] QString group() const;
    void setGroup(const QString &raw);
    [[nodiscard]] QVariantList filterChoices() const;
    [[nodiscard]] QVariantList groupChoices() const;
    [[nodiscard]] ClipRowsModel *rows() const { return m_rows; }

    /// "loading", "error", "empty" or "content": what the section's main area shows.
    [[nodiscard]] QString screen() const;
    [[nodiscard]] const QList<PoolClip> &visible() const { return m_visible; }
    [[nodiscard]] const QList<ClipGroup> &groups() const { return m_groups; }
    [[nodiscard]] int visibleCount() const { return int(m_visible.size()); }
    [[nodiscard]] QString countLine() const { return ClipPool::countLine(m_visible); }
    /// "3 places" while grouped by place, else empty.
    [[nodiscard]] QString placeLine() const;

    [[nodiscard]] bool selecting() const { return m_selecting; }
    [[nodiscard]] const QSet<QString> &picked() const { return m_picked; }
    /// The visible clips that are picked, in the order they are shown.
    [[nodiscard]] QList<PoolClip> picks() const;
    [[nodiscard]] int pickCount() const { return int(picks().size()); }
    [[nodiscard]] QString selectedText() const;
    [[nodiscard]] bool mixedAspect() const { return ClipPool::mixedAspect(picks()); }
    [[nodiscard]] bool makingStory() const { return m_makingStory; }
    [[nodiscard]] bool canMakeStory() const;

    [[nodiscard]] bool lightboxOpen() const { return m_lightboxOpen; }
    [[nodiscard]] int lightboxIndex() const { return m_lightboxIndex; }
    [[nodiscard]] bool playAll() const { return m_playAll; }

    /// Makes a story of the picks; awaitable by tests.
    QCoro::Task<> runMakeStory();

public Q_SLOTS:
    /// A press on a clip: toggles its pick while selecting, otherwise opens it in the lightbox.
    void press(const QString &identity);
    /// "Select" and "Done": leaving selection drops every pick.
    void toggleSelecting();
    void cancelSelecting();
    void makeStory();
    /// Opens the lightbox on the first visible clip, advancing by itself.
    void playAllClips();
    void openLightbox(int index, bool playAll);
    /// The lightbox moved to another clip.
    void setLightboxIndex(int index);
    void closeLightbox();

Q_SIGNALS:
    void controlsChanged();
    void screenChanged();
    void resultChanged();
    void selectionChanged();
    void lightboxChanged();
    /// A story was made of the picks; the stories section takes the pilot there.
    void storyCreated(const QString &projectId);

private:
    void recompute();
    void onLoadingChanged();
    void setSelecting(bool on);
    [[nodiscard]] QVariantMap card(const PoolClip &clip) const;

    ClipsBrowserStore *m_store;
    QSettings *m_settings;
    ClipsFilter m_filter = ClipsFilter::all;
    ClipsGroupMode m_group = ClipsGroupMode::place;
    QList<PoolClip> m_visible;
    QHash<QString, int> m_visibleIndex;  ///< identity -> index into m_visible
    QList<ClipGroup> m_groups;
    ClipRowsModel *m_rows;
    QString m_screen;

    bool m_selecting = false;
    QSet<QString> m_picked;
    bool m_makingStory = false;

    bool m_lightboxOpen = false;
    int m_lightboxIndex = 0;
    bool m_playAll = false;
    bool m_firstLoadSeen = false;
};
