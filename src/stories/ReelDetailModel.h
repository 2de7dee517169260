#pragma once

#include "ReelModel.h"

#include <QObject>
#include <QPointer>
#include <QString>

#include <QCoroTask>

#include <memory>

class CancelToken;
class ReelsStore;

/// @brief The story screen before it can edit: fetches the story named by `storyId` and then
/// holds its `ReelModel`. A failed fetch shows the failed state until the story is opened again.
///
/// Made by the screen (`ReelDetailModel { store: …; storyId: … }`), loaded by its explicit
/// `load()`. When it goes, a save still in flight finishes with the model kept alive.
class ReelDetailModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QObject *store READ storeObject WRITE setStoreObject NOTIFY storeChanged FINAL)
    Q_PROPERTY(QString storyId READ storyId WRITE setStoryId NOTIFY storyIdChanged FINAL)
    Q_PROPERTY(bool loading READ loading NOTIFY stateChanged FINAL)
    Q_PROPERTY(bool failed READ failed NOTIFY stateChanged FINAL)
    Q_PROPERTY(ReelModel *reel READ reel NOTIFY stateChanged FINAL)
public:
    explicit ReelDetailModel(QObject *parent = nullptr);
    ~ReelDetailModel() override;

    [[nodiscard]] QObject *storeObject() const;
    void setStoreObject(QObject *store);
    void setStore(ReelsStore *store);
    [[nodiscard]] QString storyId() const { return m_storyId; }
    void setStoryId(const QString &id);
    [[nodiscard]] bool loading() const { return m_loading; }
    [[nodiscard]] bool failed() const { return m_failed; }
    [[nodiscard]] ReelModel *reel() const { return m_reel; }

    /// The fetch; awaitable by tests.
    QCoro::Task<> fetch();

public Q_SLOTS:
    void load();

Q_SIGNALS:
    void storeChanged();
    void storyIdChanged();
    void stateChanged();

private:
    void dropReel();

    QPointer<ReelsStore> m_store;
    QString m_storyId;
    bool m_loading = false;
    bool m_failed = false;
    ReelModel *m_reel = nullptr;
    CancelToken *m_cancel = nullptr;
};
