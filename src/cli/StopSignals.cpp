#include "StopSignals.h"

#include <QSocketNotifier>

#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace {
int pipeEnds[2] = {-1, -1};

void onSignal(int)
{
    const char byte = 1;
    // Only async-signal-safe work here: the event loop does the rest.
    [[maybe_unused]] const auto written = ::write(pipeEnds[0], &byte, 1);
}
} // namespace

StopSignals::StopSignals(QObject *parent)
    : QObject(parent)
{
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, pipeEnds) != 0)
        return;
    m_notifier = new QSocketNotifier(pipeEnds[1], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, [this] {
        char byte = 0;
        [[maybe_unused]] const auto read = ::read(pipeEnds[1], &byte, 1);
        Q_EMIT stopRequested();
    });
    struct sigaction action = {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

StopSignals::~StopSignals()
{
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
    if (pipeEnds[0] >= 0) {
        ::close(pipeEnds[0]);
        ::close(pipeEnds[1]);
        pipeEnds[0] = pipeEnds[1] = -1;
    }
}
