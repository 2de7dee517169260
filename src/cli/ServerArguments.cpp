#include "ServerArguments.h"

ServerArguments ServerArguments::take(QStringList &args)
{
    ServerArguments out;
    QString user, password, token;
    QStringList rest;
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString &arg = args[i];
        QString *target = arg == QLatin1String("--server")     ? &out.server
                          : arg == QLatin1String("--token")    ? &token
                          : arg == QLatin1String("--user")     ? &user
                          : arg == QLatin1String("--password") ? &password
                                                               : nullptr;
        if (target && i + 1 < args.size())
            *target = args[++i];
        else
            rest << arg;
    }
    args = rest;
    if (!token.isEmpty())
        out.authHeader = QStringLiteral("Bearer ") + token;
    else if (!user.isEmpty())
        out.authHeader = QStringLiteral("Basic ") + (user + QLatin1Char(':') + password).toUtf8().toBase64();
    return out;
}
