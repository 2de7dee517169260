#include "FlightUploader.h"

#include "APIClient.h"
#include "APIError.h"
#include "UploadError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QNetworkReply>

#include <QCoroNetworkReply>

#include <nlohmann/json.hpp>

using json = nlohmann::json;

namespace {

using ReplyPtr = std::unique_ptr<QNetworkReply, void (*)(QNetworkReply *)>;

ReplyPtr own(QNetworkReply *reply)
{
    return ReplyPtr(reply, [](QNetworkReply *r) { r->deleteLater(); });
}

/// The HTTP status of a reply, or nothing when the transfer itself failed: no reply at all, or
/// a good status whose body was cut off. A bad status stands even if the connection closed.
std::optional<int> httpStatus(const QNetworkReply &reply)
{
    const QVariant status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (!status.isValid())
        return std::nullopt;
    const bool transportBroke = reply.error() != QNetworkReply::NoError && reply.error() < QNetworkReply::ContentAccessDenied;
    if (transportBroke && status.toInt() >= 200 && status.toInt() <= 299)
        return std::nullopt;
    return status.toInt();
}

bool isRetriable(const Failure &failure, const CancelToken *cancel, int attempts)
{
    // A transfer that timed out is a transport failure like a dropped connection; only the
    // caller's stop is final.
    return !(cancel && cancel->isCancelled()) && failure.domain == APIError::networkDomain
        && !APIError::isCancelled(failure) && attempts < FlightUploader::maxAttempts;
}

Failure cancelledFailure()
{
    return {APIError::networkDomain, QNetworkReply::OperationCanceledError, QStringLiteral("Operation canceled")};
}

} // namespace

const QStringList FlightUploader::fileNames = {QStringLiteral("flight.json"), QStringLiteral("thumb.jpg"),
                                               QStringLiteral("moments.json"), QStringLiteral("proxy.mp4")};

FlightUploader::FlightUploader(std::shared_ptr<const APIClient> client, std::chrono::milliseconds retryUnit,
                               std::chrono::milliseconds timeoutFloor)
    : m_client(std::move(client))
    , m_retryUnit(retryUnit)
    , m_timeoutFloor(timeoutFloor)
{
}

std::chrono::milliseconds FlightUploader::transferTimeout(qint64 bytes, std::chrono::milliseconds floor)
{
    // 100 kB/s is the floor's 300 s for every 30 MB; a floor shortened by a test shortens both.
    constexpr double bytesPerFloor = 30'000'000;
    return std::max(floor, std::chrono::milliseconds(qint64(double(floor.count()) * (double(bytes) / bytesPerFloor))));
}

QCoro::Task<Result<FlightUploader::ServerLibrary>> FlightUploader::library() const
{
    auto reply = own(m_client->network()->get(m_client->request(m_client->url(QStringLiteral("api/flights")))));
    co_await APIClient::awaitReply(reply.get(), nullptr);
    const auto status = httpStatus(*reply);
    if (!status)
        co_return APIError::transport(*reply);
    if (*status != 200)
        co_return UploadError::rejected(*status, QStringLiteral("GET /api/flights failed"));
    const QByteArray body = reply->readAll();
    const json doc = json::parse(body.begin(), body.end(), nullptr, false);
    if (!doc.is_object() || !doc.contains("ids") || !doc["ids"].is_array())
        co_return APIError::decoding();
    ServerLibrary lib;
    for (const auto &id : doc["ids"]) {
        if (!id.is_string())
            co_return APIError::decoding();
        lib.ids.insert(QString::fromStdString(id.get<std::string>()));
    }
    for (auto [key, field] : {std::pair{"quota", &lib.quota}, std::pair{"used", &lib.used}}) {
        const auto it = doc.find(key);
        if (it == doc.end() || it->is_null())
            continue;
        if (!it->is_number())
            co_return APIError::decoding();
        *field = it->get<qint64>();
    }
    co_return lib;
}

