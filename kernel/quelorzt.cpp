// QUELOR-ZT: the main program.

#include "kernel/end_signal.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/main_loop.hpp"
#include "kernel/project.hpp"

#include <fcntl.h>
#include <unistd.h>

/// Standard input, output and error that the program was started without read and write nothing;
/// otherwise the first files opened would take their places.
static void open_standard_streams() {
    int descriptor = 0;
    while (descriptor >= 0 && descriptor <= STDERR_FILENO)
        descriptor = open("/dev/null", O_RDWR);
    if (descriptor >= 0) close(descriptor);
}

int main() {
    open_standard_streams();
    quelor::watch_end_signals();
    quelor::start_clock();
    quelor::print_banner(quelor::unit_screen);
    quelor::main_loop("newprob");
}
