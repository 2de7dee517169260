#include "UploadError.h"

#include <QStringDecoder>

#include <nlohmann/json.hpp>

namespace UploadError {

Failure quotaExceeded(const QString &detail)
{
    return {domain, QuotaExceeded, QStringLiteral("Storage quota exceeded — ") + detail};
}

Failure rejected(int status, const QString &detail)
{
    return {domain, Rejected, QStringLiteral("Server rejected the flight (%1): %2").arg(status).arg(detail)};
}

Failure proxyTooLarge(qint64 bytes)
{
    return {domain, ProxyTooLarge,
            QStringLiteral("proxy.mp4 is %1 MB — over the 2 GB per-file limit").arg(bytes / 1'000'000)};
}

QString detailOf(const QByteArray &body)
{
    const auto doc = nlohmann::json::parse(body.begin(), body.end(), nullptr, false);
    if (doc.is_object()) {
        const auto detail = doc.find("detail");
        if (detail != doc.end() && detail->is_string())
            return QString::fromStdString(detail->get<std::string>());
    }
    // Bytes that are not valid UTF-8 give no detail at all rather than replacement marks.
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = utf8.decode(body.left(200));
    return utf8.hasError() ? QString() : text;
}

} // namespace UploadError
