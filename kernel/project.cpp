// The project in hand, its log, and the ways out of the program.

#include "kernel/project.hpp"

#include "kernel/dbfgen.hpp"
#include "kernel/end_signal.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/iof.hpp"
#include "kernel/process_state.hpp"
#include "kernel/utilities.hpp"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace quelor {

namespace {

constexpr std::size_t name_limit = 127;
constexpr int name_tries = 3;

struct ProjectState {
    std::string name;
    int lock = -1; // a descriptor of the log that bears the lock on the project
    std::FILE* log = nullptr;
    bool log_on = false;
    std::clock_t clock_start = 0;

    ~ProjectState() {
        if (log) std::fclose(log);
        if (lock >= 0) close(lock);
    }
};

ProjectState& state() {
    return process_state<ProjectState>();
}

bool same_file(int one, int other) {
    struct stat a {};
    struct stat b {};
    return fstat(one, &a) == 0 && fstat(other, &b) == 0 && a.st_dev == b.st_dev &&
           a.st_ino == b.st_ino;
}

/// Takes the project for this session; false when another session has it. The lock is the system's:
/// it goes with the process, however that ends. A log that cannot be opened is noticed later, and
/// where the file system has no locks the session goes on without one.
bool lock_project() {
    const int file = open(log_name().c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0666);
    const bool ours = file < 0 || same_file(file, state().lock);
    if (!ours && flock(file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        close(file);
        return false;
    }
    const int other = ours ? file : std::exchange(state().lock, file);
    if (other >= 0) close(other);
    return true;
}

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
        if (!lock_project()) {
            print_screen(" \n\tProject " + state().name +
                         " is in use by another session; give another name\n");
            continue;
        }
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
               {log_name(), state().name + ".out"});
    if (fortopen_ext(unit_output, ".out", "UNKNOWN", "FORMATTED") == 0) return;
    print_screen(" \n\tError opening output file - Program must shutdown\n");
    final_exit(true);
}

} // namespace

std::string_view project_name() {
    return state().name;
}

void set_project_name(std::string_view name) {
    state().name = name.substr(0, name_limit);
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

bool save_database(std::string_view name) {
    const std::string file = std::string(name) + ".db";
    if (db_save(name)) {
        write_unit(unit_screen, "10(/, '    Database saved in file ', a, /)", {file});
        return true;
    }
    print_both(" \n\tError saving database file\n");
    std::error_code ignored;
    if (std::filesystem::exists(file, ignored) && !std::filesystem::is_regular_file(file, ignored))
        print_both(" \n\t" + file + " is a folder or a pipe; save under another name\n");
    return false;
}

void shutdown() {
    const bool saved = save_database(project_name());
    print_screen(" \n\tProgram must shutdown\n");
    if (!saved) exit_unsaved(true);
    final_exit(true);
}

/// What is in memory goes to a file beside that of the project.
static void rescue_database() {
    if (db_next({}).name.empty()) return;
    const std::string name = state().name + ".rescue";
    if (!db_save(name)) return print_both(" \n\tError saving rescue file\n");
    write_both("10(/, '    Database rescued in file ', a, /)", {name + ".db"});
}

void exit_unsaved(bool wait, int status) {
    rescue_database();
    final_exit(wait, status);
}

void obey_end_signal() {
    const int signal = end_signal();
    if (signal == 0) return;
    std::signal(SIGPIPE, SIG_IGN); // whoever read the screen may have gone as well
    exit_unsaved(false, 128 + signal);
}

void checkpoint() {
    flush_unit(unit_screen);
    flush_unit(unit_output);
    obey_end_signal();
}

void final_exit(bool wait, int status) {
    close_unit(unit_output);
    close_log();
    close_all_inputs();
    db_clear();
    if (wait) {
        std::string line;
        read_raw_line("Press RETURN to complete shutdown of program.\n", LineKind::answer, line);
    }
    close_all_units();
    std::exit(status);
}

// A log that cannot be written to any more is given up with a message; the session goes on.
void log_line(std::string_view line) {
    if (!state().log || !state().log_on) return;
    std::fwrite(line.data(), 1, line.size(), state().log);
    std::fputc('\n', state().log);
    if (std::fflush(state().log) == 0) return;
    state().log_on = false;
    print_both(" \n\tError writing log file; logging is turned off\n");
}

bool log_is_open() {
    return state().log != nullptr;
}
bool log_on() {
    return state().log_on;
}
void set_log_on(bool on) {
    state().log_on = on;
}
std::string log_name() {
    return state().name + ".log";
}

bool open_log() {
    close_log();
    state().log = std::fopen(log_name().c_str(), "ae");
    return log_is_open();
}

void close_log() {
    if (state().log) std::fclose(state().log);
    state().log = nullptr;
}

void start_clock() {
    state().clock_start = std::clock();
}

double cpu_seconds() {
    return static_cast<double>(std::clock() - state().clock_start) / CLOCKS_PER_SEC;
}

} // namespace quelor
