// The commands that act on the database as a whole: listings, removal, renaming, and the database
// file. Any array may be named; none is made.
#include "kernel/database.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/project.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <vector>

namespace quelor {

namespace {

constexpr int screen_columns = 80;

/// Where a listing goes: the screen, and with `-f` the output file too.
void list_line(bool to_file, const Format& format, const FormatItems& items) {
    write_unit(unit_screen, format, items);
    if (to_file) write_unit(unit_output, format, items);
}

/// A number of bytes as the first of KB, MB and GB that is below 1024.
struct MemorySize {
    enum Unit : std::uint8_t { kb, mb, gb };
    double value = 0;
    Unit unit = kb;
};

MemorySize memory_size(std::uint64_t bytes) {
    constexpr double step = 0.0009765625; // 1/1024
    const double in_kb = static_cast<double>(static_cast<float>(bytes)) * step;
    if (in_kb < 1024) return {in_kb, MemorySize::kb};
    if (in_kb * step < 1024) return {in_kb * step, MemorySize::mb};
    return {in_kb * step * step, MemorySize::gb};
}

/// name(3,4)
std::string dims_text(const ArrayRef& array) {
    std::string text = "(";
    for (const std::int32_t dim : array.dims) {
        if (text.size() > 1) text += ',';
        text += std::to_string(dim);
    }
    return text + ')';
}

/// The arrays named on the record, or the whole database when the record names none.
struct Selection {
    std::vector<NamedArray> arrays;
    bool whole = true;
};

Selection whole_database() {
    Selection all;
    for (NamedArray entry = db_next({}); !entry.name.empty(); entry = db_next(entry.name))
        all.arrays.push_back(entry);
    return all;
}

/// A name that is absent ends the list.
Selection selected_arrays() {
    if (is_blank(get_arg(1))) return whole_database();
    Selection selection{.arrays = {}, .whole = false};
    for (int n = 1; !is_blank(get_arg(n)); ++n) {
        const ArrayRef array = find_array(get_arg(n));
        if (!array) break;
        selection.arrays.push_back({get_arg(n), array});
    }
    return selection;
}

/// True, after the message, when there is nothing to list.
bool is_empty_listing(const Selection& selection, bool to_file) {
    if (!selection.arrays.empty()) return false;
    list_line(to_file, "(a,/)", {selection.whole ? "  Database is empty" : " Not found"});
    return true;
}

void list_long(const Selection& selection, bool to_file) {
    if (is_empty_listing(selection, to_file)) return;
    for (const auto& [name, array] : selection.arrays) {
        std::string line = "     ";
        line.append(type_label(array.type)).resize(20, ' ');
        line.append(name).append(dims_text(array));
        list_line(to_file, "(a)", {line.substr(0, screen_columns)});
    }
    if (!selection.whole) return list_line(to_file, "(a)", {""});
    static constexpr Format closing[] = {"10(/,i5, ' objects with data memory of ', f7.1, ' KB'/)",
                                         "20(/,i5, ' objects with data memory of ', f7.1, ' MB'/)",
                                         "30(/,i5, ' objects with data memory of ', f7.1, ' GB'/)"};
    const auto [value, unit] = memory_size(db_memory());
    list_line(to_file, closing[unit], {static_cast<std::int64_t>(selection.arrays.size()), value});
}

/// Entries in columns; one that is too long for its column takes the next ones too.
void list_short(const Selection& selection, int columns, bool to_file) {
    if (is_empty_listing(selection, to_file)) return;
    const auto width = as_size(screen_columns / columns);
    const auto count = as_size(columns);
    std::string line;
    for (const auto& [name, array] : selection.arrays) {
        const std::size_t column = line.empty() ? 0 : line.size() / width + 1;
        if (column >= count) {
            list_line(to_file, "(a)", {line});
            line.clear();
        } else {
            line.resize(column * width, ' ');
        }
        line.append(name).append(dims_text(array));
    }
    list_line(to_file, "(a)", {line});
    if (!selection.whole) return list_line(to_file, "(a)", {""});
    static constexpr Format closing[] = {"10(i5, ' objects with data memory of ', f7.1, ' KB'/)",
                                         "20(i5, ' objects with data memory of ', f7.1, ' MB'/)",
                                         "30(i5, ' objects with data memory of ', f7.1, ' GB'/)"};
    const auto [value, unit] = memory_size(db_memory());
    list_line(to_file, closing[unit], {static_cast<std::int64_t>(selection.arrays.size()), value});
}

void cmd_ll(std::string_view) {
    list_long(selected_arrays(), has_flag(" -f"));
}

void cmd_ls(std::string_view) {
    std::int32_t columns = 0;
    get_int_par("c=", columns);
    if (columns <= 0) columns = 4;
    list_short(selected_arrays(), std::min(columns, screen_columns), has_flag(" -f"));
}

void cmd_memory(std::string_view) {
    static constexpr std::string_view units[] = {" KB", " MB", " GB"};
    const std::uint64_t bytes = db_memory();
    const auto [value, unit] = memory_size(bytes);
    write_both("10(3x, i0, ' bytes used or', f7.1, a)",
               {static_cast<std::int64_t>(bytes), value, units[unit]});
    write_both("(a)", {""});
}

void cmd_rm(std::string_view) {
    for (int n = 1; !is_blank(get_arg(n)); ++n)
        delete_array(get_arg(n));
}

void cmd_rm_prefix(std::string_view) {
    const std::string_view wild = get_arg(1);
    if (wild.find('*') != wild.size() - 1)
        return print_both(" \n\tLast character of argument must be *\n");
    db_delete_prefix(wild);
}

void cmd_mv(std::string_view) {
    const std::string_view from = get_arg(1), to = get_arg(2);
    if (is_blank(to)) return print_both(" \n\tMove where?\n");
    move_array(from, to);
}

/// Argument 1, or the project's name.
std::string file_stem() {
    const std::string_view name = get_arg(1);
    return std::string(is_blank(name) ? project_name() : name);
}

void cmd_save(std::string_view) {
    save_database(file_stem());
}

void cmd_readdb(std::string_view) {
    const std::string name = file_stem();
    if (db_read(name))
        return write_unit(unit_screen, "20(/, '    Database read from file ', a, /)",
                          {name + ".db"});
    print_both(
        " \n\tError reading database file\n\t\tProblem may be insufficient memory or corrupted/incorrect file");
    list_database();
    exit_unsaved(true);
}

void cmd_clear(std::string_view) {
    db_clear();
}

constexpr Command rows[] = {
    {.words = {"ls", "dir"},
     .run = cmd_ls,
     .summary = "short listing of the arrays in the database",
     .help =
         "Command Syntax\n\tls [arg1 arg2 ...] [-f] [c=?]\n\tdir [arg1 arg2 ...] [-f] [c=?]\n\n"
         "Short listing of the arrays in memory in name order, several on a line, each with its dimensions.\n\n"
         "arg1 arg2 ...\n\tarrays to list; the list ends at a name that is not there. Without an argument the whole database is listed, with the number of arrays and their memory.\n"
         "-f\n\tlist in the output file too; otherwise on the screen only\n"
         "c\n\tnumber of columns (default = 4)\n\n"
         "Example\n\tls c=2\n\nSee Also\n\tll, memory, rm, mv\n"},
    {.words = {"ll"},
     .run = cmd_ll,
     .summary = "long listing of the arrays in the database",
     .help =
         "Command Syntax\n\tll [arg1 arg2 ...] [-f]\n\n"
         "Long listing of the arrays in memory in name order, one on a line: type, name, dimensions.\n\n"
         "arg1 arg2 ...\n\tarrays to list; the list ends at a name that is not there. Without an argument the whole database is listed, with the number of arrays and their memory.\n"
         "-f\n\tlist in the output file too; otherwise on the screen only\n\n"
         "Example\n\tll .hyd_addm .hyd_damp -f\n\nSee Also\n\tls, memory\n"},
    {.words = {"memory"},
     .run = cmd_memory,
     .summary = "data memory used in the database",
     .help =
         "Command Syntax\n\tmemory\n\n"
         "Prints the data memory used in the database, in bytes and in KB, MB or GB. There are no arguments.\n\n"
         "Example\n\tmemory\n\nSee Also\n\tls, ll\n"},
    {.words = {"rm", "del"},
     .run = cmd_rm,
     .summary = "remove arrays",
     .help =
         "Command Syntax\n\trm arg1 [arg2 ...]\n\tdel arg1 [arg2 ...]\n\n"
         "Removes arg1, and further arguments, from the database. A name that is not there is passed over.\n\n"
         "Example\n\trm a b\n\nSee Also\n\trm*, mv, clear\n"},
    {.words = {"rm*", "del*"},
     .run = cmd_rm_prefix,
     .summary = "remove all arrays that begin with a text",
     .help =
         "Command Syntax\n\trm* arg*\n\tdel* arg*\n\n"
         "Removes all arrays whose names begin with \"arg\". The argument must end in *, and both stars must be typed: a safeguard against an accident. An argument of * alone removes every array.\n\n"
         "Example\n\trm* mat*\n\nSee Also\n\trm, clear\n"},
    {.words = {"mv", "rename"},
     .run = cmd_mv,
     .summary = "move (rename) an array",
     .help = "Command Syntax\n\tmv arg1 arg2\n\trename arg1 arg2\n\n"
             "Moves (renames) arg1 to arg2. If arg2 exists, it is first removed.\n\n"
             "Example\n\tmv disp disp_old\n\nSee Also\n\tcp, rm\n"},
    {.words = {"readdb"},
     .run = cmd_readdb,
     .summary = "read a database file",
     .help =
         "Command Syntax\n\treaddb [arg]\n\n"
         "Reads the database in the file \"arg.db\" and adds it to the existing database; an array of the same name is replaced.\n\n"
         "arg\n\tname of the file without its \".db\" (default = the project's name)\n\n"
         "A file that is missing or damaged ends the program; what is in memory then goes to \"project_name.rescue.db\".\n\n"
         "Example\n\treaddb barge\n\nSee Also\n\tsave, savequit, read\n"},
    {.words = {"save"},
     .run = cmd_save,
     .summary = "save the database in a file",
     .help =
         "Command Syntax\n\tsave [arg1]\n\n"
         "Saves the database in the file \"arg1.db\". All arrays are saved, system arrays and temporaries too. A file of that name is replaced when the new one is complete, but not one that is write-protected. Of a symbolic link the file that it names is replaced.\n\n"
         "arg1\n\tname of the file without its \".db\" (default = the project's name)\n\n"
         "Example\n\tsave barge\n\nSee Also\n\treaddb, savequit, write\n"},
    {.words = {"clear"},
     .run = cmd_clear,
     .summary = "clear the database",
     .help =
         "Command Syntax\n\tclear\n\n"
         "Clears (initializes) the database: every array is removed. There are no arguments.\n\n"
         "Example\n\tclear\n\nSee Also\n\trm, rm*, new_project\n"},
};

} // namespace

void list_database() {
    list_long(whole_database(), true);
}

std::span<const Command> database_rows() {
    return rows;
}

} // namespace quelor
