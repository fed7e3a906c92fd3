// Arrays of other shapes from the same elements: transposition, joining, splitting and wrapping.
// Reads the arrays named by the first arguments, writes the one named by the last. Each result is
// a few blocks of the sources put in other places.
#include "kernel/gencom.hpp"
#include "kernel/utilities.hpp"
#include "matrix/blocks.hpp"
#include "matrix/matrix2.hpp"

#include <algorithm>
#include <limits>

namespace quelor {

namespace {

// --- trans --------------------------------------------------------------------------------------

void cmd_trans(std::string_view) {
    if (is_blank(get_arg(1))) return print_both(" \n\tOne argument required\n");
    const std::string source(get_arg(1)), target(is_blank(get_arg(2)) ? source : get_arg(2));
    const ArrayRef array = find_array(source);
    if (!array) return not_found(source);
    if (array.ndim() > 2) return print_both(" \n\tArray dimensions must be <= 2\n");
    if (!is_movable(array.type)) return print_both(" \n\tNot implemented for this type\n");
    Result result(target, "$mattrans", {source});
    result.create(array.type, {array.cols(), array.rows()});
    const SourceBlock all = source_block(array);
    copy_block(element_size(array.type), array.cols(), array.rows(),
               {all.data, all.col_step, all.row_step}, target_block(result.array()));
    result.place();
}

// --- joinh, joinv -------------------------------------------------------------------------------

/// `side_by_side`: the second array behind the columns of the first; otherwise below its rows.
template <bool side_by_side> void cmd_join(std::string_view) {
    if (is_blank(get_arg(3))) return print_both(" \n\tThree arguments required\n");
    const std::string first(get_arg(1)), second(get_arg(2)), target(get_arg(3));
    const ArrayRef a = find_array(first), b = find_array(second);
    if (!a) return not_found(first);
    if (!b) return not_found(second);
    if (a.type != b.type) return print_both(" \n\tIncompatible types\n");
    if (a.ndim() > 2 || b.ndim() > 2) return print_both(" \n\tArray dimensions must be <= 2\n");
    const std::int64_t rows = side_by_side ? a.rows() : std::int64_t{a.rows()} + b.rows();
    const std::int64_t cols = side_by_side ? std::int64_t{a.cols()} + b.cols() : a.cols();
    if ((side_by_side ? a.rows() != b.rows() : a.cols() != b.cols()) ||
        std::max(rows, cols) > std::numeric_limits<std::int32_t>::max())
        return print_both(" \n\tDimensions are incompatible\n");
    if (!is_movable(a.type)) return print_both(" \n\tNot implemented for this type\n");
    Result result(target, "$join", {first, second});
    const std::int32_t dims[] = {static_cast<std::int32_t>(rows), static_cast<std::int32_t>(cols)};
    const bool is_vector = !side_by_side && a.ndim() == 1 && b.ndim() == 1;
    result.create(a.type, std::span(dims).first(is_vector ? 1 : 2));
    const TargetBlock all = target_block(result.array());
    const int element = element_size(a.type);
    copy_block(element, a.rows(), a.cols(), source_block(a), all);
    copy_block(element, b.rows(), b.cols(), source_block(b),
               side_by_side ? all.at(0, a.cols()) : all.at(a.rows(), 0));
    result.place();
}

// --- split, unsplit, wrap, unwrap ---------------------------------------------------------------

/// Dims of the result and the number of pieces of the array that it is made of.
struct Pieces {
    std::int64_t rows = 0, cols = 0; ///< of the result
    std::int64_t count = 1;
    bool is_copy = false; ///< the whole array is one piece
};

/// One of the four commands: the key of its parameter, its work array, its pieces for a parameter
/// of `size`, and the copy of all pieces into the result.
struct Reshaping {
    std::string_view key, work;
    Pieces (*pieces)(const ArrayRef& array, std::int32_t size);
    void (*move)(const ArrayRef& array, const Pieces& pieces, TargetBlock to);
};

std::int64_t groups(std::int64_t total, std::int64_t size) {
    return (total + size - 1) / size;
}

/// Groups of c columns, one above the other or in turn by rows.
Pieces pieces_of_columns(const ArrayRef& array, std::int32_t c) {
    const std::int64_t count = groups(array.cols(), c);
    return {array.rows() * count, c, count, c >= array.cols()};
}
/// Groups of r rows side by side.
Pieces pieces_of_rows(const ArrayRef& array, std::int32_t r) {
    const std::int64_t count = groups(array.rows(), r);
    return {r, array.cols() * count, count, r >= array.rows()};
}
/// r rows, each of as many rows of the array joined end to end; no rows when they do not go up.
Pieces pieces_joined(const ArrayRef& array, std::int32_t r) {
    const bool is_copy = r >= array.rows();
    if (!is_copy && array.rows() % r != 0) return {};
    const std::int64_t count = is_copy ? 1 : array.rows() / r;
    return {r, array.cols() * count, count, is_copy};
}

void move_split(const ArrayRef& array, const Pieces& pieces, TargetBlock to) {
    for (std::int64_t k = 0; k < pieces.count; ++k)
        copy_block(element_size(array.type), array.rows(),
                   std::min(pieces.cols, array.cols() - k * pieces.cols),
                   source_block(array).at(0, k * pieces.cols), to.at(k * array.rows(), 0));
}
void move_unsplit(const ArrayRef& array, const Pieces& pieces, TargetBlock to) {
    for (std::int64_t k = 0; k < pieces.count; ++k)
        copy_block(element_size(array.type), std::min(pieces.rows, array.rows() - k * pieces.rows),
                   array.cols(), source_block(array).at(k * pieces.rows, 0),
                   to.at(0, k * array.cols()));
}
void move_wrapped(const ArrayRef& array, const Pieces& pieces, TargetBlock to) {
    for (std::int64_t k = 0; k < pieces.count; ++k) {
        TargetBlock piece = to.at(k, 0);
        piece.row_step *= pieces.count;
        copy_block(element_size(array.type), array.rows(),
                   std::min(pieces.cols, array.cols() - k * pieces.cols),
                   source_block(array).at(0, k * pieces.cols), piece);
    }
}
void move_unwrapped(const ArrayRef& array, const Pieces& pieces, TargetBlock to) {
    for (std::int64_t k = 0; k < pieces.count; ++k) {
        SourceBlock piece = source_block(array).at(k, 0);
        piece.row_step *= pieces.count;
        copy_block(element_size(array.type), pieces.rows, array.cols(), piece,
                   to.at(0, k * array.cols()));
    }
}

constexpr Reshaping split{" c=", "$split", pieces_of_columns, move_split};
constexpr Reshaping unsplit{" r=", "$unsplit", pieces_of_rows, move_unsplit};
constexpr Reshaping wrap{" c=", "$wrap", pieces_of_columns, move_wrapped};
constexpr Reshaping unwrap{" r=", "$unwrap", pieces_joined, move_unwrapped};

template <const Reshaping& reshaping> void cmd_reshape(std::string_view) {
    if (is_blank(get_arg(1))) return print_both(" \n\tOne argument required\n");
    const std::string source(get_arg(1)), target(is_blank(get_arg(2)) ? source : get_arg(2));
    std::int32_t size = 1;
    get_int_par(reshaping.key, size);
    const ArrayRef array = find_array(source);
    if (!array) return not_found(source);
    if (array.ndim() > 2) return print_both(" \n\tArray dimensions must be <= 2\n");
    if (!is_movable(array.type))
        return print_both(" \n\tCommand not yet implemented for this type\n");
    if (size < 1) return print_both(" \n\tDimensions are incompatible\n");
    const Pieces pieces = reshaping.pieces(array, size);
    if (pieces.rows == 0) return print_both(" \nIncorrect dimensions for unwrap\n");
    if (pieces.is_copy) {
        if (source != target) copy_array(source, target);
        return;
    }
    if (std::max(pieces.rows, pieces.cols) > std::numeric_limits<std::int32_t>::max())
        return print_both(" \n\tDimensions are incompatible\n");
    Result result(target, reshaping.work, {source});
    result.create(array.type,
                  {static_cast<std::int32_t>(pieces.rows), static_cast<std::int32_t>(pieces.cols)});
    reshaping.move(array, pieces, target_block(result.array()));
    result.place();
}

constexpr Command rows[] = {
    {.words = {"trans"},
     .run = cmd_trans,
     .summary = "transpose a matrix",
     .help =
         "Command Syntax\n\ttrans arg1 [arg2]\n\n"
         "Transposes the matrix or vector arg1, of any type. Complex elements are not conjugated. Of a vector of length n the result is a matrix of one row.\n\n"
         "arg2\n\tname of the result (default: it replaces arg1)\n\n"
         "Example\n\tseries v x=1,3\n\ttrans v row\n\nSee Also\n\ttmult, conjugate, to_vector\n"},
    {.words = {"split"},
     .run = cmd_reshape<split>,
     .summary = "stack groups of columns",
     .help =
         "Command Syntax\n\tsplit arg1 [arg2] [c=?]\n\n"
         "Puts groups of c columns of the matrix arg1, of any type, one below the other: the result has c columns and the rows of arg1 times the number of groups. Columns that the last group lacks are zero. With c at or above the columns of arg1 the result is a copy.\n\n"
         "arg2\n\tname of the result (default: it replaces arg1)\n"
         "c\n\tnumber of columns in a group (default = 1)\n\n"
         "Example\n\tzero a r=10 c=8 v=1\n\tsplit a b c=4\n\t(b has 20 rows and 4 columns)\n\nSee Also\n\tunsplit, wrap, joinv\n"},
    {.words = {"unsplit"},
     .run = cmd_reshape<unsplit>,
     .summary = "put groups of rows side by side",
     .help =
         "Command Syntax\n\tunsplit arg1 [arg2] [r=?]\n\n"
         "Puts groups of r rows of the matrix or vector arg1, of any type, side by side: the result has r rows and the columns of arg1 times the number of groups. Rows that the last group lacks are zero. With r at or above the rows of arg1 the result is a copy.\n\n"
         "arg2\n\tname of the result (default: it replaces arg1)\n"
         "r\n\tnumber of rows in a group (default = 1)\n\n"
         "Example\n\tzero a r=20 c=4 v=1\n\tunsplit a b r=10\n\t(b has 10 rows and 8 columns)\n\nSee Also\n\tsplit, unwrap, joinh\n"},
    {.words = {"wrap"},
     .run = cmd_reshape<wrap>,
     .summary = "wrap each row into several rows",
     .help =
         "Command Syntax\n\twrap arg1 [arg2] [c=?]\n\n"
         "Wraps each row of the matrix arg1, of any type, into consecutive rows of c columns; the first row of arg1 fills the first rows of the result. Zeros fill out a short last row of each. With c at or above the columns of arg1 the result is a copy.\n\n"
         "arg2\n\tname of the result (default: it replaces arg1)\n"
         "c\n\tnumber of columns of the result (default = 1)\n\n"
         "Example\n\tzero a r=2 c=6 v=1\n\twrap a b c=3\n\t(b has 4 rows and 3 columns)\n\nSee Also\n\tunwrap, split\n"},
    {.words = {"unwrap"},
     .run = cmd_reshape<unwrap>,
     .summary = "join consecutive rows end to end",
     .help =
         "Command Syntax\n\tunwrap arg1 [arg2] [r=?]\n\n"
         "Joins consecutive rows of the matrix or vector arg1, of any type, end to end, so that r rows result. r must divide the rows of arg1 evenly; with r at or above them the result is a copy.\n\n"
         "arg2\n\tname of the result (default: it replaces arg1)\n"
         "r\n\tnumber of rows of the result (default = 1)\n\n"
         "Example\n\tzero a r=4 c=3 v=1\n\tunwrap a b r=2\n\t(b has 2 rows and 6 columns)\n\nSee Also\n\twrap, unsplit\n"},
    {.words = {"joinh"},
     .run = cmd_join<true>,
     .summary = "two matrices side by side",
     .help =
         "Command Syntax\n\tjoinh arg1 arg2 arg3\n\n"
         "Creates the matrix arg3 with arg1 and arg2 side by side. They are matrices or vectors of one type, any one, with the same number of rows. There are no defaults.\n\n"
         "Example\n\tident a r=3\n\tseries v x=1,3\n\tjoinh a v b\n\nSee Also\n\tjoinv, put, unsplit\n"},
    {.words = {"joinv"},
     .run = cmd_join<false>,
     .summary = "two matrices one on top of the other",
     .help =
         "Command Syntax\n\tjoinv arg1 arg2 arg3\n\n"
         "Creates the matrix arg3 with arg1 on top of arg2. They are matrices or vectors of one type, any one, with the same number of columns; of two vectors arg3 is a vector. There are no defaults.\n\n"
         "Example\n\tident a r=3\n\tzero b r=2 c=3\n\tjoinv a b c\n\nSee Also\n\tjoinh, put, split\n"},
};

} // namespace

std::span<const Command> matrix2_shape_rows() {
    return rows;
}

} // namespace quelor
