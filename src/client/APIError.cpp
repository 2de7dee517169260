#include "APIError.h"

#include <QNetworkReply>

namespace APIError {

Failure status(int code)
{
    return {domain, code, QStringLiteral("Server returned %1.").arg(code)};
}

Failure unauthorized()
{
    return {domain, unauthorizedCode,
            QStringLiteral("You’re not signed in — your session may have expired. Please sign in again.")};
}

Failure decoding(const QString &detail)
{
    Q_UNUSED(detail) // kept for debugging in a debugger; the user reads the fixed words
    return {decodeDomain, 0, QStringLiteral("The data couldn’t be read because it isn’t in the correct format.")};
}

Failure transport(const QNetworkReply &reply)
{
    return {networkDomain, int(reply.error()), reply.errorString()};
}

Failure badDownloadName(const QString &fileName)
{
    return {fileDomain, badFileName, QStringLiteral("“%1” isn’t a usable file name for a download.").arg(fileName)};
}

Failure downloadNotWritten(const QString &detail)
{
    return {fileDomain, cannotWrite, QStringLiteral("The download couldn’t be saved: %1").arg(detail)};
}

Failure downloadNotMoved(const QString &fileName)
{
    return {fileDomain, cannotMove, QStringLiteral("The download couldn’t be moved to “%1”.").arg(fileName)};
}

} // namespace APIError
