#include "DeviceLogin.h"

#include "APIClient.h"
#include "APIError.h"

#include <QHostInfo>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

#include <QCoroNetworkReply>

#include <nlohmann/json.hpp>

namespace DeviceLogin {

Failure server(int status)
{
    return {domain, int(Case::server), QStringLiteral("Server returned %1.").arg(status)};
}

Failure unsupported()
{
    return {domain, int(Case::unsupported),
            QStringLiteral("This server doesn't support email sign-in — use Password (classic box) or paste an API token.")};
}

Failure expired()
{
    return {domain, int(Case::expired),
            QStringLiteral("The sign-in link expired before it was clicked — send a fresh one.")};
}

QString deviceName()
{
    const QString host = QHostInfo::localHostName().trimmed();
    if (!host.isEmpty())
        return host;
#ifdef Q_OS_MACOS
    return QStringLiteral("Mac");
#else
    return QStringLiteral("Computer");
#endif
}

namespace {

/// POST of a small JSON object. Only exactly 200 is good here: the device endpoints answer
/// nothing else on success, and 404/405 mean the server has none.
QCoro::Task<Result<QByteArray>> post(QNetworkAccessManager *network, QString base, QString path,
                                     nlohmann::json body, CancelToken *cancel)
{
    const QUrl url(base + QLatin1Char('/') + path, QUrl::StrictMode);
    if (!url.isValid() || url.scheme().isEmpty())
        co_return server(0);
    QNetworkRequest req(url);
    req.setHeader(QNetworkRequest::ContentTypeHeader, QByteArrayLiteral("application/json"));
    req.setTransferTimeout(int(std::chrono::milliseconds(APIClient::requestTimeout).count()));
    req.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    const QByteArray bytes = QByteArray::fromStdString(body.dump());
    QNetworkReply *reply = network->post(req, bytes);
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

    const QVariant statusAttr = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (!statusAttr.isValid()) {
        // No HTTP status at all: a transport failure keeps its own words; a reply of some other
        // protocol is the server's fault.
        if (reply->error() != QNetworkReply::NoError)
            co_return APIError::transport(*reply);
        co_return server(0);
    }
    const int status = statusAttr.toInt();
    if (status == 404 || status == 405)
        co_return unsupported();
    if (status != 200)
        co_return server(status);
    if (reply->error() != QNetworkReply::NoError)
        co_return APIError::transport(*reply);
    co_return reply->readAll();
}

/// The string at `key` of a JSON object body, if the body is one and holds it.
std::optional<QString> stringField(const QByteArray &body, const char *key)
{
    const auto json = nlohmann::json::parse(body.constBegin(), body.constEnd(), nullptr, false);
    if (!json.is_object())
        return std::nullopt;
    const auto it = json.find(key);
    if (it == json.end() || !it->is_string())
        return std::nullopt;
    return QString::fromStdString(it->get<std::string>());
}

} // namespace

QCoro::Task<Result<QString>> request(QNetworkAccessManager *network, QString email, QString base, CancelToken *cancel)
{
    nlohmann::json body = {{"email", email.toStdString()}, {"name", deviceName().toStdString()}};
    const auto reply = co_await post(network, base, QStringLiteral("api/auth/device/request"), std::move(body), cancel);
    if (!reply)
        co_return reply.failure();
    const auto secret = stringField(*reply, "secret");
    if (!secret)
        co_return APIError::decoding(QStringLiteral("secret"));
    co_return *secret;
}

QCoro::Task<Result<std::optional<QString>>> poll(QNetworkAccessManager *network, QString secret, QString base,
                                                 CancelToken *cancel, Timing timing)
{
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + timing.deadline;
    const auto cancelled = [cancel] { return cancel && cancel->isCancelled(); };

    while (!cancelled() && Clock::now() < deadline) {
        nlohmann::json body = {{"secret", secret.toStdString()}};
        const auto reply = co_await post(network, base, QStringLiteral("api/auth/device/poll"), std::move(body), cancel);
        if (!reply) {
            if (isDeviceLoginFailure(reply.failure()))
                co_return reply.failure();
            // Anything else (no connection, a cut reply) counts as no answer yet.
        } else {
            const auto status = stringField(*reply, "status");
            if (!status) {
                // Unreadable reply: forgiven like a transport failure.
            } else if (*status == QLatin1String("ok")) {
                if (const auto token = stringField(*reply, "token"))
                    co_return std::optional<QString>(*token);
                co_return expired();
            } else if (*status != QLatin1String("pending")) {
                co_return expired();
            }
        }
        if (cancelled())
            break;
        co_await sleepFor(timing.spacing, cancel);
    }
    if (cancelled())
        co_return std::optional<QString>();
    co_return expired();
}

} // namespace DeviceLogin
