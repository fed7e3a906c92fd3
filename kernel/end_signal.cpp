// Signals that ask the program to end.
#include "kernel/end_signal.hpp"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace quelor {

namespace {

volatile std::sig_atomic_t received = 0;
volatile std::sig_atomic_t source = STDIN_FILENO;
int nothing = -1; // a descriptor with nothing to read; set before the first signal

/// The input becomes empty under a read that waits, or is about to: that read is taken up again and
/// finds its end. A flag alone would not be seen by a read that begins just after the signal.
void note_end_signal(int signal) {
    const int saved = errno;
    received = signal;
    dup2(nothing, source);
    errno = saved;
}

void watch(int signal) {
    struct sigaction action {};
    if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN) return;
    action = {};
    action.sa_handler = note_end_signal;
    action.sa_flags = SA_RESTART; // a write is not cut short
    sigaction(signal, &action, nullptr);
}

} // namespace

void watch_end_signals() {
    nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
    watch(SIGHUP);
    watch(SIGTERM);
}

int end_signal() {
    return received;
}

void reading_from(int descriptor) {
    source = descriptor;
}

} // namespace quelor
