// Stories (projects on the wire), their cut lists, music and the server's automatic story.
#include "APIClient.h"

#include "APIError.h"
#include "Wire.h"

namespace {
QString projectPath(const QString &id, const char *rest = "")
{
    return QStringLiteral("api/projects/") + id + QLatin1String(rest);
}

Result<Project> decodedProject(const Result<QByteArray> &body)
{
    if (!body)
        return body.failure();
    return APIError::decoded(Wire::decode<Project>(*body));
}

// The reply as a person would read it: pretty, keys sorted (so stable between calls).
QString prettySorted(const QByteArray &body)
{
    const auto j = Wire::parse(body);
    if (!j)
        return {};
    try {
        return Wire::toQString(j->dump(2));
    } catch (const nlohmann::json::exception &) {
        return {};
    }
}
} // namespace

QCoro::Task<Result<QList<ProjectSummary>>> APIClient::fetchProjects(CancelToken *cancel) const
{
    const auto body = co_await getJSON(QStringLiteral("api/projects"), cancel);
    if (!body)
        co_return body.failure();
    co_return APIError::decoded(Wire::decodeList<ProjectSummary>(*body, "projects"));
}

QCoro::Task<Result<Project>> APIClient::fetchProject(QString id, CancelToken *cancel) const
{
    co_return decodedProject(co_await getJSON(projectPath(id), cancel));
}

QCoro::Task<Result<Project>> APIClient::createProject(QString title) const
{
    Wire::OrderedJson body = Wire::OrderedJson::object();
    Wire::put(body, "title", title);
    co_return decodedProject(co_await sendJSON("POST", QStringLiteral("api/projects"), Wire::dump(body)));
}

QCoro::Task<Result<Project>> APIClient::createProject(QString title, QList<ReelItem> items) const
{
    Wire::OrderedJson body = Wire::OrderedJson::object();
    Wire::put(body, "title", title);
    Wire::put(body, "items", items);
    co_return decodedProject(co_await sendJSON("POST", QStringLiteral("api/projects"), Wire::dump(body)));
}

QCoro::Task<Result<void>> APIClient::saveProject(Project project) const
{
    Wire::OrderedJson body = Wire::OrderedJson::object();
    Wire::put(body, "title", project.title);
    Wire::put(body, "notes", project.notes.value_or(QString()));
    Wire::put(body, "items", project.items);
    co_return statusOnly(co_await sendJSON("POST", projectPath(project.id), Wire::dump(body)));
}

QCoro::Task<Result<void>> APIClient::deleteProject(QString id) const
{
    co_return statusOnly(co_await sendEmpty("DELETE", projectPath(id)));
}

QCoro::Task<Result<EDLDocument>> APIClient::fetchEDL(QString id, CancelToken *cancel) const
{
    const auto body = co_await getJSON(projectPath(id, "/edl"), cancel);
    if (!body)
        co_return body.failure();
    auto edl = Wire::decode<EDL>(*body);
    if (!edl)
        co_return APIError::decoding();
    co_return EDLDocument{std::move(*edl), prettySorted(*body)};
}

QCoro::Task<Result<QStringList>> APIClient::fetchMusic(CancelToken *cancel) const
{
    const auto body = co_await getJSON(QStringLiteral("api/music"), cancel);
    if (!body)
        co_return body.failure();
    co_return APIError::decoded(Wire::decodeList<QString>(*body, "tracks"));
}

QCoro::Task<Result<Project>> APIClient::makeAutoreel(double target, std::optional<QStringList> flightIds,
                                                     std::optional<QString> place, bool clipsOnly) const
{
    Wire::OrderedJson body = Wire::OrderedJson::object();
    Wire::put(body, "target", target);
    Wire::put(body, "flightIds", flightIds);
    Wire::put(body, "place", place);
    Wire::put(body, "clipsOnly", clipsOnly);
    co_return decodedProject(co_await sendJSON("POST", QStringLiteral("api/autoreel"), Wire::dump(body)));
}
