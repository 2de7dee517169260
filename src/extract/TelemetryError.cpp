#include "TelemetryError.h"

namespace TelemetryError {

Failure noTelemetry(const QString &file)
{
    return {domain, NoTelemetry, QStringLiteral("No GPS telemetry found in %1 — is this a DJI clip?").arg(file)};
}

Failure noGPSFix(const QString &file, qint64 samples)
{
    return {domain, NoGPSFix,
            QStringLiteral("No GPS fix for the whole flight in %1 — all %2 samples read 0,0 (indoor flight?).")
                .arg(file)
                .arg(samples)};
}

Failure unknownProtocol(const QString &file, const QStringList &protocols)
{
    return {domain, UnknownProtocol,
            QStringLiteral("%1: telemetry format %2 is not decoded by exiftool yet (new DJI model?)")
                .arg(file, protocols.join(QStringLiteral(", ")))};
}

Failure badJSON()
{
    return {domain, BadJSON, QStringLiteral("exiftool returned unparseable JSON")};
}

} // namespace TelemetryError
