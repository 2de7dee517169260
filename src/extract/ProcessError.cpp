#include "ProcessError.h"

#include <QStringList>

namespace ProcessError {

QString text(const QString &tool, int status, const QString &stdErr)
{
    QString words = tool + QStringLiteral(" exited ") + QString::number(status);
    QStringList lines;
    for (const QString &line : stdErr.split(QLatin1Char('\n'))) {
        if (!line.trimmed().isEmpty())
            lines.append(line);
    }
    if (!lines.isEmpty())
        words += QStringLiteral(":\n") + lines.mid(qMax(0, lines.size() - 4)).join(QLatin1Char('\n'));
    return words;
}

Failure failed(const QString &tool, int status, const QString &stdErr)
{
    return Failure{domain, status, text(tool, status, stdErr)};
}

Failure startFailed(const QString &program, const QString &reason)
{
    return Failure{domain, startFailedCode, program + QStringLiteral(" could not be started: ") + reason};
}

} // namespace ProcessError
