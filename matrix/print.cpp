// The commands that show an array: `print`, `printf`, `printi`, `xprint`.
//
// A wide array is printed in blocks of columns under a heading of column numbers; rows carry their
// number every few rows and "    *" between. Arrays are only read. The lines go to the screen and
// the output file; the screen can be stopped after each page.
#include "matrix/print.hpp"

#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/help_print.hpp"
#include "matrix/algebra.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>
#include <type_traits>

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

void add_value(FormatItems& items, std::int32_t value, const PrintRequest&) {
    items.add(value);
}
void add_value(FormatItems& items, double value, const PrintRequest& request) {
    if (request.reals_as_whole)
        items.add(nearest_int(value));
    else
        items.add(value);
}
void add_value(FormatItems& items, Complex8 z, const PrintRequest& request) {
    if (!request.phase) {
        items.add(z);
        return;
    }
    const double degrees = 180 / std::numbers::pi;
    items.add(complex_modulus(z)).add(std::atan2(z.imag(), z.real()) * degrees);
}
void add_value(FormatItems& items, const char& c, const PrintRequest&) {
    items.add(std::string_view(&c, 1));
}

/// Elements first to last of a row.
template <class T>
void add_row(FormatItems& items, Matrix<const T> table, int row, int first, int last,
             const PrintRequest& request) {
    for (int j = first; j <= last; ++j)
        add_value(items, table(row, j), request);
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

template <class T>
void write_row(Listing& out, const BlockLayout& layout, Matrix<const T> table, int row, int first,
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
template <class T>
void write_blocks(Listing& out, const BlockLayout& layout, Matrix<const T> table,
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
template <class T>
void write_rows_in_form(Listing& out, Matrix<const T> table, const PrintRequest& request) {
    for (int row = request.first_row; row <= table.rows && !out.ended(); ++row) {
        FormatItems items;
        add_row(items, table, row, request.first_col, table.cols, request);
        out.write(Format::from_text(request.form), items);
    }
}

/// A row of the array to a line; the NULs that end texts are not shown.
void write_characters(Listing& out, Matrix<const char> table, const PrintRequest& request) {
    for (int row = request.first_row; row <= table.rows && !out.ended(); ++row) {
        std::string text;
        for (int j = request.first_col; j <= table.cols; ++j)
            text += table(row, j);
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

template <class T>
void print_table(Listing& out, Matrix<const T> table, const PrintRequest& request) {
    if (!request.form.empty()) return write_rows_in_form(out, table, request);
    if constexpr (std::is_same_v<T, char>)
        write_characters(out, table, request);
    else
        write_blocks(out, print_layout(type_code<T>, request, table.cols), table, request);
}

template <class T> void print_tables(const ArrayRef& array, const PrintRequest& request) {
    const std::int64_t first = request.table > 0 ? request.table : 1;
    const std::int64_t last = request.table > 0 ? request.table : table_count(array);
    const std::int64_t size = std::int64_t{array.rows()} * array.cols();
    Listing out(request.file_only ? std::span<const int>(output_only) : both_units,
                request.file_only ? 0 : request.lines);
    for (std::int64_t table = first; table <= last && !out.ended(); ++table) {
        if (array.ndim() > 2 && request.form.empty()) out.write("10(/, 15x, 'Table', i6)", {table});
        print_table<T>(
            out,
            {static_cast<const T*>(array.data) + (table - 1) * size, array.rows(), array.cols()},
            request);
    }
}

/// Calls f(std::type_identity<T>) with the element type T of an array that can be printed.
template <class F> void with_printed_type(const ArrayRef& array, F f) {
    if (array.is(type_character)) return f(std::type_identity<char>{});
    with_type(array.type, f);
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
    with_printed_type(array,
                      [&]<class T>(std::type_identity<T>) { print_tables<T>(array, request); });
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
    if (array.is(type_real))
        print_table(out, as_matrix<const double>(array), request);
    else
        print_table(out, as_matrix<const std::int32_t>(array), request);
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
    with_type(array.type, [&]<class T>(std::type_identity<T>) {
        write_blocks(out, xprint_layout(array.type, request.cols), as_matrix<const T>(array),
                     request);
    });
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

std::int64_t table_count(const ArrayRef& array) {
    return array.ndim() == 3 || array.ndim() == 4 ? std::int64_t{array.dim(3)} * array.dim(4) : 1;
}

void write_matrix(int unit, Matrix<const double> matrix) {
    Listing out({&unit, 1}, 0);
    print_table(out, matrix, {});
}

std::span<const Command> print_rows() {
    return rows;
}

} // namespace quelor
