// Media helpers of the client: player headers, asset URLs, the web-session cookie and
// downloads to a temporary file.
#include "APIClient.h"

#include "APIError.h"
#include "Wire.h"

#include <QDir>
#include <QNetworkReply>
#include <QTemporaryFile>

#include <cmath>

QStringList APIClient::mediaHeaders() const
{
    if (!m_authHeader)
        return {};
    return {QStringLiteral("Authorization: ") + *m_authHeader};
}

QString APIClient::ffmpegHeaders() const
{
    QString text;
    for (const QString &header : mediaHeaders())
        text += header + QStringLiteral("\r\n");
    return text;
}

QUrl APIClient::proxyURL(const QString &flightId, bool has480, bool hq) const
{
    const QString file = has480 && !hq ? QStringLiteral("proxy_480.mp4") : QStringLiteral("proxy.mp4");
    return url(QStringLiteral("flights/") + flightId + QLatin1Char('/') + file);
}

QUrl APIClient::flightThumbURL(const QString &flightId) const
{
    return url(QStringLiteral("flights/") + flightId + QStringLiteral("/thumb.jpg"));
}

QString APIClient::clipThumbPath(const QString &flightId, const QString &clipId, double start)
{
    return QStringLiteral("flights/%1/clipthumb_%2_%3.jpg").arg(flightId, clipId).arg(qint64(std::llround(start * 10)));
}

QUrl APIClient::poolClipThumbURL(const PoolClip &clip) const
{
    return clip.thumb ? url(*clip.thumb) : flightThumbURL(clip.flightId);
}

QCoro::Task<QByteArray> APIClient::imageBytes(QUrl url) const
{
    const auto network = m_network;
    const ReplyPtr reply(network->get(request(url)));
    co_await awaitReply(reply.get(), nullptr);
    if (!reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid())
        co_return QByteArray();
    co_return reply->readAll();
}

std::optional<QNetworkCookie> APIClient::webSessionCookieFor(const QString &base, const QByteArray &body,
                                                             const QDateTime &now)
{
    const auto j = Wire::parse(body);
    if (!j)
        return std::nullopt;
    QString name;
    QString token;
    qint64 maxAge = 0;
    if (!Wire::ObjectReader(*j).req("cookie", name).req("token", token).req("maxAge", maxAge).ok())
        return std::nullopt;
    const QString host = QUrl(base + QLatin1Char('/')).host();
    // What a cookie store would refuse: no name, or separators that would split the header.
    static const QString forbiddenInName = QStringLiteral("=;, \t\r\n");
    const auto hasAny = [](const QString &text, const QString &chars) {
        return std::any_of(text.begin(), text.end(), [&](QChar c) { return chars.contains(c); });
    };
    if (host.isEmpty() || name.isEmpty() || hasAny(name, forbiddenInName) || hasAny(token, QStringLiteral(";\r\n")))
        return std::nullopt;
    QNetworkCookie cookie(name.toUtf8(), token.toUtf8());
    cookie.setDomain(host);
    cookie.setPath(QStringLiteral("/"));
    cookie.setExpirationDate(now.addSecs(maxAge));
    cookie.setSecure(base.startsWith(QLatin1String("https")));
    return cookie;
}

QCoro::Task<std::optional<QNetworkCookie>> APIClient::webSessionCookie() const
{
    // Basic credentials get no web session, and no request is made for them.
    if (!m_authHeader || !m_authHeader->startsWith(QLatin1String("Bearer ")))
        co_return std::nullopt;
    if (QUrl(m_base + QLatin1Char('/')).host().isEmpty())
        co_return std::nullopt;
    const QString base = m_base;
    const auto network = m_network;
    const ReplyPtr reply(
        network->sendCustomRequest(request(url(QStringLiteral("api/auth/session"))), "POST",
                                   QByteArray()));
    co_await awaitReply(reply.get(), nullptr);
    // Exactly 200: any other reply, even a success, means no cookie.
    if (reply->error() != QNetworkReply::NoError
        || reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() != 200)
        co_return std::nullopt;
    co_return webSessionCookieFor(base, reply->readAll(), QDateTime::currentDateTimeUtc());
}

QCoro::Task<Result<QString>> APIClient::downloadToTemporary(QString relative, QString fileName,
                                                            CancelToken *cancel) const
{
    if (fileName.isEmpty() || fileName == QLatin1String(".") || fileName == QLatin1String("..")
        || fileName.contains(QLatin1Char('/')) || fileName.contains(QLatin1Char('\\')))
        co_return APIError::badDownloadName(fileName);
    const QDir temp(QDir::tempPath());
    const QString destination = temp.filePath(fileName);

    // The bytes go to a hidden file beside the destination, which takes the final name in one
    // rename once everything has arrived.
    QTemporaryFile part(temp.filePath(QStringLiteral(".aeroloom-download-XXXXXX")));
    if (!part.open())
        co_return APIError::downloadNotWritten(part.errorString());

    const auto network = m_network;
    const ReplyPtr reply(network->get(request(url(relative))));
    QString writeError;
    const auto drain = [&] {
        if (!reply->isOpen())  // aborted
            return;
        const QByteArray chunk = reply->readAll();
        if (writeError.isEmpty() && !chunk.isEmpty() && part.write(chunk) != chunk.size()) {
            writeError = part.errorString();
            reply->abort();
        }
    };
    const auto streaming = QObject::connect(reply.get(), &QNetworkReply::readyRead, reply.get(), drain);
    co_await awaitReply(reply.get(), cancel);
    QObject::disconnect(streaming);
    drain();

    if (!writeError.isEmpty())
        co_return APIError::downloadNotWritten(writeError);
    if (auto status = judgeStatus(*reply); !status)
        co_return status.failure();
    if (!part.flush())
        co_return APIError::downloadNotWritten(part.errorString());
    part.close();

    QFile::remove(destination);  // a leftover that can't be removed makes the rename fail below
    if (!part.rename(destination))
        co_return APIError::downloadNotMoved(destination);
    part.setAutoRemove(false);
    co_return destination;
}
