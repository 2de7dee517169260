#include "APIClient.h"

#include "APIError.h"

#include <QNetworkReply>
#include <QPointer>

#include <QCoroNetworkReply>

APIClient::APIClient(const QString &base, std::optional<QString> authHeader, QObject *parent)
    : QObject(parent)
    , m_base(base.endsWith(QLatin1Char('/')) ? base.chopped(1) : base)
    , m_authHeader(std::move(authHeader))
    , m_network(std::make_unique<QNetworkAccessManager>())
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
    if (timeout.count() > 0)
        req.setTransferTimeout(int(timeout.count()));
    return req;
}

Result<QByteArray> APIClient::judge(QNetworkReply &reply)
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
    return reply.readAll();
}

QCoro::Task<Result<QByteArray>> APIClient::finish(QNetworkReply *reply, CancelToken *cancel)
{
    std::unique_ptr<QNetworkReply, void (*)(QNetworkReply *)> owner(reply, [](QNetworkReply *r) { r->deleteLater(); });
    QMetaObject::Connection abort;
    if (cancel) {
        if (cancel->isCancelled())
            reply->abort();
        abort = QObject::connect(cancel, &CancelToken::cancelled, reply, &QNetworkReply::abort);
    }
    if (!reply->isFinished())
        co_await qCoro(reply).waitForFinished();
    QObject::disconnect(abort);
    co_return judge(*reply);
}

QCoro::Task<Result<QByteArray>> APIClient::getJSON(QString relative, CancelToken *cancel) const
{
    co_return co_await finish(m_network->get(request(url(relative))), cancel);
}

QCoro::Task<Result<QByteArray>> APIClient::sendJSON(QByteArray verb, QString relative, QByteArray body,
                                                    CancelToken *cancel) const
{
    QNetworkRequest req = request(url(relative), requestTimeout);
    req.setHeader(QNetworkRequest::ContentTypeHeader, QByteArrayLiteral("application/json"));
    co_return co_await finish(m_network->sendCustomRequest(req, verb, body), cancel);
}

QCoro::Task<Result<QByteArray>> APIClient::sendEmpty(QByteArray verb, QString relative, CancelToken *cancel) const
{
    co_return co_await finish(m_network->sendCustomRequest(request(url(relative), requestTimeout), verb), cancel);
}

QCoro::Task<Result<Me>> APIClient::fetchMe() const
{
    const auto body = co_await getJSON(QStringLiteral("api/me"));
    if (!body)
        co_return body.failure();
    co_return Me::fromJson(*body);
}
