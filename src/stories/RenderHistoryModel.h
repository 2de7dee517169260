#pragma once

#include "RenderRecords.h"

#include <QAbstractListModel>
#include <QHash>
#include <QPointer>
#include <QVariant>

#include <QCoroTask>

class CancelToken;
class ReelsStore;

/// @brief The videos a story has on the server, newest first, with the public link of each.
///
/// Made by the screen (`RenderHistoryModel { store: …; storyId: … }`); loads by its explicit
/// `load()` and again whenever `refreshKey` changes (the video sheet closed). A failed fetch
/// keeps what was shown.
///
/// Roles: `renderId`, `dateText` ("MMM d, h:mm a", "?" when unknown), `tags`, `musicText`,
/// `vertical`, `shared` (a live link exists), `posterUrl` (the still beside the video's file).
class RenderHistoryModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(QObject *store READ storeObject WRITE setStoreObject NOTIFY givenChanged FINAL)
    Q_PROPERTY(QString storyId READ storyId WRITE setStoryId NOTIFY givenChanged FINAL)
    Q_PROPERTY(int refreshKey READ refreshKey WRITE setRefreshKey NOTIFY refreshKeyChanged FINAL)
    Q_PROPERTY(int count READ countProperty NOTIFY countChanged FINAL)
    /// "3 on server"
    Q_PROPERTY(QString countText READ countText NOTIFY countChanged FINAL)
    Q_PROPERTY(QString sharedFile READ sharedFile NOTIFY sharedFileChanged FINAL)
public:
    enum Role { RenderIdRole = Qt::UserRole + 1, DateRole, TagsRole, MusicRole, VerticalRole, SharedRole, PosterRole };
    Q_ENUM(Role)

    explicit RenderHistoryModel(QObject *parent = nullptr);
    ~RenderHistoryModel() override;

    [[nodiscard]] QObject *storeObject() const;
    void setStoreObject(QObject *store);
    void setStore(ReelsStore *store);
    [[nodiscard]] QString storyId() const { return m_storyId; }
    void setStoryId(const QString &id);
    [[nodiscard]] int refreshKey() const { return m_refreshKey; }
    void setRefreshKey(int key);
    [[nodiscard]] QString countText() const;
    [[nodiscard]] QString sharedFile() const { return m_sharedFile; }

    [[nodiscard]] const QList<RenderEntry> &renders() const { return m_renders; }
    /// Live links of this story, by video id.
    [[nodiscard]] const QHash<QString, ReelShare> &shares() const { return m_shares; }
    /// Newest first by `rendered` compared as text; an absent time counts as the empty text.
    [[nodiscard]] static QList<RenderEntry> newestFirst(QList<RenderEntry> renders);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    // Awaitable by tests; the invokables start them.
    QCoro::Task<> fetch();
    QCoro::Task<> deleteVideo(QString renderId);
    QCoro::Task<> saveVideo(QString renderId);

    /// The video of a row, for the player; null outside the list.
    Q_INVOKABLE QVariant entryAt(int row) const;
    /// The live link of a video, for the share sheet; null when it has none.
    Q_INVOKABLE QVariant shareFor(const QString &renderId) const;
    /// The share sheet made, changed (a `ReelShare`) or revoked (null) the link of a video.
    Q_INVOKABLE void setShare(const QString &renderId, const QVariant &share);
    /// Deletes the video of a row from the server (the screen has asked), then lists again.
    Q_INVOKABLE void remove(int row);
    /// Downloads the video of a row, then offers it to the desktop.
    Q_INVOKABLE void download(int row);

public Q_SLOTS:
    void load();
    void shareDismissed();

Q_SIGNALS:
    void givenChanged();
    void refreshKeyChanged();
    void countChanged();
    void sharedFileChanged();

private:
    [[nodiscard]] int countProperty() const { return int(m_renders.size()); }
    [[nodiscard]] int rowOf(const QString &renderId) const;
    void setRenders(QList<RenderEntry> renders);

    QPointer<ReelsStore> m_store;
    QString m_storyId;
    int m_refreshKey = 0;
    QList<RenderEntry> m_renders;
    QHash<QString, ReelShare> m_shares;
    QString m_sharedFile;
    CancelToken *m_cancel = nullptr;
};
