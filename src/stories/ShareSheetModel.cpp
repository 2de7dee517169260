#include "ShareSheetModel.h"

#include "CancelToken.h"
#include "DesktopHandoff.h"
#include "ReelsStore.h"

#include <QTimer>

ShareSheetModel::ShareSheetModel(QObject *parent) : QObject(parent), m_cancel(new CancelToken)
{
    connect(&m_note, &Toast::textChanged, this, &ShareSheetModel::noteChanged);
}

ShareSheetModel::~ShareSheetModel()
{
    // Cancelled from the event loop, so an aborted request resumes after this object is gone.
    CancelToken *token = m_cancel;
    QTimer::singleShot(0, token, [token] {
        token->cancel();
        token->deleteLater();
    });
}

QObject *ShareSheetModel::storeObject() const
{
    return m_store.data();
}

void ShareSheetModel::setStoreObject(QObject *store)
{
    setStore(qobject_cast<ReelsStore *>(store));
}

void ShareSheetModel::setStore(ReelsStore *store)
{
    if (store == m_store)
        return;
    m_store = store;
    Q_EMIT givenChanged();
}

QObject *ShareSheetModel::desktopObject() const
{
    return m_desktop.data();
}

void ShareSheetModel::setDesktopObject(QObject *desktop)
{
    setDesktop(qobject_cast<DesktopHandoff *>(desktop));
}

void ShareSheetModel::setDesktop(DesktopHandoff *desktop)
{
    if (desktop == m_desktop)
        return;
    m_desktop = desktop;
    Q_EMIT givenChanged();
}

void ShareSheetModel::setProjectId(const QString &id)
{
    if (id == m_projectId)
        return;
    m_projectId = id;
    Q_EMIT givenChanged();
}

void ShareSheetModel::setRenderId(const QString &id)
{
    if (id == m_renderId)
        return;
    m_renderId = id;
    Q_EMIT givenChanged();
}

QString ShareSheetModel::storyTitle() const
{
    if (!m_storyTitle.isEmpty() || !m_store)
        return m_storyTitle;
    const auto summary = m_store->summary(m_projectId);
    return summary ? summary->title : QString();
}

void ShareSheetModel::setStoryTitle(const QString &title)
{
    if (title == m_storyTitle)
        return;
    m_storyTitle = title;
    Q_EMIT givenChanged();
}

QVariant ShareSheetModel::existingValue() const
{
    return m_existing ? QVariant::fromValue(*m_existing) : QVariant();
}

void ShareSheetModel::setExistingValue(const QVariant &share)
{
    if (share.metaType() == QMetaType::fromType<ReelShare>())
        setExisting(share.value<ReelShare>());
    else
        setExisting(std::nullopt);
}

void ShareSheetModel::setExisting(std::optional<ReelShare> share)
{
    if (share == m_existing)
        return;
    m_existing = std::move(share);
    Q_EMIT givenChanged();
}

QString ShareSheetModel::state() const
{
    if (m_share)
        return QStringLiteral("shown");
    return m_failed ? QStringLiteral("failed") : QStringLiteral("creating");
}

QString ShareSheetModel::viewsText() const
{
    const int views = m_share ? m_share->views : 0;
    if (views == 0)
        return QStringLiteral("Not viewed yet");
    return QStringLiteral("%1 view%2").arg(views).arg(views == 1 ? "" : "s");
}

void ShareSheetModel::setEditTitle(const QString &title)
{
    if (title == m_editTitle)
        return;
    m_editTitle = title;
    Q_EMIT editChanged();
}

void ShareSheetModel::setEditDesc(const QString &desc)
{
    if (desc == m_editDesc)
        return;
    m_editDesc = desc;
    Q_EMIT editChanged();
}

QString ShareSheetModel::suggestText() const
{
    if (m_suggesting)
        return QStringLiteral("Thinking…");
    return m_suggestions.isEmpty() ? QStringLiteral("Suggest for me") : QStringLiteral("Try another");
}

void ShareSheetModel::setShare(std::optional<ReelShare> share)
{
    m_share = std::move(share);
    Q_EMIT shareChanged();
}

void ShareSheetModel::fillFields()
{
    setEditTitle(m_share ? m_share->title.value_or(QString()) : QString());
    setEditDesc(m_share ? m_share->description.value_or(QString()) : QString());
}

void ShareSheetModel::setFailed(bool failed)
{
    if (failed == m_failed)
        return;
    m_failed = failed;
    Q_EMIT shareChanged();
}

void ShareSheetModel::setBusy(bool &flag, bool value)
{
    if (flag == value)
        return;
    flag = value;
    Q_EMIT busyChanged();
}

void ShareSheetModel::takeNextSuggestion()
{
    if (m_suggestions.isEmpty())
        return;
    const ShareCopySuggestion &next = m_suggestions[m_suggIx % m_suggestions.size()];
    ++m_suggIx;
    setEditTitle(next.title);
    setEditDesc(next.description.value_or(QString()));
}

void ShareSheetModel::copy()
{
    if (!m_share)
        return;
    if (m_desktop)
        m_desktop->copyText(m_share->url);
    m_note.show(QStringLiteral("Link copied"));
}

void ShareSheetModel::askRevoke()
{
    if (!m_share || m_confirmRevoke)
        return;
    m_confirmRevoke = true;
    Q_EMIT confirmRevokeChanged();
}

void ShareSheetModel::cancelRevoke()
{
    if (!m_confirmRevoke)
        return;
    m_confirmRevoke = false;
    Q_EMIT confirmRevokeChanged();
}
