// The on-line manual: `help` prints the text of a command's row, `index` lists the rows.

#include "kernel/help.hpp"

#include "kernel/alias.hpp"
#include "kernel/dbfgen.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/help_print.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <string>

namespace quelor {

namespace {

/// integer (2): lines printed since the last stop, lines to a page. Lives while `help` or `index`
/// runs; the blank keeps it out of reach of a command line.
constexpr std::string_view scroll = "$ scroll";
constexpr int no_paging = 999999;

constexpr std::string_view introduction =
    "QUELOR-ZT\n\n"
    "The program determines the linear, hydroelastic, wave-induced response of floating and fixed "
    "offshore structures. It is built on TIVLA, an interpreter of commands for matrix and numerical "
    "work. Above it stand a finite element layer, and a hydrodynamic layer: potential theory with "
    "source panels, added mass, hydrodynamic damping, exciting forces, generalized modes, transfer "
    "functions and wave spectra.\n\n"
    "The Database\n\n"
    "The unique feature of the program is its database. All data, those of the user and those that "
    "commands leave for each other, are named arrays in one database. Every array can be listed, "
    "printed, changed and given to any other command, and the database can be saved in a file and "
    "read again. Names that begin with \".\" are those of the program's own arrays, and names that "
    "begin with \"$\" are temporary ones. To avoid a collision in array names, the user should not "
    "create any other array with these prefixes.\n\n"
    "Command Format\n"
    "\tcommand  arg1 ... argN  parameter1 ... parameterN\n\n"
    "Arguments are names of arrays. Parameters either begin with \"-\" (toggles) or contain \"=\" "
    "(values). Arguments and parameters may be intermixed. An argument can be of any length and hold "
    "almost any character, but it cannot begin with \"-\" or \"~\" and cannot contain \"=\" or a "
    "blank. There is no blank on either side of the \"=\". In the help texts \"?\" stands for a "
    "value, and brackets mark what may be left out. Upper and lower case are different "
    "everywhere.\n\n"
    "A value list is separated by commas, as in n=3,3. Single quotes protect blanks, as in "
    "s='two words'.\n\n"
    "Variables\n\n"
    "An array can stand in place of a value: in r=~rows the value is that of array rows, and a list "
    "of values takes as many values of the array as it needs. A command word or an argument ~NAME "
    "is replaced by the text in the character array NAME.\n\n"
    "Records\n\n"
    "A record is a line. A line whose last character is \"&\" is continued on the next one; a record "
    "cannot be longer than 2048 bytes. Some commands ask for further records of numbers, separated "
    "by blanks or commas; missing numbers are 0, and a blank record ends the input.\n\n"
    "Comments\n\n"
    "The rest of a line after \"/*\" is a comment. Lines with comments cannot be continued.\n\n"
    "Numbers\n\n"
    "Numbers are written as 12, -0.5, 1.2e-3; the letter of the exponent is e or E.\n\n"
    "When Something Goes Wrong\n\n"
    "A command that asks for more memory than there is, is given up; the session and its arrays stay. "
    "Where the program ends without saving though nobody said quit, what is in memory goes to the "
    "file \"project_name.rescue.db\": read it with readdb project_name.rescue. The same happens when "
    "the system asks the program to end (signals SIGTERM and SIGHUP).\n\n"
    "At a Terminal\n\n"
    "Lines are edited with the usual keys. The arrow keys call back the commands of this session and "
    "of earlier ones, Ctrl-R searches them. Tab completes a command word, the name of an array, and "
    "behind filein, read and readdb that of a file; a second Tab shows what is possible. Ctrl-C "
    "gives up the line that is being typed, and Ctrl-D in an empty line ends the input. While a "
    "command runs, Ctrl-C lets it come to its end and then leaves all input files and loops; Ctrl-\\ "
    "ends the program at once, without saving.\n\n"
    "See Also\n\thelp command, index\n";

int output_unit() {
    return has_flag(" -f") ? unit_output : unit_screen;
}

void begin_scroll() {
    int lines = 0;
    get_int_par(" l=", lines);
    if (lines > 0) create_matrix<std::int32_t>(scroll, 2, 0)(2) = lines;
}

using Printer = int (*)(int unit, std::string_view text, int& line_count, int page_length);

/// Prints a text with stops after each page when `$ scroll` exists.
void print_paged(Printer print, int unit, std::string_view text) {
    const ArrayRef pages = find_array(scroll);
    const bool paged = pages.is(type_integer) && pages.size() >= 2;
    int lines = 0;
    if (paged)
        print(unit, text, as_span<std::int32_t>(pages)[0], as_span<std::int32_t>(pages)[1]);
    else
        print(unit, text, lines, no_paging);
}

void cmd_help(std::string_view) {
    const int unit = output_unit();
    const std::string word(alias_to_internal(get_arg(1).substr(0, word_length)));
    begin_scroll();
    if (const Command* command = find_command(command_chain(), word))
        help_print(unit, command->help);
    else if (word == "quelor-zt")
        help_print(unit, introduction);
    else
        print_screen(" Help not available\n");
    delete_array(scroll);
}

// --- index

constexpr std::string_view topics[] = {"hydrodynamics", "general",     "database",    "matrix",
                                       "functions",     "fe_commands", "fe_elements", "misc"};

/// "word, alias, alias      summary", under the names that users know.
std::string index_line(const Command& command) {
    constexpr std::size_t summary_column = 34;
    std::string line = "  ";
    for (const auto word : command.words) {
        if (!word.empty()) line.append(alias_to_user(word)).append(", ");
    }
    line.resize(line.size() - 2);
    line.resize(std::max(line.size() + 2, summary_column - 1), ' ');
    return line.append(command.summary).append("\n");
}

/// Adds up the lines of a topic; a table without a heading goes on under the one before.
std::string index_text(std::string_view topic) {
    std::string text;
    for (const CommandTable* table : command_chain()) {
        if (table->topic != topic) continue;
        if (!table->heading.empty()) text.append("\n").append(table->heading).append("\n\n");
        for (const Family rows : table->families) {
            for (const Command& command : rows())
                text += index_line(command);
        }
    }
    return text;
}

/// Index text of the topics asked for; empty for an unknown one.
std::string wanted_index(std::string_view topic) {
    if (topic == "numerical") return index_text("matrix") + index_text("functions");
    std::string text;
    for (const auto each : topics) {
        if (is_blank(topic) || topic == each) text += index_text(each);
    }
    return text;
}

void cmd_index(std::string_view) {
    const std::string text = wanted_index(get_arg(1));
    if (text.empty()) {
        return print_both(
            " \nValid topics are general, database, fe_commands, fe_elements, functions, hydrodynamics, matrix, and misc.\n");
    }
    begin_scroll();
    print_paged(print_lines, output_unit(), text);
    delete_array(scroll);
}

constexpr Command help_row[] = {
    {.words = {"help", "h"},
     .run = cmd_help,
     .summary = "on-line help for a command",
     .help =
         "Command Syntax\n\thelp command [-f] [l=?]\n\n"
         "On-line help for command. With -f the text goes to the output file. With l= it stops "
         "after every l lines; RETURN goes on and q quits. The command \"help quelor-zt\" gives "
         "an introduction.\n\n"
         "Example\n\thelp print l=20\n\n"
         "See Also\n\tindex\n"},
    {.words = {"index"},
     .run = cmd_index,
     .summary = "one-line summary of the commands, by topic",
     .help = "Command Syntax\n\tindex [topic] [-f] [l=?]\n\n"
             "One-line summary of the commands. The topics are hydrodynamics, general, database, "
             "matrix, functions, numerical (both matrix and functions), fe_commands, fe_elements "
             "and misc; without a topic all commands are listed. The parameters are those of "
             "help.\n\n"
             "Example\n\tindex matrix -f\n\n"
             "See Also\n\thelp\n"},
};

} // namespace

void help_print(int unit, std::string_view text) {
    print_paged(wrap_print, unit, text);
}

std::span<const Command> help_rows() {
    return help_row;
}

} // namespace quelor
