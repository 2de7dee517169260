#include "ImportSummary.h"

#include <QStringList>

namespace ImportSummary {

namespace {
QString plural(int n)
{
    return n == 1 ? QString() : QStringLiteral("s");
}
} // namespace

QString readyFooter(int ready)
{
    return QStringLiteral("%1 flight%2 ready — nothing has been added yet.").arg(ready).arg(plural(ready));
}

QString finished(int added, int alreadyThere, int failed)
{
    QStringList pieces;
    if (added >= 1)
        pieces << QStringLiteral("%1 flight%2 added to your library").arg(added).arg(plural(added));
    if (alreadyThere >= 1)
        pieces << QStringLiteral("%1 already there").arg(alreadyThere);
    if (failed >= 1)
        pieces << (pieces.isEmpty() ? QStringLiteral("%1 flight%2 didn't make it").arg(failed).arg(plural(failed))
                                    : QStringLiteral("%1 didn't make it").arg(failed));
    const QString body = pieces.isEmpty() ? QStringLiteral("Nothing to add") : pieces.join(QStringLiteral(", "));
    return body + (failed >= 1 ? QStringLiteral(" — try again any time.") : QStringLiteral(". You can close this window."));
}

} // namespace ImportSummary
