// Parts of arrays taken out and put in: blocks, diagonals, planes of 3-D arrays.
// Reads the array named by the first argument. `cp`, `cpdg` and `array3d_slice` write the array
// named by the second; `put`, `putdg` and `array3d_unslice` change elements of it.
#include "kernel/gencom.hpp"
#include "kernel/utilities.hpp"
#include "matrix/blocks.hpp"
#include "matrix/matrix2.hpp"

#include <algorithm>
#include <limits>
#include <optional>

namespace quelor {

namespace {

/// What a parameter holds that does not stand on the line.
constexpr std::int32_t not_given = std::numeric_limits<std::int32_t>::min();

std::int32_t int_par(std::string_view key, std::int32_t value = not_given) {
    get_int_par(key, value);
    return value;
}

/// True when `count` elements from number `first` lie within `size`.
bool fits(std::int32_t first, std::int32_t count, std::int32_t size) {
    return first >= 1 && count >= 1 && std::int64_t{first} + count - 1 <= size;
}

// --- cp -----------------------------------------------------------------------------------------

/// A block of rows and columns of one table; what is not given is the rest of the array.
struct Region {
    std::int32_t r = int_par(" r="), n = int_par(" n=");
    std::int32_t c = int_par(" c="), m = int_par(" m=");
    std::int32_t table = int_par(" table=");

