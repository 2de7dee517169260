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

namespace {
// Set on a reply that was aborted for the user; any other abort came from its transfer timeout.
constexpr const char *stoppedMark = "aeroloomStopped";
} // namespace

Failure transport(const QNetworkReply &reply)
{
    // The network layer ends a transfer that stood still for its whole timeout by aborting it,
    // with the same "Operation canceled" as a stop; only the mark tells the two apart.
    if (reply.error() == QNetworkReply::OperationCanceledError && !reply.property(stoppedMark).toBool())
        return timedOut();
    return {networkDomain, int(reply.error()), reply.errorString()};
}

Failure timedOut()
{
    return {networkDomain, QNetworkReply::TimeoutError, QStringLiteral("The request timed out.")};
}

void stop(QNetworkReply &reply)
{
    reply.setProperty(stoppedMark, true);
    reply.abort();
}

bool isCancelled(const Failure &f)
{
    return f.is(networkDomain, QNetworkReply::OperationCanceledError);
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
