#include "CommandLine.h"

#include <QString>

#include <charconv>

namespace {
Failure usageError(const QString &text)
{
    return Failure{QStringLiteral("usage"), 1, text};
}

template <typename T>
bool number(const std::string &text, T &out)
{
    const auto [ptr, ec] = std::from_chars(text.data(), text.data() + text.size(), out);
    return ec == std::errc() && ptr == text.data() + text.size();
}
} // namespace

const char *CommandLine::usage()
{
    return "usage: aeroloom-server --library DIR [--listen HOST:PORT] [--auth none|basic|token]\n"
           "                       [--user U --password P] [--quota BYTES] [--no-samples]\n"
           "                       [--no-suggestions]\n"
           "       aeroloom-server --library DIR token create [--email ADDRESS]\n";
}

Result<CommandLine> CommandLine::parse(const std::vector<std::string> &args)
{
    CommandLine out;
    bool haveLibrary = false;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string &arg = args[i];
        const auto value = [&](std::string &into) {
            if (i + 1 >= args.size())
                return false;
            into = args[++i];
            return true;
        };
        std::string v;
        if (arg == "--help" || arg == "-h") {
            out.command = Command::Help;
            return out;
        } else if (arg == "--library") {
            if (!value(v))
                return usageError(QStringLiteral("--library needs a folder."));
            out.config.library = v;
            haveLibrary = true;
        } else if (arg == "--listen") {
            if (!value(v))
                return usageError(QStringLiteral("--listen needs HOST:PORT."));
            const auto colon = v.rfind(':');
            int port = -1;
            if (colon == std::string::npos || colon == 0 || !number(v.substr(colon + 1), port) || port < 0 || port > 65535)
                return usageError(QStringLiteral("--listen takes HOST:PORT, such as 127.0.0.1:8484."));
            out.config.host = v.substr(0, colon);
            out.config.port = port;
        } else if (arg == "--auth") {
            if (!value(v))
                return usageError(QStringLiteral("--auth needs none, basic or token."));
            if (v == "none")
                out.config.auth = AuthMode::None;
            else if (v == "basic")
                out.config.auth = AuthMode::Basic;
            else if (v == "token")
                out.config.auth = AuthMode::Token;
            else
                return usageError(QStringLiteral("--auth takes none, basic or token, not %1.").arg(QString::fromStdString(v)));
        } else if (arg == "--user") {
            if (!value(out.config.user))
                return usageError(QStringLiteral("--user needs a name."));
        } else if (arg == "--password") {
            if (!value(out.config.password))
                return usageError(QStringLiteral("--password needs a password."));
        } else if (arg == "--quota") {
            if (!value(v) || !number(v, out.config.quota) || out.config.quota < 0)
                return usageError(QStringLiteral("--quota takes a number of bytes."));
        } else if (arg == "--no-samples") {
            out.config.samples = false;
        } else if (arg == "--no-suggestions") {
            out.config.suggestions = false;
        } else if (arg == "--email") {
            if (!value(out.email))
                return usageError(QStringLiteral("--email needs an address."));
        } else if (arg == "token" && i + 1 < args.size() && args[i + 1] == "create") {
            out.command = Command::CreateToken;
            ++i;
        } else {
            return usageError(QStringLiteral("Unknown argument %1.").arg(QString::fromStdString(arg)));
        }
    }
    if (!haveLibrary)
        return usageError(QStringLiteral("--library DIR is required."));
    if (out.config.auth == AuthMode::Basic && (out.config.user.empty() || out.config.password.empty()))
        return usageError(QStringLiteral("--auth basic needs --user and --password."));
    if (out.config.auth != AuthMode::Basic && (!out.config.user.empty() || !out.config.password.empty()))
        return usageError(QStringLiteral("--user and --password go with --auth basic."));
    return out;
}
