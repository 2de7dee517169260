#pragma once

#include "RenderRecords.h"

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QVariant>

#include <QCoroTask>

#include <optional>

class CancelToken;
class ReelsStore;
class RenderPlayback;

/// @brief Plays one made video of a story, in its own shape, with its tags.
///
/// Given the video itself (`entry`, from the history) or only its story and id (from the hub),
/// in which case the store's list of videos, or else the story's own list on the server, says
/// the rest. `appear()` puts it on a player and starts it; the player stops when this goes.
class RenderPlayerModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QObject *store READ storeObject WRITE setStoreObject NOTIFY givenChanged FINAL)
    Q_PROPERTY(QString storyId READ storyId WRITE setStoryId NOTIFY givenChanged FINAL)
    Q_PROPERTY(QString renderId READ renderId WRITE setRenderId NOTIFY givenChanged FINAL)
    /// The story's title as given, else as the list of videos or the store knows it.
    Q_PROPERTY(QString storyTitle READ storyTitle WRITE setStoryTitle NOTIFY entryChanged FINAL)
    /// A `RenderEntry` handed over by the history; null to look the video up.
    Q_PROPERTY(QVariant entry READ entryValue WRITE setEntryValue NOTIFY entryChanged FINAL)
    Q_PROPERTY(RenderPlayback *playback READ playback NOTIFY entryChanged FINAL)
    Q_PROPERTY(bool vertical READ vertical NOTIFY entryChanged FINAL)
    Q_PROPERTY(QStringList tags READ tags NOTIFY entryChanged FINAL)
    Q_PROPERTY(QString musicText READ musicText NOTIFY entryChanged FINAL)
    Q_PROPERTY(QString dateText READ dateText NOTIFY entryChanged FINAL)
    /// The video isn't on the server (any more).
    Q_PROPERTY(bool missing READ missing NOTIFY entryChanged FINAL)
public:
    explicit RenderPlayerModel(QObject *parent = nullptr);
    ~RenderPlayerModel() override;

    [[nodiscard]] QObject *storeObject() const;
    void setStoreObject(QObject *store);
    void setStore(ReelsStore *store);
    [[nodiscard]] QString storyId() const { return m_storyId; }
    void setStoryId(const QString &id);
    [[nodiscard]] QString renderId() const { return m_renderId; }
    void setRenderId(const QString &id);
    [[nodiscard]] QString storyTitle() const;
    void setStoryTitle(const QString &title);
    [[nodiscard]] QVariant entryValue() const;
    void setEntryValue(const QVariant &entry);

    [[nodiscard]] const std::optional<RenderEntry> &entry() const { return m_entry; }
    [[nodiscard]] RenderPlayback *playback() const { return m_playback; }
    [[nodiscard]] bool vertical() const;
    [[nodiscard]] QStringList tags() const;
    [[nodiscard]] QString musicText() const;
    [[nodiscard]] QString dateText() const;
    [[nodiscard]] bool missing() const { return m_missing; }

    /// Finds the video when only its id is known, then plays it; awaitable by tests.
    QCoro::Task<> open();

public Q_SLOTS:
    void appear();

Q_SIGNALS:
    void givenChanged();
    void entryChanged();

private:
    void play();

    QPointer<ReelsStore> m_store;
    QString m_storyId;
    QString m_renderId;
    QString m_storyTitle;
    std::optional<RenderEntry> m_entry;
    RenderPlayback *m_playback = nullptr;
    bool m_missing = false;
    bool m_appeared = false;
    CancelToken *m_cancel = nullptr;
};
