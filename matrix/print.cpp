// The commands that show an array: `print`, `printf`, `printi`, `xprint`.
//
// A wide array is printed in blocks of columns under a heading of column numbers; rows carry their
// number every few rows and "    *" between. Arrays are only read. The lines go to the screen and
// the output file; the screen can be stopped after each page.
#include "matrix/print.hpp"

#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/help_print.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>

namespace quelor {

namespace {

/// What the command line asks for.
struct PrintRequest {
    int first_row = 1, first_col = 1;
    int cols = 0;  ///< columns in a block, 0: by type
    int lines = 0; ///< lines to a page of the screen, 0: no stops
    int row_step = 5;
    int table = 0; ///< of an array of three dimensions, 0: all
    bool headings = true, file_only = false, phase = false;
    bool fixed = false;          ///< `printf`
    bool reals_as_whole = false; ///< `printi`
    std::string form{};          ///< format of each row, empty: by type
};

/// How a block is laid out. Without a heading text the column numbers are written one by one, as
/// for integers; a star in the items marks rows without a number.
struct BlockLayout {
    int columns = 0;
    std::string heading{}, numbered{}, unnumbered{};
    bool star_in_items = true;
};

/// One table of an array: its elements begin `offset` elements into the data.
struct Table {
    std::int32_t type;
    const void* data;
    std::ptrdiff_t offset;
    int rows, cols;
};

/// Lines of one command on its units, the screen first, with the stops after each page.
class Listing {
public:
    Listing(std::span<const int> units, int page) : units_(units), page_(page) {}

    /// One write statement. A format that does not suit its items ends the command.
    void write(const Format& format, const FormatItems& items = {}) {
        if (ended_) return;
        const FormatResult result = format_write(format, items);
        if (!result.error.empty()) {
            ended_ = true;
            return print_both(" \n\tThe format does not suit the array: " + result.error + "\n");
        }
        for (const int unit : units_)
            write_text(unit, result.text);
        count_lines(result.text);
    }
    bool ended() const { return ended_; }

private:
    void count_lines(const std::string& text) {
        if (page_ <= 0) return;
        lines_ += static_cast<int>(std::count(text.begin(), text.end(), '\n'));
        if (lines_ < page_) return;
        lines_ = 0;
        ended_ = user_quits_page();
    }

