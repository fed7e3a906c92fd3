// Arrays from data records (`input` and its family) and scalars and texts from a parameter.
// Writes the array named by the first argument. A record holds at most `record_limit` values, so
// one row is read into a buffer of that size whatever the number of columns; the rest is known.
#include "kernel/gencom.hpp"
#include "kernel/iof.hpp"
#include "kernel/utilities.hpp"
#include "matrix/matrix1.hpp"

#include <algorithm>
#include <vector>

namespace quelor {

namespace {

void read_row(std::span<std::int32_t> row) {
    read_int_record("Enter record of integer data\n", row);
}
void read_row(std::span<double> row) {
    read_real_record("Enter record of real data\n", row);
}
void read_row(std::span<Complex8> row) {
    read_complex_record("Enter record of complex data\n", row);
}
void read_row(std::span<char> row) {
    read_char_record("Enter record of character data\n", row);
}

/// What a record leaves in the columns that it does not reach.
template <class T> constexpr T unread = T{};
template <> constexpr char unread<char> = ' ';

/// Stores a row whose columns beyond those read hold what a record leaves there.
template <class T> void store_row(const Matrix<T>& array, int i, std::span<const T> row) {
    for (std::size_t j = 0; j < row.size(); ++j)
        array(i, static_cast<int>(j) + 1) = row[j];
    if constexpr (unread<T> != T{})
        for (std::int64_t j = std::ssize(row); j < array.cols; ++j)
            array(i, static_cast<int>(j) + 1) = unread<T>;
}

/// Fills the rows of an array from one record each. A command file that ends before is reported;
/// the rows left stay as they are, and the answer is false.
template <class T> bool read_rows(const Matrix<T>& array) {
    std::vector<T> row(std::min(as_size(array.cols), record_limit));
    for (std::int64_t i = 0; i < array.rows; ++i) {
        read_row(row);
        store_row<T>(array, static_cast<int>(i) + 1, row);
        if (input_has_ended()) {
            print_both(" \n\tThe input file ends inside the records of an array\n");
            return false;
        }
    }
    return true;
}

template <class T> void input(bool null_ended) {
    const std::string target(get_arg(1));
    if (is_blank(target)) return print_both(" \n\tOne arguments required\n");
    std::int32_t r = 0, c = 0;
    get_int_par("r=", r);
    get_int_par("c=", c);
    const Shape shape = rc_to_dims(r, c);
    if (shape.ndim == 0) return print_both(" \n\tIncorrect dimensions\n");
    const auto array = create_matrix<T>(target, shape.rows, shape.ndim == 1 ? 0 : shape.cols);
    read_rows(array);
    if (null_ended) std::ranges::fill(array.col(array.cols), T{});
}

template <class T> void cmd_input(std::string_view) {
    input<T>(false);
}

void cmd_inputch(std::string_view) {
    input<char>(has_flag(" -null"));
}

template <class T> void cmd_input3d(std::string_view) {
    const std::string target(get_arg(1));
    if (is_blank(target)) return print_both(" \n\tOne argument required\n");
    std::int32_t r = 1, c = 1, t = 1;
    get_int_par(" r=", r);
    get_int_par(" c=", c);
    get_int_par(" t=", t);
    if (r < 1) return print_both(" \n\tNumber of rows cannot be less than 1\n");
    if (c < 1) return print_both(" \n\tNumber of columns cannot be less than 1\n");
    if (t < 1) return print_both(" \n\tNumber of tables cannot be less than 1\n");
    const auto array = create_array3<T>(target, r, c, t);
    for (int k = 1; k <= t; ++k)
        if (!read_rows(array.slice(k))) return;
}

void cmd_seti(std::string_view) {
    const std::string_view target = get_arg(1);
    if (is_blank(target)) return print_both(" \n\tOne arg required\n");
    std::int32_t value = 0;
    get_int_par("v=", value);
    create_int_scalar(target, value);
}

void cmd_setr(std::string_view) {
    const std::string_view target = get_arg(1);
    if (is_blank(target)) return print_both(" \n\tOne arg required\n");
    double value = 0;
    get_real_par("v=", value);
    create_real_scalar(target, value);
}

void cmd_setch(std::string_view) {
    constexpr std::size_t limit = 80;
    const std::string target(get_arg(1));
    if (is_blank(target)) return print_both(" \n\tOne arg required\n");
    std::string text;
    get_char_par(" s=", text, limit + 3); // room for both quotes and the NUL
    text.resize(std::min(text.size(), limit));
    if (text.empty()) return;
    const auto length = static_cast<std::int32_t>(text.size()) + (has_flag(" -null") ? 1 : 0);
    const auto array = create_matrix<char>(target, 1, length);
    std::ranges::copy(text, array.data);
}

constexpr Command rows[] = {
    {.words = {"inputi"},
     .run = cmd_input<std::int32_t>,
     .summary = "integer array from data records",
     .help =
         "Command Syntax\n\tinputi arg [r=?] [c=?]\n\n"
         "Creates the integer array arg and reads its rows, one data record each. Missing numbers are 0.\n\n"
         "r\n\tnumber of rows (default = 1, with c given)\n"
         "c\n\tnumber of columns (default: arg is a vector of r numbers, one a record)\n\n"
         "Example\n\tinputi conn r=2 c=3\n\t1 2 3\n\t3 4 5\n\nSee Also\n\tinput, inputc, inputch, input3di, seti\n"},
    {.words = {"input"},
     .run = cmd_input<double>,
     .summary = "real array from data records",
     .help =
         "Command Syntax\n\tinput arg [r=?] [c=?]\n\n"
         "Creates the real array arg and reads its rows, one data record each. Blanks and commas separate the numbers; missing numbers are 0.\n\n"
         "r\n\tnumber of rows (default = 1, with c given)\n"
         "c\n\tnumber of columns (default: arg is a vector of r numbers, one a record)\n\n"
         "Example\n\tinput a r=2 c=2\n\t1. 2.\n\t3. 4.\n\nSee Also\n\tinputi, inputc, inputch, input3d, setr\n"},
    {.words = {"inputc"},
     .run = cmd_input<Complex8>,
     .summary = "complex array from data records",
     .help =
         "Command Syntax\n\tinputc arg [r=?] [c=?]\n\n"
         "Creates the complex array arg and reads its rows, one data record each: the real and the imaginary part of each element in turn. Missing numbers are 0.\n\n"
         "r\n\tnumber of rows (default = 1, with c given)\n"
         "c\n\tnumber of columns (default: arg is a vector of r elements, one a record)\n\n"
         "Example\n\tinputc z r=1 c=2\n\t1. 0.5, 2. -0.5\n\nSee Also\n\tinput, inputi, input3dc, to_complex2\n"},
    {.words = {"inputch"},
     .run = cmd_inputch,
     .summary = "character array from data records",
     .help =
         "Command Syntax\n\tinputch arg [r=?] [c=?] [-null]\n\n"
         "Creates the character array arg and reads its rows, one data record each. A row is filled with blanks behind its record.\n\n"
         "r\n\tnumber of rows (default = 1, with c given)\n"
         "c\n\tnumber of characters in a row (default: arg is a vector of r characters, one a record)\n"
         "-null\n\tthe last column is set to NUL, so that each row is a string of c - 1 characters (default: no NUL)\n\n"
         "Example\n\tinputch name r=1 c=6 -null\n\tabc\n\nSee Also\n\tinput, setch\n"},
    {.words = {"input3di"},
     .run = cmd_input3d<std::int32_t>,
     .summary = "3-D integer array from data records",
     .help =
         "Command Syntax\n\tinput3di arg [r=?] [c=?] [t=?]\n\n"
         "Creates the integer array arg(r,c,t) and reads it table by table, r records of c numbers each. Missing numbers are 0.\n\n"
         "r\n\tnumber of rows (default = 1)\nc\n\tnumber of columns (default = 1)\nt\n\tnumber of tables (default = 1)\n\n"
         "Example\n\tinput3di k r=1 c=2 t=2\n\t1 2\n\t3 4\n\nSee Also\n\tinputi, input3d, input3dc\n"},
    {.words = {"input3d"},
     .run = cmd_input3d<double>,
     .summary = "3-D real array from data records",
     .help =
         "Command Syntax\n\tinput3d arg [r=?] [c=?] [t=?]\n\n"
         "Creates the real array arg(r,c,t) and reads it table by table, r records of c numbers each. Missing numbers are 0.\n\n"
         "r\n\tnumber of rows (default = 1)\nc\n\tnumber of columns (default = 1)\nt\n\tnumber of tables (default = 1)\n\n"
         "Example\n\tinput3d a r=1 c=2 t=2\n\t1. 2.\n\t3. 4.\n\nSee Also\n\tinput, input3di, input3dc\n"},
    {.words = {"input3dc"},
     .run = cmd_input3d<Complex8>,
     .summary = "3-D complex array from data records",
     .help =
         "Command Syntax\n\tinput3dc arg [r=?] [c=?] [t=?]\n\n"
         "Creates the complex array arg(r,c,t) and reads it table by table, r records of c elements each: the real and the imaginary part of each element in turn. Missing numbers are 0.\n\n"
         "r\n\tnumber of rows (default = 1)\nc\n\tnumber of columns (default = 1)\nt\n\tnumber of tables (default = 1)\n\n"
         "Example\n\tinput3dc z r=1 c=1 t=2\n\t1. 0.5\n\t2. -0.5\n\nSee Also\n\tinputc, input3d, input3di\n"},
    {.words = {"seti"},
     .run = cmd_seti,
     .summary = "integer scalar from a value",
     .help = "Command Syntax\n\tseti arg v=?\n\n"
             "Creates the integer scalar arg.\n\n"
             "v\n\tits value (default = 0)\n\n"
             "Example\n\tseti n v=5\n\nSee Also\n\tsetr, setch, inputi\n"},
    {.words = {"setr"},
     .run = cmd_setr,
     .summary = "real scalar from a value",
     .help = "Command Syntax\n\tsetr arg v=?\n\n"
             "Creates the real scalar arg.\n\n"
             "v\n\tits value (default = 0)\n\n"
             "Example\n\tsetr g v=9.81\n\nSee Also\n\tseti, setch, input\n"},
    {.words = {"setch"},
     .run = cmd_setch,
     .summary = "character array from a text",
     .help =
         "Command Syntax\n\tsetch arg s=? [-null]\n\n"
         "Creates the character array arg of one row that holds a text.\n\n"
         "s\n\tthe text, at most 80 characters; single quotes around it keep its blanks. Without a text nothing is made.\n"
         "-null\n\tthe text is followed by a NUL, as a text that is used with ~ must be (default: no NUL)\n\n"
         "Example\n\tsetch title s='Barge in waves' -null\n\nSee Also\n\tinputch, seti, setr\n"},
};

} // namespace

std::span<const Command> matrix1_input_rows() {
    return rows;
}

} // namespace quelor
