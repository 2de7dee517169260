// Story videos made by the server and the public links that share them.
#include "APIClient.h"

#include "APIError.h"
#include "Wire.h"

namespace {
QString projectPath(const QString &id, const QString &rest)
{
    return QStringLiteral("api/projects/") + id + rest;
}

Result<ReelShare> decodedShare(const Result<QByteArray> &body)
{
    if (!body)
        return body.failure();
    return APIError::decoded(Wire::decode<ReelShare>(*body));
}

template <typename T>
Result<QList<T>> decodedList(const Result<QByteArray> &body, const char *key)
{
    if (!body)
        return body.failure();
    return APIError::decoded(Wire::decodeList<T>(*body, key));
}
} // namespace

QCoro::Task<Result<RenderStatus>> APIClient::fetchRenderStatus(QString id, CancelToken *cancel) const
{
    const auto body = co_await getJSON(projectPath(id, QStringLiteral("/render")), cancel);
    if (!body)
        co_return body.failure();
    co_return APIError::decoded(Wire::decode<RenderStatus>(*body));
}

QCoro::Task<Result<void>> APIClient::startRender(QString id, RenderRequest settings) const
{
    co_return statusOnly(
        co_await sendJSON("POST", projectPath(id, QStringLiteral("/render")), Wire::dump(settings.toJson())));
}

QCoro::Task<Result<QList<RenderEntry>>> APIClient::fetchRenders(QString id, CancelToken *cancel) const
{
    co_return decodedList<RenderEntry>(co_await getJSON(projectPath(id, QStringLiteral("/renders")), cancel),
                                       "renders");
}

QCoro::Task<Result<QList<RenderEntry>>> APIClient::fetchAllRenders(CancelToken *cancel) const
{
    co_return decodedList<RenderEntry>(co_await getJSON(QStringLiteral("api/renders"), cancel), "renders");
}

QCoro::Task<Result<void>> APIClient::deleteRender(QString projectId, QString renderId) const
{
    co_return statusOnly(co_await sendEmpty("DELETE", projectPath(projectId, QStringLiteral("/renders/") + renderId)));
}

QCoro::Task<Result<QList<ReelShare>>> APIClient::fetchShares(CancelToken *cancel) const
{
    co_return decodedList<ReelShare>(co_await getJSON(QStringLiteral("api/shares"), cancel), "shares");
}

QCoro::Task<Result<ReelShare>> APIClient::createShare(QString projectId, QString renderId) const
{
    Wire::OrderedJson body = Wire::OrderedJson::object();
    Wire::put(body, "renderId", renderId);
    co_return decodedShare(
        co_await sendJSON("POST", projectPath(projectId, QStringLiteral("/shares")), Wire::dump(body)));
}

QCoro::Task<Result<QList<ShareCopySuggestion>>> APIClient::suggestShareCopy(QString projectId) const
{
    co_return decodedList<ShareCopySuggestion>(
        co_await sendEmpty("POST", projectPath(projectId, QStringLiteral("/suggest"))), "suggestions");
}

QCoro::Task<Result<ReelShare>> APIClient::updateShare(QString token, QString title, QString description) const
{
    Wire::OrderedJson body = Wire::OrderedJson::object();
    Wire::put(body, "title", title);
    Wire::put(body, "description", description);
    co_return decodedShare(co_await sendJSON("PATCH", QStringLiteral("api/shares/") + token, Wire::dump(body)));
}

QCoro::Task<Result<void>> APIClient::deleteShare(QString token) const
{
    co_return statusOnly(co_await sendEmpty("DELETE", QStringLiteral("api/shares/") + token));
}
