#include "IngestPhase.h"

#include <cmath>

QString IngestPhase::text() const
{
    switch (kind) {
    case Kind::Processing:
        return QStringLiteral("Processing — ") + detail;
    case Kind::Uploading:
        return QStringLiteral("Uploading %1 %2%").arg(detail).arg(int(std::floor(progress.value_or(0) * 100)));
    case Kind::Done:
        if (detail == QLatin1String("client-provided") || detail == QLatin1String("ok"))
            return QStringLiteral("Done");
        return QStringLiteral("Done — ") + detail;
    case Kind::Failed:
        return QStringLiteral("Failed — ") + detail;
    case Kind::Waiting:
        return QStringLiteral("Waiting to upload");
    case Kind::Ready:
        return QStringLiteral("Ready to upload");
    case Kind::Committing:
        return QStringLiteral("Committing");
    case Kind::Skipped:
        return QStringLiteral("Already in library");
    }
    return {};
}
