// aeroloom-cli: the headless face of the flight tools. `aeroloom-cli --help` lists the subcommands.
#include "CliCommand.h"

#include <QCoreApplication>
#include <QCoroTask>

namespace {

QString overview(const QList<CliCommand> &commands)
{
    QString text = QStringLiteral("usage: aeroloom-cli <command> [arguments]\n\ncommands:\n");
    for (const CliCommand &c : commands)
        text += QStringLiteral("  %1  %2\n").arg(c.name, -10).arg(c.summary);
    text += QStringLiteral("\n`aeroloom-cli <command> --help` tells more about one command.\n");
    return text;
}

bool wantsHelp(const QStringList &args)
{
    return args.contains(QStringLiteral("--help")) || args.contains(QStringLiteral("-h"));
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("aeroloom-cli"));
    QStringList args = app.arguments().mid(1);
    const QList<CliCommand> commands = cliCommands();

    if (args.isEmpty() || args.first() == QLatin1String("--help") || args.first() == QLatin1String("-h")) {
        CliIO::out(overview(commands).toUtf8());
        return args.isEmpty() ? 2 : 0;
    }
    const QString name = args.takeFirst();
    for (const CliCommand &command : commands) {
        if (command.name != name)
            continue;
        if (wantsHelp(args)) {
            CliIO::out(command.usage.toUtf8());
            return 0;
        }
        return QCoro::waitFor(command.run(args));
    }
    CliIO::err(QStringLiteral("aeroloom-cli: unknown command “%1”").arg(name));
    CliIO::err(overview(commands));
    return 2;
}
