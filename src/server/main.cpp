// aeroloom-server: one flight library on this machine, served over HTTP.
#include "CommandLine.h"
#include "LibraryServer.h"

#include <QCoreApplication>

#include <csignal>
#include <cstdio>
#include <pthread.h>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    std::vector<std::string> args(argv + 1, argv + argc);
    const auto parsed = CommandLine::parse(args);
    if (!parsed) {
        std::fprintf(stderr, "aeroloom-server: %s\n%s", qPrintable(parsed.errorText()), CommandLine::usage());
        return 2;
    }
    if (parsed->command == CommandLine::Command::Help) {
        std::fputs(CommandLine::usage(), stdout);
        return 0;
    }

    // The request threads must not take SIGINT/SIGTERM: the main thread waits for them below.
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGINT);
    sigaddset(&stopSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);

    const ServerConfig &config = parsed->config;
    if (parsed->command == CommandLine::Command::CreateToken) {
        const auto token = LibraryServer::createToken(config, parsed->email);
        if (!token) {
            std::fprintf(stderr, "aeroloom-server: %s\n", qPrintable(token.errorText()));
            return 1;
        }
        std::printf("%s\n", token->c_str());
        return 0;
    }
    LibraryServer server(config);
    if (const auto opened = server.open(); !opened) {
        std::fprintf(stderr, "aeroloom-server: %s\n", qPrintable(opened.errorText()));
        return 1;
    }
    const auto port = server.start();
    if (!port) {
        std::fprintf(stderr, "aeroloom-server: %s\n", qPrintable(port.errorText()));
        return 1;
    }
    std::printf("Serving the library %s on %s\n", config.library.c_str(), server.baseUrl().c_str());
    if (config.auth == AuthMode::Token)
        std::printf("Sign in with e-mail (links land in %s/outbox), or make a token with:\n"
                    "  aeroloom-server --library %s token create\n",
                    config.library.c_str(), config.library.c_str());
    std::fflush(stdout);

    int signal = 0;
    sigwait(&stopSignals, &signal);
    server.stop();
    return 0;
}
