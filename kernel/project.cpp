// The project in hand, its log, and the ways out of the program.

#include "kernel/project.hpp"

#include "kernel/dbfgen.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/iof.hpp"
#include "kernel/utilities.hpp"

#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace quelor {

namespace {

constexpr std::size_t name_limit = 127;
constexpr int name_tries = 3;

struct ProjectState {
    std::string name;
    std::FILE* log = nullptr;
    bool log_on = false;
    std::clock_t clock_start = 0;
};

ProjectState state;

bool ask_project_name() {
    for (int attempt = 1; attempt <= name_tries; ++attempt) {
        std::string line;
        if (!read_raw_line("    Enter project name: ", LineKind::data, line) &&
            input_is_console()) {
            write_text(unit_screen, "\n");
            final_exit(false);
        }
        const auto first = line.find_first_not_of(' ');
        if (first == std::string::npos) continue;
        line.resize(line.find_last_not_of(' ') + 1);
        set_project_name(std::string_view(line).substr(first));
        close_log();
        if (!open_log()) return false;
        set_log_on(true);
        return true;
    }
    return false;
}

void open_output_file() {
    write_unit(unit_screen,
               "10(/, '        A log of interactive commands will be kept in file ', a, /,"
               "               '        The output will be in file ', a, /)",
               {log_name(), state.name + ".out"});
    if (fortopen_ext(unit_output, ".out", "UNKNOWN", "FORMATTED") == 0) return;
    print_screen(" \n\tError opening output file - Program must shutdown\n");
    final_exit(true);
}

} // namespace

std::string_view project_name() {
    return state.name;
}

void set_project_name(std::string_view name) {
    state.name = name.substr(0, name_limit);
}

void new_project() {
    db_clear();
    if (!ask_project_name()) {
        print_screen(" \n\tError initiating new project\n\t\n\tProgram must shutdown\n");
        final_exit(true);
    }
    close_unit(unit_output);
    open_output_file();
    print_banner(unit_output);
}

void save_database(std::string_view name) {
    if (!db_save(name)) return print_both(" \n\tError saving database file\n");
    write_unit(unit_screen, "10(/, '    Database saved in file ', a, /)",
               {std::string(name) + ".db"});
}

void shutdown() {
    save_database(project_name());
    print_screen(" \n\tProgram must shutdown\n");
    final_exit(true);
}

void final_exit(bool wait) {
    close_unit(unit_output);
    close_log();
    close_all_inputs();
    db_clear();
    if (wait) {
        std::string line;
        read_raw_line("Press RETURN to complete shutdown of program.\n", LineKind::answer, line);
    }
    close_all_units();
    std::exit(EXIT_SUCCESS);
}

// A log that cannot be written to any more is given up with a message; the session goes on.
void log_line(std::string_view line) {
    if (!state.log || !state.log_on) return;
    std::fwrite(line.data(), 1, line.size(), state.log);
    std::fputc('\n', state.log);
    if (std::fflush(state.log) == 0) return;
    state.log_on = false;
    print_both(" \n\tError writing log file; logging is turned off\n");
}

bool log_is_open() {
    return state.log != nullptr;
}
bool log_on() {
    return state.log_on;
}
void set_log_on(bool on) {
    state.log_on = on;
}
std::string log_name() {
    return state.name + ".log";
}

bool open_log() {
    close_log();
    state.log = std::fopen(log_name().c_str(), "a");
    return log_is_open();
}

void close_log() {
    if (state.log) std::fclose(state.log);
    state.log = nullptr;
}

void start_clock() {
    state.clock_start = std::clock();
}

double cpu_seconds() {
    return static_cast<double>(std::clock() - state.clock_start) / CLOCKS_PER_SEC;
}

} // namespace quelor
