// QUELOR-ZT: the main program.

#include "kernel/fortfile.hpp"
#include "kernel/main_loop.hpp"
#include "kernel/project.hpp"

int main() {
    quelor::start_clock();
    quelor::print_banner(quelor::unit_screen);
    quelor::main_loop("newprob");
}