    std::span<const int> units_;
    int page_; ///< lines to a page of the screen, 0: no stops
    int lines_ = 0;
    bool ended_ = false;
};

constexpr int both_units[] = {unit_screen, unit_output};
constexpr int output_only[] = {unit_output};

/// "6e12.4"; empty for none, as a repeat count of zero does not exist.
std::string repeated(int n, std::string_view edit) {
    return n > 0 ? std::to_string(n).append(edit) : std::string();
}

void add_complex(FormatItems& items, Complex8 z, bool phase) {
    if (!phase) {
        items.add(z);
        return;
    }
    const double degrees = 180 / std::numbers::pi;
    items.add(complex_modulus(z)).add(std::atan2(z.imag(), z.real()) * degrees);
}

/// Elements first to last of a row.
void add_row(FormatItems& items, const Table& table, int row, int first, int last,
             const PrintRequest& request) {
    for (int j = first; j <= last; ++j) {
        const std::ptrdiff_t at = table.offset + row - 1 + std::ptrdiff_t{j - 1} * table.rows;
        switch (table.type) {
        case type_integer:
            items.add(static_cast<const std::int32_t*>(table.data)[at]);
            break;
        case type_real: {
            const double x = static_cast<const double*>(table.data)[at];
            if (request.reals_as_whole)
                items.add(nearest_int(x));
            else
                items.add(x);
            break;
        }
        case type_complex8:
            add_complex(items, static_cast<const Complex8*>(table.data)[at], request.phase);
            break;
        default:
            items.add(std::string_view(static_cast<const char*>(table.data) + at, 1));
        }
    }
}

void write_heading(Listing& out, const BlockLayout& layout, int first, int last) {
    FormatItems columns;
    for (int j = first; j <= last; ++j)
        columns.add(j);
    if (!layout.heading.empty()) return out.write(Format::from_text(layout.heading), columns);
    out.write("10('  ROW/COL', i5, $)", {first});
    for (int j = first + 1; j <= last; ++j)
        out.write("30(i6, $)", {j});
    out.write("()");
}

void write_row(Listing& out, const BlockLayout& layout, const Table& table, int row, int first,
               int last, const PrintRequest& request) {
    const bool numbered = row == request.first_row || row % request.row_step == 0;
    FormatItems items;
    items.reserve(2 + 2 * as_size(last - first + 1));
    if (request.headings && numbered)
        items.add(row);
    else if (request.headings && layout.star_in_items)
        items.add("    *");
    add_row(items, table, row, first, last, request);
    out.write(Format::from_text(numbered ? layout.numbered : layout.unnumbered), items);
}

/// All blocks of one table.
void write_blocks(Listing& out, const BlockLayout& layout, const Table& table,
                  const PrintRequest& request) {
    for (int first = request.first_col; first <= table.cols; first += layout.columns) {
        const int last = first + std::min(layout.columns - 1, table.cols - first);
        if (request.headings) write_heading(out, layout, first, last);
        for (int row = request.first_row; row <= table.rows && !out.ended(); ++row)
            write_row(out, layout, table, row, first, last, request);
        out.write("()");
        if (out.ended() || last == table.cols) return;
    }
}

/// Rows in the format of the user, without headings.
void write_rows_in_form(Listing& out, const Table& table, const PrintRequest& request) {
    for (int row = request.first_row; row <= table.rows && !out.ended(); ++row) {
        FormatItems items;
        add_row(items, table, row, request.first_col, table.cols, request);
        out.write(Format::from_text(request.form), items);
    }
}

/// A row of the array to a line; the NULs that end texts are not shown.
void write_characters(Listing& out, const Table& table, const PrintRequest& request) {
    for (int row = request.first_row; row <= table.rows && !out.ended(); ++row) {
        std::string text;
        for (int j = request.first_col; j <= table.cols; ++j)
            text += static_cast<const char*>(
                table.data)[table.offset + row - 1 + std::ptrdiff_t{j - 1} * table.rows];
        text.resize(text.find_last_not_of('\0') + 1);
        std::replace(text.begin(), text.end(), '\0', ' ');
        FormatItems items;
        for (const char& c : text)
            items.add(std::string_view(&c, 1));
        out.write("10(5x, 2048a1)", items);
    }
}

/// Layout of `print` and `printf` for a type, `cols` columns to a block (0: the type's own number).
BlockLayout print_layout(std::int32_t type, const PrintRequest& request, int table_cols) {
    const bool whole = type == type_integer || request.reals_as_whole;
    const bool complex = type == type_complex8;
    const int usual = whole ? 12 : complex ? 3 : 6;
    constexpr int most = 20000; // a wider line than any device takes
    const int n =
        std::min({request.cols > 0 ? request.cols : usual, std::max(table_cols, 1), most});

    std::string values;
    if (!whole && !request.fixed) values = "1p,";
    values += repeated(complex ? 2 * n : n, whole ? "i6" : request.fixed ? "f12.5" : "e12.4");

    BlockLayout layout{.columns = n};
    if (!whole) {
        layout.heading = complex ? "('  ROW/COL',i23" : "('  ROW/COL',i11";
        if (n > 1) layout.heading.append(",").append(repeated(n - 1, complex ? "i24" : "i12"));
        layout.heading += ")";
    }
    layout.numbered.append(request.headings ? "(i5,3x," : "(").append(values).append(")");
    layout.unnumbered.append(request.headings ? "(a5,3x," : "(").append(values).append(")");
    return layout;
}

/// Layout of `xprint`: all significant digits.
BlockLayout xprint_layout(std::int32_t type, int cols) {
    const int most = type == type_integer ? 10 : type == type_real ? 5 : 2;
    const int n = cols > 0 ? std::min(cols, most) : most;
    if (type == type_integer)
        return {n, "10('  ROW/COL', i11, 9i12)", "70(i5, 3x, 10i12)", "60(4x, '*', 3x, 10i12)",
                false};
    return {n, type == type_real ? "10('  ROW/COL', i23, 4i24)" : "10('  ROW/COL', i47, i48)",
            "70(i5, 3x, 1p5e24.15)", "60(4x, '*', 3x, 1p5e24.15)", false};
}

bool is_numeric(const ArrayRef& array) {
    return array.is(type_integer) || array.is(type_real) || array.is(type_complex8);
}

void print_table(Listing& out, const Table& table, const PrintRequest& request) {
    if (!request.form.empty()) return write_rows_in_form(out, table, request);
    if (table.type == type_character) return write_characters(out, table, request);
    write_blocks(out, print_layout(table.type, request, table.cols), table, request);
}

/// Number of tables: one for a matrix, and "for dimensions greater than 4, only the first".
int table_count(const ArrayRef& array) {
    return array.ndim() == 3 || array.ndim() == 4 ? array.dim(3) * array.dim(4) : 1;
}

void print_array(const ArrayRef& array, const PrintRequest& request) {
    const int tables = table_count(array);
    const int first = request.table > 0 ? request.table : 1;
    const int last = request.table > 0 ? request.table : tables;
    Listing out(request.file_only ? std::span<const int>(output_only) : both_units,
                request.file_only ? 0 : request.lines);
    for (int table = first; table <= last && !out.ended(); ++table) {
        if (array.ndim() > 2 && request.form.empty()) out.write("10(/, 15x, 'Table', i6)", {table});
        const std::ptrdiff_t size = std::ptrdiff_t{array.rows()} * array.cols();
        print_table(out, {array.type, array.data, (table - 1) * size, array.rows(), array.cols()},
                    request);
    }
}

PrintRequest read_print_request(bool fixed) {
    PrintRequest request{.fixed = fixed};
    get_int_par(" r=", request.first_row);
    get_int_par(" c=", request.first_col);
    get_int_par(" cols=", request.cols);
    get_int_par(" l=", request.lines);
    get_int_par(" row#=", request.row_step);
    get_int_par(" table=", request.table);
    request.headings = !has_flag(" -nohead");
    request.file_only = has_flag(" -f");
    request.phase = has_flag(" -phase");
    get_char_par("form=", request.form, 161);
    request.first_row = std::max(request.first_row, 1);
    request.first_col = std::max(request.first_col, 1);
    if (request.row_step < 1) request.row_step = 5;
    if (!request.form.empty()) request.lines = 0;
    return request;
}

void print_command(bool fixed) {
    const std::string name(get_arg(1));
    const ArrayRef array = find_array(name);
    if (!array) return not_found(name);
    PrintRequest request = read_print_request(fixed);
    const bool bracketed = request.form.starts_with('(') && request.form.ends_with(')');
    const std::string_view complaint =
        !bracketed ? "it must be enclosed in parentheses" : Format::from_text(request.form).error();
    if (!request.form.empty() && !complaint.empty())
        return print_both(" \n\tIncorrect format in form=: " + std::string(complaint) + "\n");
    if (!is_numeric(array) && !array.is(type_character))
        return print_both(" \n\tNot implemented for array type\n");
    if (request.first_row > array.rows() || request.first_col > array.cols())
        return print_both(" \n\tThe array has no such row or column\n");
    if (request.table < 0 || request.table > table_count(array))
        return print_both(" \n\tThe array has no such table\n");
    print_array(array, request);
}

void cmd_print(std::string_view) {
    print_command(false);
}

void cmd_printf(std::string_view) {
    print_command(true);
}

void cmd_printi(std::string_view) {
    const std::string name(get_arg(1));
    const ArrayRef array = find_array_2d(name);
    if (!array) return not_found(name);
    if (!array.is(type_real) && !array.is(type_integer))
        return print_both(" \n\tNot implemented for array type\n");
    PrintRequest request{.reals_as_whole = true};
    get_int_par(" cols=", request.cols);
    get_int_par(" row#=", request.row_step);
    if (request.row_step < 1) request.row_step = 5;
    Listing out(both_units, 0);
    print_table(out, {array.type, array.data, 0, array.rows(), array.cols()}, request);
}

void cmd_xprint(std::string_view) {
    const std::string name(get_arg(1));
    const ArrayRef array = find_array_2d(name);
    if (!array) return not_found(name);
    if (!is_numeric(array)) return print_both(" \n\tNot implemented for array type\n");
    PrintRequest request;
    get_int_par(" cols=", request.cols);
    get_int_par(" row#=", request.row_step);
    if (request.row_step < 1) request.row_step = 5;
    Listing out(both_units, 0);
    write_blocks(out, xprint_layout(array.type, request.cols),
                 {array.type, array.data, 0, array.rows(), array.cols()}, request);
}

constexpr std::string_view print_help =
    "Command Syntax\n\tprint or printf (p or pf) arg1 [r=?] [c=?] [cols=?] [l=?] [-nohead] "
    "[row#=?] [-f] [form=format] [-phase] [table=?]\n\n"
    "Prints array arg1 on the screen and in the output file. A wide array is printed in blocks of "
    "columns. printf prints real numbers with five digits behind the point, print in exponential "
    "form.\n\n"
    "arg1\n\tname of the array: integer, real, complex or character\n"
    "r=?\n\tfirst row to print; default = 1\n"
    "c=?\n\tfirst column to print; default = 1\n"
    "cols=?\n\tcolumns in each block; default = 12 for an integer array, 6 for a real one, 3 for a "
    "complex one\n"
    "l=?\n\tnumber of lines scrolled at a time; default = no stops\n"
    "-nohead\n\tno row or column headings\n"
    "row#=?\n\tincrement of the row labels; default = 5, so that the labels are 1, 5, 10, 15, and "
    "\"    *\" between\n"
    "-f\n\tto the output file only, not the screen, and with no scrolling\n"
    "form=format\n\ta format for each row, enclosed in parentheses and with no embedded blanks; "
    "cols, l and -nohead are then ignored. A complex number takes two edit descriptors.\n"
    "-phase\n\tfor complex arrays, magnitude and phase angle in degrees in place of real and "
    "imaginary parts\n"
    "table=?\n\twhich table of a 3-D array; default = all. For dimensions greater than 4, only the "
    "first table is printed.\n\n"
    "Example\n\tprint a r=10 cols=3\n\tprint a form=(5f10.3)\n\n"
    "See Also\n\tprinti, xprint, write\n";

constexpr Command rows[] = {
    {.words = {"print", "p"},
     .run = cmd_print,
     .summary = "print an array, reals in exponential form",
     .help = print_help},
    {.words = {"printf", "pf"},
     .run = cmd_printf,
     .summary = "print an array, reals in fixed form",
     .help = print_help},
    {.words = {"printi"},
     .run = cmd_printi,
     .summary = "print a real array as integers",
     .help = "Command Syntax\n\tprinti arg1 [cols=?] [row#=?]\n\n"
             "Prints a real matrix as if it were an integer matrix, for integer variables stored "
             "in a real matrix. Each value is rounded to the nearest integer.\n\n"
             "arg1\n\tname of the array, real or integer\n"
             "cols=?\n\tcolumns in each block; default = 12\n"
             "row#=?\n\tincrement of the row labels; default = 5\n\n"
             "Example\n\tprinti codes\n\n"
             "See Also\n\tprint, xprint, to_int\n"},
    {.words = {"xprint", "xp"},
     .run = cmd_xprint,
     .summary = "print an array with all significant digits",
     .help = "Command Syntax\n\txprint (xp) arg1 [cols=?] [row#=?]\n\n"
             "Prints with virtually all significant digits.\n\n"
             "arg1\n\tname of the array: integer, real or complex\n"
             "cols=?\n\tcolumns in each block when fewer than the default = 10 for an integer "
             "array, 5 for a real one, 2 for a complex one\n"
             "row#=?\n\tincrement of the row labels; default = 5\n\n"
             "Example\n\txprint a cols=2\n\n"
             "See Also\n\tprint, printi\n"},
};

} // namespace

void write_matrix(int unit, Matrix<const double> matrix) {
    Listing out({&unit, 1}, 0);
    print_table(out, {type_real, matrix.data, 0, matrix.rows, matrix.cols}, {});
}

std::span<const Command> print_rows() {
    return rows;
}

} // namespace quelor