    bool is_given() const { return std::max({r, n, c, m, table}) != not_given; }
    void complete(const ArrayRef& array) {
        if (r == not_given) r = 1;
        if (c == not_given) c = 1;
        if (n == not_given && r <= array.rows()) n = array.rows() - std::max(r, 1) + 1;
        if (m == not_given && c <= array.cols()) m = array.cols() - std::max(c, 1) + 1;
        if (table == not_given && array.ndim() < 3) table = 1;
    }
};

void copy_region(const ArrayRef& array, const Region& region, Result& result) {
    if (array.ndim() == 1)
        result.create(array.type, {region.n});
    else
        result.create(array.type, {region.n, region.m});
    // Tables follow each other as groups of columns.
    const std::ptrdiff_t column = std::ptrdiff_t{region.table - 1} * array.cols() + region.c - 1;
    copy_block(element_size(array.type), region.n, region.m,
               source_block(array).at(region.r - 1, column), target_block(result.array()));
    result.place();
}

void cmd_cp(std::string_view) {
    if (is_blank(get_arg(2))) return print_both(" \n\tTwo arguments required\n");
    const std::string source(get_arg(1)), target(get_arg(2));
    Region region;
    if (!region.is_given()) {
        if (source != target || !array_exists(source)) copy_array(source, target);
        return;
    }
    const ArrayRef array = find_array(source);
    if (!array) return print_both(" Copy failed\n");
    if (array.ndim() > 3) return print_both(" \nArray dimension > 3.\n\tcp quitting.\n");
    if (!is_movable(array.type)) return print_both(" \n\tNot implemented for this type\n");
    region.complete(array);
    if (!fits(region.table, 1, array.dim(3)))
        return print_both(" \n\tParameter table is out of range.\n\tcp is quitting.\n");
    if (!fits(region.r, region.n, array.rows()) || !fits(region.c, region.m, array.cols()))
        return print_both(" \n\tDimensions are incompatible\n");
    Result result(target, "$cp", {source});
    copy_region(array, region, result);
}

// --- diagonals, put -----------------------------------------------------------------------------

/// The diagonal from element (r, r) on, as a column.
template <class Byte> Block<Byte> diagonal(Block<Byte> matrix, std::int32_t r) {
    const Block<Byte> start = matrix.at(r - 1, r - 1);
    return {start.data, matrix.row_step + matrix.col_step, 0};
}

void cmd_cpdg(std::string_view) {
    if (is_blank(get_arg(2))) return print_both(" \n\tTwo arguments required\n");
    const std::string source(get_arg(1)), target(get_arg(2));
    const std::int32_t r = int_par("r=", 1);
    std::int32_t n = int_par("n=");
    const ArrayRef array = find_array(source);
    if (!array) return not_found(source);
    if (array.ndim() > 2) return print_both(" \n\tArray dimensions must be <= 2\n");
    if (!is_movable(array.type)) return print_both(" \n\tNot implemented for this type\n");
    const std::int32_t length = std::min(array.rows(), array.cols());
    if (n == not_given && r <= length) n = length - std::max(r, 1) + 1;
    if (!fits(r, n, length)) return print_both(" \n\tDimensions are incompatible\n");
    Result result(target, "$cpdg", {source});
    result.create(array.type, {n});
    copy_block(element_size(array.type), n, 1, diagonal(source_block(array), r),
               target_block(result.array()));
    result.place();
}

/// The two arrays of `put` and `putdg`; absent after a message that they do not suit each other.
struct ArrayPair {
    ArrayRef from, to;
};
std::optional<ArrayPair> pair_to_put() {
    const ArrayRef from = find_array(get_arg(1)), to = find_array(get_arg(2));
    if (is_blank(get_arg(2)))
        print_both(" \n\tTwo arguments required\n");
    else if (!from)
        not_found(get_arg(1));
    else if (!to)
        not_found(get_arg(2));
    else if (from.type != to.type)
        print_both(" \n\tIncompatible types\n");
    else if (from.ndim() > 2 || to.ndim() > 2)
        print_both(" \n\tArray dimensions must be <= 2\n");
    else if (!is_movable(from.type))
        print_both(" \n\tNot implemented for this type\n");
    else
        return ArrayPair{from, to};
    return {};
}

void cmd_put(std::string_view) {
    const std::int32_t r = int_par(" r=", 1), c = int_par(" c=", 1);
    const auto pair = pair_to_put();
    if (!pair) return;
    const auto& [from, to] = *pair;
    if (!fits(r, from.rows(), to.rows()) || !fits(c, from.cols(), to.cols()))
        return print_both(" \n\tDimensions are incompatible\n");
    if (from.data == to.data) return; // onto itself
    copy_block(element_size(from.type), from.rows(), from.cols(), source_block(from),
               target_block(to).at(r - 1, c - 1));
}

void cmd_putdg(std::string_view) {
    const std::int32_t r = int_par("r=", 1);
    const auto pair = pair_to_put();
    if (!pair) return;
    const auto& [from, to] = *pair;
    const std::int32_t n = std::max(from.rows(), from.cols());
    const bool is_vector = std::min(from.rows(), from.cols()) == 1;
    if (!is_vector || !fits(r, n, std::min(to.rows(), to.cols())))
        return print_both(" \n\tDimensions are incompatible\n");
    if (from.data == to.data) return; // a single element
    const std::ptrdiff_t element = element_size(from.type);
    const SourceBlock vector{source_block(from).data, element, 0}; // a row or a column
    copy_block(element_size(from.type), n, 1, vector, diagonal(target_block(to), r));
}

// --- planes of 3-D arrays -----------------------------------------------------------------------

/// Which index of a 3-D array is held, and at which value; the first of r, c and t counts.
struct PlaneChoice {
    int index = 0; ///< 1 row, 2 column, 3 table, 0 none
    std::int32_t value = 0;
};

PlaneChoice plane_choice() {
    static constexpr std::string_view keys[] = {" r=", " c=", " t="};
    for (int index = 1; index <= 3; ++index)
        if (const std::int32_t value = int_par(keys[index - 1]); value != not_given)
            return {index, value};
    return {};
}

/// A plane as a matrix: its rows and columns are the two indices left, in their order.
template <class Byte> struct Plane {
    std::int32_t rows, cols;
    Block<Byte> block;
};

template <class Byte>
Plane<Byte> plane_of(const ArrayRef& array, PlaneChoice choice, Block<Byte> all) {
    const std::ptrdiff_t table_step = all.col_step * array.cols();
    const std::ptrdiff_t step[] = {all.row_step, all.col_step, table_step};
    const int row = choice.index == 1 ? 2 : 1, col = choice.index == 3 ? 2 : 3;
    return {array.dim(row),
            array.dim(col),
            {all.data + (choice.value - 1) * step[choice.index - 1], step[row - 1], step[col - 1]}};
}

void cmd_array3d_slice(std::string_view) {
    static constexpr std::string_view bad_value[] = {
        " \nInvalid value for r.\n\tCommand quitting.\n",
        " \nInvalid value for c.\n\tCommand quitting.\n",
        " \nInvalid value for t.\n\tCommand quitting.\n"};
    if (is_blank(get_arg(2))) return print_both(" \n\tTwo arguments required\n");
    const std::string source(get_arg(1)), target(get_arg(2));
    const PlaneChoice choice = plane_choice();
    const ArrayRef array = find_array(source);
    if (!array) return not_found(source);
    if (array.ndim() != 3)
        return print_both(" \nFirst argument must be a 3-D array.\n\tCommand quitting.\n");
    if (!is_movable(array.type)) return print_both(" \n\tUnsupported array type\n");
    if (choice.index == 0)
        return print_both(" \n\tCommand failed: One of r, c, or t must be specified");
    if (!fits(choice.value, 1, array.dim(choice.index)))
        return print_both(bad_value[choice.index - 1]);
    const auto plane = plane_of(array, choice, source_block(array));
    Result result(target, "$slice", {source});
    result.create(array.type, {plane.rows, plane.cols});
    copy_block(element_size(array.type), plane.rows, plane.cols, plane.block,
               target_block(result.array()));
    result.place();
}

void cmd_array3d_unslice(std::string_view) {
    if (is_blank(get_arg(2))) return print_both(" \n\tTwo arguments required\n");
    const PlaneChoice choice = plane_choice();
    const ArrayRef from = find_array(get_arg(1)), to = find_array(get_arg(2));
    if (!from) return not_found(get_arg(1));
    if (!to) return not_found(get_arg(2));
    if (from.ndim() != 2)
        return print_both(" \n\tCommand failed: First argument must be a 2-D matrix");
    if (to.ndim() != 3)
        return print_both(" \n\tCommand failed: Second argument must be a 3-D array");
    if (from.type != to.type)
        return print_both(" \n\tCommand failed: the types of the arguments must agree");
    if (choice.index == 0)
        return print_both(" \n\tCommand failed: One of r, c, or t must be specified");
    if (!is_movable(to.type)) return print_both(" \n\tUnsupported array type\n");
    const bool is_inside = fits(choice.value, 1, to.dim(choice.index));
    const auto plane = plane_of(to, {choice.index, is_inside ? choice.value : 1}, target_block(to));
    if (!is_inside || plane.rows != from.rows() || plane.cols != from.cols())
        return print_both(" \n\tCommand failed: Incompatible dimensions");
    copy_block(element_size(to.type), plane.rows, plane.cols, source_block(from), plane.block);
}

constexpr Command rows[] = {
    {.words = {"cp", "copy"},
     .run = cmd_cp,
     .summary = "copy an array or a block of it",
     .help =
         "Command Syntax\n\tcp arg1 arg2 [r=?] [n=?] [c=?] [m=?] [table=?]\n\n"
         "Creates arg2 as a copy of the array arg1, of any type. With parameters, arg2 is the block of n rows and m columns of arg1 that begins at row r and column c; arg1 then has at most 3 dimensions. copy is the same command.\n\n"
         "r\n\tfirst row (default = 1)\n"
         "n\n\tnumber of rows (default: the rest)\n"
         "c\n\tfirst column (default = 1)\n"
         "m\n\tnumber of columns (default: the rest)\n"
         "table\n\ttable of a 3-D array (no default when other parameters are given)\n\n"
         "Example\n\tident a r=4\n\tcp a b r=2 n=2 m=3\n\nSee Also\n\tput, cpdg, array3d_slice, dim_reduce, mv\n"},
    {.words = {"cpdg"},
     .run = cmd_cpdg,
     .summary = "vector of the diagonal of a matrix",
     .help =
         "Command Syntax\n\tcpdg arg1 arg2 [r=?] [n=?]\n\n"
         "Creates the vector arg2 from the diagonal of the matrix arg1, of any type: the elements (i,i) for n rows i from r on.\n\n"
         "r\n\tfirst row (default = 1)\n"
         "n\n\tnumber of elements (default: the rest of the diagonal)\n\n"
         "Example\n\tident a r=4\n\tcpdg a d r=2 n=2\n\nSee Also\n\tputdg, cp, diag_mult\n"},
    {.words = {"array3d_slice"},
     .run = cmd_array3d_slice,
     .summary = "matrix from a plane of a 3-D array",
     .help =
         "Command Syntax\n\tarray3d_slice arg1 arg2 [r=?] [c=?] [t=?]\n\n"
         "Creates the matrix arg2 from a plane of the 3-D array arg1(n,m,p), of any type. One of r, c and t is given; of several the first in this order counts.\n\n"
         "r\n\ta row: arg2(1:m,1:p) = arg1(r,1:m,1:p)\n"
         "c\n\ta column: arg2(1:n,1:p) = arg1(1:n,c,1:p)\n"
         "t\n\ta table: arg2(1:n,1:m) = arg1(1:n,1:m,t)\n\n"
         "Example\n\tzero a r=2 c=3 t=4 v=1\n\tarray3d_slice a b c=3\n\nSee Also\n\tarray3d_unslice, dim_reduce, cp\n"},
    {.words = {"array3d_unslice"},
     .run = cmd_array3d_unslice,
     .summary = "put a matrix into a plane of a 3-D array",
     .help =
         "Command Syntax\n\tarray3d_unslice arg1 arg2 [r=?] [c=?] [t=?]\n\n"
         "Puts the matrix arg1 into a plane of the 3-D array arg2(n,m,p) of the same type, any one. The rest of arg2 stays. One of r, c and t is given; of several the first in this order counts.\n\n"
         "r\n\ta row: arg2(r,1:m,1:p) = arg1(1:m,1:p)\n"
         "c\n\ta column: arg2(1:n,c,1:p) = arg1(1:n,1:p)\n"
         "t\n\ta table: arg2(1:n,1:m,t) = arg1(1:n,1:m)\n\n"
         "Example\n\tzero a r=2 c=3 t=4\n\tzero b r=2 c=4 v=1\n\tarray3d_unslice b a c=3\n\nSee Also\n\tarray3d_slice, put\n"},
    {.words = {"put"},
     .run = cmd_put,
     .summary = "put an array into another",
     .help =
         "Command Syntax\n\tput arg1 arg2 [r=?] [c=?]\n\n"
         "Puts the elements of arg1 into arg2, of the same type, any one, from row r and column c on; arg1 must fit inside arg2. The rest of arg2 stays.\n\n"
         "r\n\trow of arg2 where arg1 begins (default = 1)\n"
         "c\n\tcolumn of arg2 where arg1 begins (default = 1)\n\n"
         "Example\n\tzero a r=4 c=4\n\tident b r=2\n\tput b a r=3 c=2\n\nSee Also\n\tputdg, cp, joinh, joinv\n"},
    {.words = {"putdg"},
     .run = cmd_putdg,
     .summary = "put a vector on a diagonal",
     .help =
         "Command Syntax\n\tputdg arg1 arg2 [r=?]\n\n"
         "Puts the elements of the vector arg1 on the diagonal of the matrix arg2, of the same type, any one, from element (r,r) on; arg1 must fit. The rest of arg2 stays.\n\n"
         "r\n\trow of arg2 where arg1 begins (default = 1)\n\n"
         "Example\n\tzero a r=4 c=4\n\tseries v x=1,3\n\tputdg v a r=2\n\nSee Also\n\tcpdg, put, ident, diag_mult\n"},
};

} // namespace

std::span<const Command> matrix2_copy_rows() {
    return rows;
}

} // namespace quelor
