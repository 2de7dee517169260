#pragma once

#include "RenderRecords.h"
#include "Toast.h"

#include <QObject>
#include <QPointer>
#include <QVariant>

#include <QCoroTask>

#include <optional>

class CancelToken;
class DesktopHandoff;
class ReelsStore;

/// @brief The public link of one made video: made when the sheet opens (unless one exists),
/// copied or handed to the desktop, its title and description edited, words suggested by the
/// library, and revoked.
///
/// Made by the screen (`ShareSheetModel { store: …; projectId: …; renderId: … }`) and started
/// by `appear()`. Without an `existing` link it looks in the store's links first. It keeps no
/// lasting data: whoever opened it learns of a new, changed or revoked link from
/// `linkChanged`. Passing lines (`note`) stand for the toast's time.
///
/// Suggestions are asked for once; after that the button cycles through them for ever. Nothing
/// reaches the server until "Save".
class ShareSheetModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QObject *store READ storeObject WRITE setStoreObject NOTIFY givenChanged FINAL)
    Q_PROPERTY(QObject *desktop READ desktopObject WRITE setDesktopObject NOTIFY givenChanged FINAL)
    Q_PROPERTY(QString projectId READ projectId WRITE setProjectId NOTIFY givenChanged FINAL)
    Q_PROPERTY(QString renderId READ renderId WRITE setRenderId NOTIFY givenChanged FINAL)
    /// The story's title as given, else as the store knows it.
    Q_PROPERTY(QString storyTitle READ storyTitle WRITE setStoryTitle NOTIFY givenChanged FINAL)
    /// A `ReelShare` the opener knows of; null when it knows none.
    Q_PROPERTY(QVariant existing READ existingValue WRITE setExistingValue NOTIFY givenChanged FINAL)

    /// "creating", "failed" or "shown".
    Q_PROPERTY(QString state READ state NOTIFY shareChanged FINAL)
    Q_PROPERTY(QString url READ url NOTIFY shareChanged FINAL)
    /// "3 views", "1 view", or "Not viewed yet".
    Q_PROPERTY(QString viewsText READ viewsText NOTIFY shareChanged FINAL)
    Q_PROPERTY(int hearts READ hearts NOTIFY shareChanged FINAL)
    Q_PROPERTY(QString createdText READ createdText NOTIFY shareChanged FINAL)
    Q_PROPERTY(QString editTitle READ editTitle WRITE setEditTitle NOTIFY editChanged FINAL)
    Q_PROPERTY(QString editDesc READ editDesc WRITE setEditDesc NOTIFY editChanged FINAL)
    Q_PROPERTY(bool savingEdit READ savingEdit NOTIFY busyChanged FINAL)
    Q_PROPERTY(bool aiAvailable READ aiAvailable NOTIFY aiAvailableChanged FINAL)
    Q_PROPERTY(bool suggesting READ suggesting NOTIFY busyChanged FINAL)
    /// "Suggest for me", "Try another" once there are suggestions, "Thinking…" while asking.
    Q_PROPERTY(QString suggestText READ suggestText NOTIFY busyChanged FINAL)
    Q_PROPERTY(bool confirmRevoke READ confirmRevoke NOTIFY confirmRevokeChanged FINAL)
    Q_PROPERTY(QString note READ note NOTIFY noteChanged FINAL)
public:
    explicit ShareSheetModel(QObject *parent = nullptr);
    ~ShareSheetModel() override;

    [[nodiscard]] QObject *storeObject() const;
    void setStoreObject(QObject *store);
    void setStore(ReelsStore *store);
    [[nodiscard]] QObject *desktopObject() const;
    void setDesktopObject(QObject *desktop);
    void setDesktop(DesktopHandoff *desktop);
    [[nodiscard]] QString projectId() const { return m_projectId; }
    void setProjectId(const QString &id);
    [[nodiscard]] QString renderId() const { return m_renderId; }
    void setRenderId(const QString &id);
    [[nodiscard]] QString storyTitle() const;
    void setStoryTitle(const QString &title);
    [[nodiscard]] QVariant existingValue() const;
    void setExistingValue(const QVariant &share);
    void setExisting(std::optional<ReelShare> share);

    [[nodiscard]] const std::optional<ReelShare> &share() const { return m_share; }
    [[nodiscard]] bool failed() const { return m_failed; }
    [[nodiscard]] QString state() const;
    [[nodiscard]] QString url() const { return m_share ? m_share->url : QString(); }
    [[nodiscard]] QString viewsText() const;
    [[nodiscard]] int hearts() const { return m_share ? m_share->hearts : 0; }
    [[nodiscard]] QString createdText() const { return m_share ? m_share->createdText() : QString(); }
    [[nodiscard]] QString editTitle() const { return m_editTitle; }
    void setEditTitle(const QString &title);
    [[nodiscard]] QString editDesc() const { return m_editDesc; }
    void setEditDesc(const QString &desc);
    [[nodiscard]] bool savingEdit() const { return m_savingEdit; }
    [[nodiscard]] bool aiAvailable() const { return m_aiAvailable; }
    [[nodiscard]] bool suggesting() const { return m_suggesting; }
    [[nodiscard]] QString suggestText() const;
    [[nodiscard]] const QList<ShareCopySuggestion> &suggestions() const { return m_suggestions; }
    [[nodiscard]] int suggIx() const { return m_suggIx; }
    [[nodiscard]] bool confirmRevoke() const { return m_confirmRevoke; }
    [[nodiscard]] QString note() const { return m_note.text(); }
    /// Tests shorten the time a note stands.
    [[nodiscard]] Toast &noteSlot() { return m_note; }

    // The sheet's work, awaitable by tests; the slots start them.
    QCoro::Task<> begin();
    QCoro::Task<> createLink();
    QCoro::Task<> askForSuggestion();
    QCoro::Task<> saveEdit();
    QCoro::Task<> revokeLink();

public Q_SLOTS:
    /// The sheet opened: shows the known link or makes one, then asks whether suggestions exist.
    void appear();
    /// "Retry" after a failed creation.
    void retry();
    /// "Copy": the link on the clipboard.
    void copy();
    void suggest();
    void save();
    /// "Revoke" asks first; `revoke()` answers the question with yes.
    void askRevoke();
    void cancelRevoke();
    void revoke();

Q_SIGNALS:
    void givenChanged();
    void shareChanged();
    void editChanged();
    void busyChanged();
    void aiAvailableChanged();
    void confirmRevokeChanged();
    void noteChanged();
    /// The link is new or changed (a `ReelShare`), or revoked (null).
    void linkChanged(const QVariant &share);
    /// Revoked: the sheet has nothing left to show.
    void closeRequested();

private:
    void setShare(std::optional<ReelShare> share);
    void fillFields();
    void takeNextSuggestion();
    void setFailed(bool failed);
    void setBusy(bool &flag, bool value);

    QPointer<ReelsStore> m_store;
    QPointer<DesktopHandoff> m_desktop;
    QString m_projectId;
    QString m_renderId;
    QString m_storyTitle;
    std::optional<ReelShare> m_existing;

    std::optional<ReelShare> m_share;
    bool m_failed = false;
    bool m_confirmRevoke = false;
    Toast m_note;
    QString m_editTitle;
    QString m_editDesc;
    bool m_savingEdit = false;
    bool m_aiAvailable = false;
    QList<ShareCopySuggestion> m_suggestions;
    int m_suggIx = 0;
    bool m_suggesting = false;
    bool m_creating = false;
    bool m_appeared = false;
    CancelToken *m_cancel = nullptr;
};
