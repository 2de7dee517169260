#include "APIClient.h"

#include "APIError.h"

#include <QNetworkReply>

#include <QCoroNetworkReply>

APIClient::APIClient(const QString &base, std::optional<QString> authHeader, QObject *parent,
                     std::shared_ptr<QNetworkAccessManager> network, std::chrono::milliseconds timeout)
    : QObject(parent)
    , m_base(base.endsWith(QLatin1Char('/')) ? base.chopped(1) : base)
    , m_authHeader(std::move(authHeader))
    , m_network(network ? std::move(network)
                        : std::shared_ptr<QNetworkAccessManager>(new QNetworkAccessManager, DeleteLater{}))
    , m_timeout(timeout)
{
    // Nothing is ever served from a cache: flight and clip lists change under the client.
    m_network->setCache(nullptr);
}

QUrl APIClient::url(const QString &relative) const
{
    return QUrl(m_base + QLatin1Char('/') + relative);
}

QNetworkRequest APIClient::request(const QUrl &url, std::chrono::milliseconds timeout) const
{
    QNetworkRequest req(url);
    if (m_authHeader)
        req.setRawHeader("Authorization", m_authHeader->toUtf8());
    req.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    req.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    req.setRawHeader("Accept-Encoding", "identity");
    req.setTransferTimeout(int(timeout.count() > 0 ? timeout.count() : m_timeout.count()));
    return req;
}

QNetworkRequest APIClient::jsonRequest(const QString &relative) const
{
    QNetworkRequest req = request(url(relative));
    req.setHeader(QNetworkRequest::ContentTypeHeader, QByteArrayLiteral("application/json"));
    return req;
}

Result<void> APIClient::judgeStatus(QNetworkReply &reply)
{
    const QVariant statusAttr = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute);
    // A reply that never got an HTTP status is a transport failure with its own words.
    if (!statusAttr.isValid())
        return APIError::transport(reply);
    const int status = statusAttr.toInt();
    if (status == 401)
        return APIError::unauthorized();
    if (status < 200 || status > 299)
        return APIError::status(status);
    // An HTTP status in range with a broken transfer (connection cut mid-body) is still a
    // transport failure.
    if (reply.error() != QNetworkReply::NoError && reply.error() < QNetworkReply::ContentAccessDenied)
        return APIError::transport(reply);
    return {};
}

Result<QByteArray> APIClient::judge(QNetworkReply &reply)
{
    if (auto status = judgeStatus(reply); !status)
        return status.failure();
    return reply.readAll();
}

QCoro::Task<> APIClient::awaitReply(QNetworkReply *reply, CancelToken *cancel)
{
    QMetaObject::Connection abort;
    if (cancel) {
        if (cancel->isCancelled())
            APIError::stop(*reply);
        abort = QObject::connect(cancel, &CancelToken::cancelled, reply, [reply] { APIError::stop(*reply); });
    }
    if (!reply->isFinished())
        co_await qCoro(reply).waitForFinished();
    QObject::disconnect(abort);
}

QCoro::Task<Result<QByteArray>> APIClient::finish(QNetworkReply *reply, CancelToken *cancel)
{
    const ReplyPtr owner(reply);
    co_await awaitReply(reply, cancel);
    co_return judge(*reply);
}

QCoro::Task<Result<QByteArray>> APIClient::perform(std::shared_ptr<QNetworkAccessManager> network,
                                                   QNetworkRequest request, QByteArray verb, QByteArray body,
                                                   CancelToken *cancel)
{
    QNetworkReply *started = verb == "GET" ? network->get(request) : network->sendCustomRequest(request, verb, body);
    co_return co_await finish(started, cancel);
}

QCoro::Task<Result<QByteArray>> APIClient::getJSON(QString relative, CancelToken *cancel) const
{
    return perform(m_network, request(url(relative)), QByteArrayLiteral("GET"), {}, cancel);
}

QCoro::Task<Result<QByteArray>> APIClient::sendJSON(QByteArray verb, QString relative, QByteArray body,
                                                    CancelToken *cancel) const
{
    return perform(m_network, jsonRequest(relative), std::move(verb), std::move(body), cancel);
}

QCoro::Task<Result<QByteArray>> APIClient::sendEmpty(QByteArray verb, QString relative, CancelToken *cancel) const
{
    return perform(m_network, request(url(relative)), std::move(verb), {}, cancel);
}

QCoro::Task<Result<Me>> APIClient::fetchMe() const
{
    const auto body = co_await getJSON(QStringLiteral("api/me"));
    if (!body)
        co_return body.failure();
    co_return Me::fromJson(*body);
}
