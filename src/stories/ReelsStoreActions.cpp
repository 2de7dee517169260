// What the hub does to stories: create, draft, rename, delete. Each ends in a toast.
#include "ReelsStore.h"

#include "APIClient.h"

#include <QPointer>

namespace {
const QString saveFailed = QStringLiteral("Save failed — is serve.py running?");
}

QCoro::Task<> ReelsStore::refetchSummaries()
{
    QPointer<ReelsStore> self(this);
    const std::shared_ptr<APIClient> client = m_client;
    if (!client)
        co_return;
    auto list = co_await client->fetchProjects();
    if (self && list)
        setSummaries(list.value());
}

QCoro::Task<std::optional<Project>> ReelsStore::create(QString title)
{
    QPointer<ReelsStore> self(this);
    const std::shared_ptr<APIClient> client = m_client;
    title = title.trimmed();
    if (title.isEmpty())
        title = QStringLiteral("Untitled story");
    if (!client)
        co_return std::nullopt;
    auto made = co_await client->createProject(title);
    if (!self)
        co_return std::nullopt;
    if (!made) {
        showToast(QStringLiteral("Create failed — is serve.py running?"));
        co_return std::nullopt;
    }
    co_await refetchSummaries();
    if (!self)
        co_return std::nullopt;
    showToast(QStringLiteral("Story created"));
    co_return Project(made.value());
}

QCoro::Task<std::optional<ProjectSummary>> ReelsStore::autoStory(QStringList flights, double seconds,
                                                                 std::optional<QString> place)
{
    QPointer<ReelsStore> self(this);
    const std::shared_ptr<APIClient> client = m_client;
    if (!client)
        co_return std::nullopt;
    const std::optional<QStringList> limit = flights.isEmpty() ? std::nullopt : std::optional(flights);
    auto drafted = co_await client->makeAutoreel(seconds, limit, place, false);
    if (!self)
        co_return std::nullopt;
    if (!drafted) {
        showToast(QStringLiteral("No story this time — not enough standout moments in your library yet."));
        co_return std::nullopt;
    }
    co_await refetchSummaries();
    if (!self)
        co_return std::nullopt;
    showToast(QStringLiteral("Auto-story drafted — %1 clips").arg(drafted->items.size()));
    co_return summary(drafted->id);
}

QCoro::Task<> ReelsStore::rename(ProjectSummary summary, QString title)
{
    QPointer<ReelsStore> self(this);
    const std::shared_ptr<APIClient> client = m_client;
    if (!client)
        co_return;
    title = title.trimmed();
    auto fetched = co_await client->fetchProject(summary.id);
    if (!self)
        co_return;
    if (!fetched) {
        showToast(saveFailed);
        co_return;
    }
    Project project = fetched.value();
    if (!title.isEmpty())
        project.title = title;
    auto saved = co_await client->saveProject(project);
    if (!self)
        co_return;
    if (!saved) {
        showToast(saveFailed);
        co_return;
    }
    co_await refetchSummaries();
    if (self)
        showToast(QStringLiteral("Renamed"));
}

QCoro::Task<> ReelsStore::deleteStory(ProjectSummary summary)
{
    QPointer<ReelsStore> self(this);
    const std::shared_ptr<APIClient> client = m_client;
    if (!client)
        co_return;
    auto deleted = co_await client->deleteProject(summary.id);
    if (!self)
        co_return;
    if (!deleted) {
        showToast(QStringLiteral("Delete failed"));
        co_return;
    }
    co_await refetchSummaries();
    if (self)
        showToast(QStringLiteral("Story deleted"));
}
