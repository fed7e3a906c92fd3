// The project: its name, output and log files, and the ways out of the program.
#pragma once

#include <cstdlib>
#include <string>
#include <string_view>

namespace quelor {

/// Name of the current project, at most 127 characters; the stem of every file.
std::string_view project_name();
void set_project_name(std::string_view name); // for tests and new_project

/// Starts a project: empties the database, asks for the name, opens the log and the output file. A
/// failure ends the program.
void new_project();

/// Fatal path: saves the database, says so on the screen, waits for RETURN and stops.
[[noreturn]] void shutdown();
/// Closes everything and stops; `wait` asks for RETURN first.
[[noreturn]] void final_exit(bool wait, int status = EXIT_SUCCESS);
/// The final exit where the database is not saved though nobody asked for that: what is in memory
/// goes to "<project>.rescue.db", and the good file stays as it is.
[[noreturn]] void exit_unsaved(bool wait, int status = EXIT_SUCCESS);
/// Ends the program when SIGHUP or SIGTERM has come, with status 128 + signal, as exit_unsaved.
void obey_end_signal();
/// Between two frequencies or steps of a long command: what was printed goes to its file, and an
/// end signal is obeyed.
void checkpoint();

/// Log of console lines.
void log_line(std::string_view line);
bool log_is_open();
bool log_on();
void set_log_on(bool on);
bool open_log(); ///< "<project>.log", to be added to
void close_log();
std::string log_name();

void start_clock();
double cpu_seconds(); ///< since the start of the program

/// Prints the program's title on a unit.
void print_banner(int unit);

/// Writes the database to "<name>.db"; false when the file could not be written whole, is
/// write-protected or is none (a folder, a pipe). The earlier file stays when the new one fails.
bool db_save(std::string_view name);
/// Saves to "<name>.db" and says how it went, as its answer does: `save`, `savequit` and the fatal
/// path.
bool save_database(std::string_view name);
/// Adds the arrays of "<name>.db"; false when it cannot be opened or is damaged.
bool db_read(std::string_view name);
/// Long listing of the whole database on both units, as printed on a fatal path.
void list_database();

} // namespace quelor
