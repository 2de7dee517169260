#include "ReelsHubModel.h"

#include "APIClient.h"
#include "ReelsStore.h"
#include "StoryDevHooks.h"
#include "StoryNavigator.h"

#include <QSettings>

ReelsHubModel::ReelsHubModel(ReelsStore *store, QSettings *settings, StoryNavigator *navigator, StoryDevHooks *hooks,
                             QObject *parent)
    : QObject(parent), m_store(store), m_settings(settings), m_navigator(navigator), m_hooks(hooks),
      m_rows(new ReelsHubRows(this))
{
    m_filter = m_settings ? m_settings->value(QLatin1String(filterKey), QStringLiteral("all")).toString()
                          : QStringLiteral("all");
    if (m_hooks)
        m_pendingStory = m_hooks->takeStory();
    if (m_store) {
        for (auto signal : {&ReelsStore::summariesChanged, &ReelsStore::rendersChanged, &ReelsStore::sharesChanged,
                            &ReelsStore::loadingChanged, &ReelsStore::clientChanged})
            connect(m_store, signal, this, &ReelsHubModel::rebuild);
    }
    rebuild();
}

void ReelsHubModel::setFilter(const QString &filter)
{
    if (filter == m_filter)
        return;
    m_filter = filter;
    if (m_settings)
        m_settings->setValue(QLatin1String(filterKey), filter);
    Q_EMIT filterChanged();
    rebuild();
}

QVariantList ReelsHubModel::filterChoices() const
{
    QVariantList choices;
    const std::pair<const char *, const char *> all[] = {
        {"all", "All"}, {"drafts", "Drafts"}, {"video", "With video"}, {"shared", "Shared"}, {"unshared", "Not shared"}};
    for (const auto &[value, label] : all)
        choices.append(QVariantMap{{QStringLiteral("value"), QLatin1String(value)},
                                   {QStringLiteral("label"), QLatin1String(label)}});
    return choices;
}

bool ReelsHubModel::passes(const QString &filter, int videos, bool shared)
{
    if (filter == QLatin1String("drafts"))
        return videos == 0;
    if (filter == QLatin1String("video"))
        return videos != 0;
    if (filter == QLatin1String("shared"))
        return shared;
    if (filter == QLatin1String("unshared"))
        return videos != 0 && !shared;
    return true;
}

QString ReelsHubModel::headerText() const
{
    if (!m_store)
        return {};
    const qsizetype stories = m_store->summaries().size();
    QString text = QStringLiteral("%1 %2").arg(stories).arg(stories == 1 ? "story" : "stories");
    if (!m_store->renders().isEmpty())
        text += QStringLiteral(" · %1 completed").arg(m_store->renders().size());
    return text;
}

QString ReelsHubModel::state() const
{
    const bool nothing = !m_store || m_store->summaries().isEmpty();
    if (nothing && m_store && m_store->loading() && !m_store->loadFailed())
        return QStringLiteral("loading");
    if (nothing && (!m_store || m_store->loadFailed()))
        return QStringLiteral("failed");
    if (nothing)
        return QStringLiteral("empty");
    if (m_rows->rows().isEmpty())
        return QStringLiteral("filtered");
    return QStringLiteral("list");
}

QObject *ReelsHubModel::storeObject() const
{
    return m_store.data();
}

QObject *ReelsHubModel::hooksObject() const
{
    return m_hooks.data();
}

QString ReelsHubModel::deleteQuestion(const QString &title) const
{
    return QStringLiteral("Delete story “%1”?").arg(title);
}

void ReelsHubModel::rebuild()
{
    QList<ReelsHubRows::Row> rows;
    if (m_store) {
        const std::shared_ptr<APIClient> client = m_store->client();
        for (const ProjectSummary &summary : m_store->summaries()) {
            ReelsHubRows::Row row{summary, m_store->videosOf(summary.id), m_store->isShared(summary.id), {}};
            if (!passes(m_filter, int(row.videos.size()), row.shared))
                continue;
            if (client && summary.cover && summary.cover->flightId)
                row.cover = client->flightThumbURL(*summary.cover->flightId);
            rows.append(std::move(row));
        }
    }
    m_rows->setRows(std::move(rows));
    Q_EMIT rowsChanged();
    openPendingStory();
}

void ReelsHubModel::openPendingStory()
{
    if (m_pendingStory.isEmpty() || !m_store || m_store->loading() || m_store->summaries().isEmpty())
        return;
    const QString wanted = std::exchange(m_pendingStory, QString());
    open(wanted == QLatin1String("1") ? m_store->summaries().first().id : wanted);
}

void ReelsHubModel::appear()
{
    if (m_store && m_store->summaries().isEmpty())
        m_store->load();
}

void ReelsHubModel::refresh()
{
    if (m_store)
        m_store->load();
}

void ReelsHubModel::open(const QString &storyId)
{
    if (m_navigator)
        m_navigator->openStory(storyId);
}

void ReelsHubModel::create(const QString &title)
{
    runCreate(title);
}

void ReelsHubModel::autoStory(int seconds)
{
    runAutoStory(seconds);
}

void ReelsHubModel::rename(const QString &storyId, const QString &title)
{
    if (!m_store)
        return;
    if (const auto summary = m_store->summary(storyId))
        m_store->rename(*summary, title);
}

void ReelsHubModel::remove(const QString &storyId)
{
    runDelete(storyId);
}

void ReelsHubModel::videoSheetClosed()
{
    if (m_store)
        m_store->refreshRenders();
}

QCoro::Task<> ReelsHubModel::runCreate(QString title)
{
    QPointer<ReelsHubModel> self(this);
    if (!m_store)
        co_return;
    const auto project = co_await m_store->create(title);
    if (self && project)
        open(project->id);
}

QCoro::Task<> ReelsHubModel::runAutoStory(int seconds)
{
    QPointer<ReelsHubModel> self(this);
    if (!m_store || m_drafting)
        co_return;
    m_drafting = true;
    Q_EMIT draftingChanged();
    // The hub drafts from the whole library, with no place.
    const auto drafted = co_await m_store->autoStory({}, seconds, std::nullopt);
    if (!self)
        co_return;
    m_drafting = false;
    Q_EMIT draftingChanged();
    if (drafted)
        open(drafted->id);
}

QCoro::Task<> ReelsHubModel::runDelete(QString storyId)
{
    QPointer<ReelsHubModel> self(this);
    if (!m_store)
        co_return;
    const auto summary = m_store->summary(storyId);
    if (!summary)
        co_return;
    co_await m_store->deleteStory(*summary);
    // The story's videos went with it on the server.
    if (self && m_store)
        co_await m_store->reloadRenders();
}
