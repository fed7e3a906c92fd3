// The general commands: project, batch files, log, time, files and the operating system.

#include "kernel/alias.hpp"
#include "kernel/condit.hpp"
#include "kernel/dbfgen.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/help.hpp"
#include "kernel/iof.hpp"
#include "kernel/project.hpp"
#include "kernel/utilities.hpp"
#include "matrix/fileio.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <sys/wait.h>

namespace quelor {

namespace {

void cmd_new_project(std::string_view) {
    new_project();
}

// --- batch input

/// Tries the name, then the name with (or the project's batch file without) its extension. Files
/// opened while a loop is replayed do not echo under their first name.
bool open_batch_file(std::string_view name, bool echo) {
    const bool first_echo = echo && !loop_is_replayed();
    if (is_blank(name)) {
        return open_input_file(std::string(project_name()) + ".txt", first_echo) > 0 ||
               open_input_file(project_name(), echo) > 0;
    }
    if (open_input_file(name, first_echo) > 0) return true;
    const bool may_extend = name.find(".txt") == std::string_view::npos && name.size() < 46;
    return may_extend && open_input_file(std::string(name) + ".txt", echo) > 0;
}

void cmd_filein(std::string_view) {
    if (!open_batch_file(get_arg(1), !has_flag(" -noecho")))
        print_both(" \n\tError opening input file\n");
}

void cmd_return(std::string_view) {
    return_from_input();
}

void cmd_login(std::string_view) {
    if (!input_is_console()) return print_both("         Login command in file ignored\n");
    const bool echo = !has_flag(" -noecho");
    close_log();
    if (open_input_file(log_name(), echo) > 0) return;
    print_both(" \n\tError opening log file\n");
    open_log();
}

// --- leaving

/// While the log is replayed it is an input file and not open for writing; quit then returns to it.
void quit_program(bool save) {
    const bool lost = save && !save_database(project_name());
    const bool ends = log_is_open() || input_is_console();
    if (ends && lost) exit_unsaved(false);
    if (ends) final_exit(false);
    close_inputs_from(1);
    set_echo_flag(true);
}

void cmd_quit(std::string_view) {
    quit_program(false);
}
void cmd_savequit(std::string_view) {
    quit_program(true);
}

// --- the project and its log

void cmd_name(std::string_view) {
    write_unit(unit_screen, "(2x, a)", {project_name()});
    if (has_flag(" -f")) write_unit(unit_output, "(2x, a)", {project_name()});
}

void cmd_logfile(std::string_view) {
    set_log_on(!has_flag(" -off"));
}

void cmd_tivla_version(std::string_view) {
    print_both(" \nTIVLA version is 24.0\n");
}

// --- time

void cmd_date(std::string_view) {
    const std::time_t now = std::time(nullptr);
    const std::string_view text = std::string_view(std::ctime(&now)).substr(0, 24);
    if (!has_flag(" -noprint")) write_both("(a80,/)", {text});
    const auto arg = get_arg(1);
    if (is_blank(arg)) return;
    std::ranges::copy(text, create_matrix<char>(arg, static_cast<int>(text.size()), 0).data);
}

void cmd_time(std::string_view) {
    const std::string arg1(get_arg(1)), arg2(get_arg(2)), arg3(get_arg(3));
    const auto now = static_cast<double>(static_cast<float>(cpu_seconds())); // in single precision
    create_real_scalar(arg1, now);
    if (is_blank(arg3) || !array_exists(arg2)) return;
    create_real_scalar(arg3, now - get_real(arg2));
}

// --- files and the operating system

void cmd_rm_file(std::string_view) {
    const auto arg = get_arg(1);
    if (is_blank(arg)) return print_both(" \n\tOne arg required\n");
    std::string name(arg);
    if (has_flag(" -ext")) name = std::string(project_name()) + "." + name;
    if (std::remove(name.c_str()) != 0) print_both(" \n\tFile could not be removed\n");
}

void cmd_rename_file(std::string_view) {
    const std::string from(get_arg(1)), to(get_arg(2));
    if (is_blank(to)) return print_both(" \n\tTwo args required\n");
    if (std::rename(from.c_str(), to.c_str()) != 0) print_both(" \n\tFile could not be renamed\n");
}

void cmd_flush(std::string_view) {
    int unit = unit_output;
    get_int_par(" unit=", unit);
    flush_unit(unit);
}

void cmd_system_command(std::string_view) {
    const auto arg = get_arg(1);
    if (is_blank(arg)) return;
    flush_unit(unit_screen);
    // The result is not reported.
    const int status = std::system(std::string(arg.substr(0, 80)).c_str());
    if (WIFSIGNALED(status)) write_text(unit_screen, "\n"); // ended within a line, by Ctrl-C
}

constexpr Command project_row[] = {
    {.words = {"new_project", "newproj", "newprob"},
     .run = cmd_new_project,
     .summary = "starts a project",
     .help =
         "Command Syntax\n\tnew_project\n\n"
         "Clears the database and starts a project; its name is asked for. The database of the "
         "project before is not saved. The lines that are typed are added to the file "
         "\"name.log\", and the output goes to the file \"name.out\", which is written over.\n\n"
         "A project is open in one session at a time; another one is asked for a new name.\n\n"
         "In a batch file the next line is the project name.\n\n"
         "Example\n\tnew_project\n\tbarge\n\n"
         "See Also\n\tname?, save, clear\n"},
    {.words = {"filein"},
     .run = cmd_filein,
     .summary = "reads commands from a file",
     .help =
         "Command Syntax\n\tfilein [filename] [-noecho]\n\n"
         "Reads commands from a file until its end or a return command. Without a file name the "
         "file is \"project_name.txt\", or else \"project_name\". The extension .txt can be left "
         "out. With -noecho the commands are not shown on the screen.\n\n"
         "A file can contain filein commands, up to 28 levels.\n\n"
         "Example\n\tfilein mesh.txt -noecho\n\n"
         "See Also\n\treturn, login\n"},
    {.words = {"return"},
     .run = cmd_return,
     .summary = "closes the current input file",
     .help = "Command Syntax\n\treturn\n\n"
             "Closes the current input file and goes on reading where it was called. The end of a "
             "file does the same.\n\n"
             "Example\n\treturn\n\n"
             "See Also\n\tfilein\n"},
    {.words = {"login"},
     .run = cmd_login,
     .summary = "replays the project's log",
     .help =
         "Command Syntax\n\tlogin [-noecho]\n\n"
         "Runs the commands of the log file \"project_name.log\". A quit command in the log has "
         "no effect; in a file called from the log it returns to the log. The command is ignored "
         "in a file.\n\n"
         "Example\n\tlogin -noecho\n\n"
         "See Also\n\tlogfile, filein\n"},
    {.words = {"logfile"},
     .run = cmd_logfile,
     .summary = "turns writing to the log file on or off",
     .help = "Command Syntax\n\tlogfile [-on] [-off]\n\n"
             "Turns writing to the log file on, or with -off off.\n\n"
             "Example\n\tlogfile -off\n\n"
             "See Also\n\tlogin\n"},
    {.words = {"name?"},
     .run = cmd_name,
     .summary = "prints the project name",
     .help = "Command Syntax\n\tname? [-f]\n\n"
             "Prints the project name on the screen, with -f also in the output file.\n\n"
             "Example\n\tname? -f\n\n"
             "See Also\n\tnew_project\n"},
    {.words = {"quit", "q"},
     .run = cmd_quit,
     .summary = "stops the program",
     .help = "Command Syntax\n\tquit\n\n"
             "Stops the program. The database is not saved.\n\n"
             "Example\n\tquit\n\n"
             "See Also\n\tsavequit, save\n"},
    {.words = {"savequit", "sq"},
     .run = cmd_savequit,
     .summary = "saves the database and stops the program",
     .help = "Command Syntax\n\tsavequit\n\n"
             "Saves the database in the file \"project_name.db\", then stops the program.\n\n"
             "Example\n\tsavequit\n\n"
             "See Also\n\tquit, save, readdb\n"},
};

constexpr Command system_row[] = {
    {.words = {"date"},
     .run = cmd_date,
     .summary = "prints or stores date and time",
     .help = "Command Syntax\n\tdate [arg] [-noprint]\n\n"
             "Prints date and time, unless -noprint is given, and stores them in character vector "
             "arg, if it is given.\n\n"
             "Example\n\tdate today -noprint\n\n"
             "See Also\n\ttime\n"},
    {.words = {"time"},
     .run = cmd_time,
     .summary = "processor time since the start of the program",
     .help = "Command Syntax\n\ttime arg1 [arg2 arg3]\n\n"
             "Creates real scalar arg1 with the processor time in seconds since the start of the "
             "program. With arg2, an earlier time, and arg3, real scalar arg3 is the time in "
             "between, arg1 - arg2.\n\n"
             "Example\n\ttime begin\n\ttime end begin elapsed\n\n"
             "See Also\n\tdate\n"},
    {.words = {"tivla_version"},
     .run = cmd_tivla_version,
     .summary = "prints the version of the kernel",
     .help = "Command Syntax\n\ttivla_version\n\n"
             "Prints the version of TIVLA, the interpreter of commands.\n\n"
             "Example\n\ttivla_version\n\n"
             "See Also\n\tdate, help\n"},
    {.words = {"rm_file"},
     .run = cmd_rm_file,
     .summary = "deletes a file",
     .help = "Command Syntax\n\trm_file filename [-ext]\n\n"
             "Deletes a file.\n\n"
             "filename\n\tname of the file\n"
             "-ext\n\tthe file is \"project_name.filename\" (default: the name as it stands)\n\n"
             "Example\n\tseti k v=1\n\twrite k k.bin\n\trm_file k.bin\n\n"
             "See Also\n\trename_file, write\n"},
    {.words = {"rename_file"},
     .run = cmd_rename_file,
     .summary = "renames a file",
     .help = "Command Syntax\n\trename_file filename1 filename2\n\n"
             "Renames filename1 to filename2; a file of that name is replaced. There are no "
             "defaults.\n\n"
             "Do not rename an open file: \"project_name.out\" and \"project_name.log\" stay open "
             "until the program ends or a new project begins.\n\n"
             "Example\n\tseti k v=1\n\twrite k k.bin\n\trename_file k.bin old.bin\n\n"
             "See Also\n\trm_file\n"},
    {.words = {"flush"},
     .run = cmd_flush,
     .summary = "writes the buffer of a unit to its file",
     .help = "Command Syntax\n\tflush [unit=]\n\n"
             "Writes what is still held in the buffer of a unit to its file.\n\n"
             "unit\n\tnumber of the unit (default = 2, the output file)\n\n"
             "Example\n\tflush\n\n"
             "See Also\n\twrite, new_project\n"},
    {.words = {"system_command", "term", "comm"},
     .run = cmd_system_command,
     .summary = "hands a command line to the operating system",
     .help =
         "Command Syntax\n\tsystem_command 'command line'\n\n"
         "Runs a command line of at most 80 characters by the operating system, and waits for it "
         "to end. Single quotes protect blanks.\n\n"
         "Example\n\tsystem_command 'ls -l'\n\n"
         "See Also\n\trm_file, rename_file, filein\n"},
};

std::span<const Command> project_rows() {
    return project_row;
}
std::span<const Command> system_rows() {
    return system_row;
}

constexpr std::initializer_list<Family> families = {
    project_rows, help_rows, system_rows, alias_rows, condition_rows, fileio_rows,
};

} // namespace

const CommandTable& util_cmd() {
    static const CommandTable table{.name = "util_cmd",
                                    .topic = "general",
                                    .heading = "      GENERAL COMMANDS",
                                    .families = list_of(families),
                                    .planned = {}};
    return table;
}

} // namespace quelor
