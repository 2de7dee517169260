#pragma once

#include "ClipRecords.h"
#include "StoryRecords.h"

#include <QAbstractListModel>
#include <QPointer>

class ReelModel;

/// @brief The picker of clips for the open story: the library's clips in the server's order,
/// narrowed by `search` and "Hide added".
///
/// Roles: `label` ("Untitled clip" when blank), `subtitle` (place · date), `thumbUrl`, `inStory`
/// (how many items of the story are this clip), `inStoryText` ("2 in story", empty at 0).
class AddClipsModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(QObject *reel READ reelObject WRITE setReelObject NOTIFY reelChanged FINAL)
    Q_PROPERTY(QString search READ search WRITE setSearch NOTIFY searchChanged FINAL)
    Q_PROPERTY(bool hideAdded READ hideAdded WRITE setHideAdded NOTIFY hideAddedChanged FINAL)
    Q_PROPERTY(bool poolEmpty READ poolEmpty NOTIFY countChanged FINAL)
    Q_PROPERTY(int count READ rowCountProperty NOTIFY countChanged FINAL)
public:
    enum Role { LabelRole = Qt::UserRole + 1, SubtitleRole, ThumbRole, InStoryRole, InStoryTextRole };
    Q_ENUM(Role)

    explicit AddClipsModel(QObject *parent = nullptr);

    [[nodiscard]] QObject *reelObject() const;
    void setReelObject(QObject *reel);
    void setReel(ReelModel *reel);
    [[nodiscard]] QString search() const { return m_search; }
    void setSearch(const QString &search);
    [[nodiscard]] bool hideAdded() const { return m_hideAdded; }
    void setHideAdded(bool hide);
    [[nodiscard]] bool poolEmpty() const;

    /// The pool positions that pass: "Hide added" keeps clips not yet in the story; a search
    /// (lowered and trimmed; blanks are no search) keeps clips whose "label place date" text
    /// holds it.
    [[nodiscard]] static QList<int> visible(const QList<PoolClip> &pool, const QList<ReelItem> &items,
                                            const QString &search, bool hideAdded);
    [[nodiscard]] const QList<int> &visibleRows() const { return m_visible; }

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    /// Adds the clip of this row to the story and says so; the picker stays open for more.
    Q_INVOKABLE void add(int row);
    /// A `SegmentPlayer` with a player of its own, looping this row's clip muted; the preview
    /// closes it with its `close()`. Null for an unknown row or when no player can be made.
    Q_INVOKABLE QObject *startPreview(int row);

Q_SIGNALS:
    void reelChanged();
    void searchChanged();
    void hideAddedChanged();
    void countChanged();

private:
    void recompute();
    [[nodiscard]] const QList<PoolClip> &pool() const;
    [[nodiscard]] const PoolClip *clipAt(int row) const;
    [[nodiscard]] int rowCountProperty() const { return int(m_visible.size()); }

    QPointer<ReelModel> m_reel;
    QList<QMetaObject::Connection> m_connections;
    QString m_search;
    bool m_hideAdded = false;
    QList<int> m_visible;
};
