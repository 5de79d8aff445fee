#include "browser/TerminationSignals.h"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace
{
int pipeEnds[2] = {-1, -1};

// A signal handler may do next to nothing; a byte in a pipe wakes the event loop.
void noteSignal(int)
{
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = write(pipeEnds[1], &byte, 1);
}

int openPipe()
{
    return pipe2(pipeEnds, O_CLOEXEC | O_NONBLOCK) == 0 ? pipeEnds[0] : -1;
}
} // namespace

TerminationSignals::TerminationSignals() : _notifier(openPipe(), QSocketNotifier::Read)
{
    connect(&_notifier, &QSocketNotifier::activated, this, [this] {
        char byte = 0;
        if (read(pipeEnds[0], &byte, 1) == 1)
            Q_EMIT received();
    });
    struct sigaction action = {};
    action.sa_handler = noteSignal;
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaction(signal, &action, nullptr);
}
