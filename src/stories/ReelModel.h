#pragma once

#include "ClipPreview.h"
#include "ClipRecords.h"
#include "ReelItemsModel.h"
#include "StoryRecords.h"

#include <QObject>
#include <QPointer>
#include <QUuid>
#include <QVariantMap>

#include <QCoroTask>

#include <memory>
#include <optional>

class APIClient;
class ReelsStore;

/// @brief One open story: every edit applies here at once and the whole story is saved in the
/// background, so the pilot never waits for a save and never loses an edit made during one.
///
/// Saves coalesce: at most one is in flight and at most one more follows it, always with the
/// story as it then stands. A failed save leaves the edits in place and says so; the next edit
/// sends the whole story again, which repairs the server's copy.
class ReelModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString storyId READ storyId CONSTANT FINAL)
    Q_PROPERTY(QString title READ title NOTIFY titleChanged FINAL)
    Q_PROPERTY(int itemCount READ itemCount NOTIFY itemsChanged FINAL)
    Q_PROPERTY(QString totalText READ totalText NOTIFY itemsChanged FINAL)
    Q_PROPERTY(bool storyVertical READ storyVertical NOTIFY itemsChanged FINAL)
    Q_PROPERTY(bool saving READ saving NOTIFY savingChanged FINAL)
    Q_PROPERTY(ReelItemsModel *items READ items CONSTANT FINAL)
    Q_PROPERTY(QObject *store READ storeObject CONSTANT FINAL)
public:
    ReelModel(Project project, ReelsStore *store, QObject *parent = nullptr);
    ~ReelModel() override;

    [[nodiscard]] const Project &project() const { return m_project; }
    [[nodiscard]] QString storyId() const { return m_project.id; }
    [[nodiscard]] QString title() const { return m_project.title; }
    [[nodiscard]] int itemCount() const { return int(m_project.items.size()); }
    [[nodiscard]] QString totalText() const;
    [[nodiscard]] ReelItemsModel *items() const { return m_rows; }
    [[nodiscard]] ReelsStore *store() const { return m_store; }
    [[nodiscard]] QObject *storeObject() const;
    [[nodiscard]] bool saving() const { return m_saving; }
    [[nodiscard]] bool resaveQueued() const { return m_resaveQueued; }

    void add(const PoolClip &clip);
    void remove(QList<int> offsets);
    void remove(const QUuid &uid);
    /// The standard list move: the items at `fromOffsets` go before the item now at `toOffset`.
    void move(QList<int> fromOffsets, int toOffset);
    /// An unknown uid changes nothing and sends nothing.
    void trim(const QUuid &uid, double start, double end);
    /// Blanks, or the title it already has, change nothing and send nothing.
    void rename(const QString &title);
    /// Patches the hub at once, then saves the whole story (see the class note).
    void save();

    [[nodiscard]] std::optional<PoolClip> poolClip(const ReelItem &item) const;
    [[nodiscard]] int count(const PoolClip &clip) const;
    [[nodiscard]] bool storyVertical() const;
    [[nodiscard]] double totalDuration() const;
    /// The items as a film to preview, in order.
    [[nodiscard]] QList<ClipPreview> previewClips() const;

    /// Frees this model once no save is running: a save in flight finishes first, and so does
    /// the one it has queued.
    void retire();

    // For the screens.
    Q_INVOKABLE void removeRow(int row);
    /// A row dragged from `from` and let go at `to`: it ends there (clamped to the list).
    Q_INVOKABLE void moveRow(int from, int to);
    Q_INVOKABLE void trimItem(const QString &uid, double start, double end);
    Q_INVOKABLE void renameTo(const QString &title) { rename(title); }
    /// The uid of the item at `row` as text, empty outside the list.
    [[nodiscard]] Q_INVOKABLE QString uidAt(int row) const;
    /// What a trim sheet needs of one item: uid, flightId, p480, label, subtitle, originalIn,
    /// originalOut. Empty for an unknown uid.
    [[nodiscard]] Q_INVOKABLE QVariantMap trimTarget(const QString &uid) const;
    /// A `StoryPlayer` with a player of its own, already playing clip 0. The preview closes it
    /// with its `close()`. Null when no player can be made.
    Q_INVOKABLE QObject *startPreview();

Q_SIGNALS:
    void titleChanged();
    void itemsChanged();
    void savingChanged();

private:
    QCoro::Task<> saveLoop();
    void setSaving(bool saving);
    [[nodiscard]] const QList<PoolClip> &pool() const;
    [[nodiscard]] int rowOf(const QUuid &uid) const;

    Project m_project;
    QPointer<ReelsStore> m_store;
    std::shared_ptr<APIClient> m_client;
    ReelItemsModel *m_rows;
    bool m_saving = false;
    bool m_resaveQueued = false;
    bool m_retired = false;
};