QCoro::Task<Result<QString>> FlightUploader::upload(QString id, QString dir, Progress onFile, CancelToken *cancel) const
{
    for (const QString &name : fileNames) {
        const QString path = QDir(dir).filePath(name);
        const QFileInfo info(path);
        if (!info.exists())
            continue;  // a flight without a thumbnail simply has none
        const qint64 size = info.size();
        if (name == QLatin1String("proxy.mp4") && size > proxyLimit)
            co_return UploadError::proxyTooLarge(size);
        for (int attempts = 1;; ++attempts) {
            const auto sent = co_await sendFile(id, name, path, size, onFile, cancel);
            if (sent)
                break;
            if (!isRetriable(sent.failure(), cancel, attempts))
                co_return sent.failure();
            if (!co_await sleepFor(m_retryUnit * attempts, cancel))
                co_return cancelledFailure();
        }
    }
    co_return co_await commit(id, cancel);
}

QCoro::Task<Result<void>> FlightUploader::sendFile(QString id, QString name, QString path, qint64 size,
                                                   Progress onFile, CancelToken *cancel) const
{
    QNetworkRequest request = m_client->request(
        m_client->url(QStringLiteral("api/flights/%1/files/%2").arg(id, name)), transferTimeout(size, m_timeoutFloor));
    request.setHeader(QNetworkRequest::ContentTypeHeader, QByteArrayLiteral("application/octet-stream"));
    auto file = std::make_unique<QFile>(path);
    if (!file->open(QIODevice::ReadOnly))
        co_return Failure{APIError::networkDomain, QNetworkReply::UnknownContentError, file->errorString()};
    // A small file goes in one buffer: streamed, its headers and bytes leave in separate writes,
    // which TCP holds back for tens of milliseconds. The proxy is read from disk for as long as
    // the transfer runs and never held in memory.
    const bool small = size <= smallFileBytes;
    QNetworkReply *started = small ? m_client->network()->put(request, file->readAll())
                                   : m_client->network()->put(request, file.get());
    if (!small)
        file.release()->setParent(started);
    const auto reply = own(started);
    QObject::connect(reply.get(), &QNetworkReply::uploadProgress, reply.get(), [onFile, name](qint64 sent, qint64 total) {
        if (total > 0 && onFile)  // the final (0, 0) report says nothing
            onFile(name, double(sent) / double(total));
    });
    co_await APIClient::awaitReply(reply.get(), cancel);
    const auto status = httpStatus(*reply);
    if (!status)
        co_return APIError::transport(*reply);
    if (*status != 200)
        co_return UploadError::rejected(*status, UploadError::detailOf(reply->readAll()));
    if (onFile)
        onFile(name, 1.0);
    co_return Result<void>();
}

QCoro::Task<Result<QString>> FlightUploader::commit(QString id, CancelToken *cancel) const
{
    QNetworkRequest request = m_client->request(m_client->url(QStringLiteral("api/flights/%1/commit").arg(id)),
                                                std::chrono::seconds(300));
    auto reply = own(m_client->network()->post(request, QByteArray()));
    co_await APIClient::awaitReply(reply.get(), cancel);
    const auto status = httpStatus(*reply);
    if (!status)
        co_return APIError::transport(*reply);
    const QByteArray body = reply->readAll();
    if (*status == 413)
        co_return UploadError::quotaExceeded(UploadError::detailOf(body));
    if (*status != 200)
        co_return UploadError::rejected(*status, UploadError::detailOf(body));
    const json doc = json::parse(body.begin(), body.end(), nullptr, false);
    if (doc.is_object()) {
        const auto analysis = doc.find("analysis");
        if (analysis != doc.end() && analysis->is_string())
            co_return QString::fromStdString(analysis->get<std::string>());
    }
    co_return QStringLiteral("ok");
}

QCoro::Task<void> FlightUploader::discardStaging(QString id) const
{
    auto reply = own(m_client->network()->deleteResource(
        m_client->request(m_client->url(QStringLiteral("api/flights/%1/staging").arg(id)))));
    co_await APIClient::awaitReply(reply.get(), nullptr);
}
