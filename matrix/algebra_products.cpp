// Products of matrices.
// Reads the arrays named by the first two arguments and creates the third.
#include "matrix/algebra.hpp"
#include "numeric/dense_products.hpp"

#include "kernel/gencom.hpp"

#include <array>

namespace quelor {

namespace {

template <bool transposed> void cmd_mult(std::string_view) {
    if (is_blank(get_arg(3))) return print_both(" \n\tThree arguments required\n");
    const ArrayPair arrays = find_arguments_2d(1, 2);
    if (!arrays) return;
    const ArrayRef a = arrays.a, b = arrays.b;
    if (a.type != b.type) return print_both(" \n\tIncompatible types\n");
    if ((transposed ? a.rows() : a.cols()) != b.rows())
        return print_both(" \n\tDimensions are incompatible\n");
    if (!is_numeric(a)) return print_both(" \n\tNot implemented for array types\n");
    Result result(get_arg(3), "$matmult", {get_arg(1), get_arg(2)});
    with_type(a.type, [&]<class T>(std::type_identity<T>) {
        const auto x = as_matrix<const T>(a), y = as_matrix<const T>(b);
        mat_mult(x, y, result.matrix<T>(transposed ? x.cols : x.rows, y.cols), transposed);
    });
    result.place();
}

template <class T> T column_product(std::span<const T> x, std::span<const T> y) {
    T sum{};
    for (std::size_t i = 0; i < x.size(); ++i)
        sum = plus(sum, times(x[i], y[i]));
    return sum;
}

void cmd_mult_col(std::string_view) {
    if (is_blank(get_arg(3))) return print_both(" \n\tThree arguments required\n");
    const std::string target(get_arg(3));
    const ArrayPair arrays = find_arguments_2d(1, 2);
    if (!arrays) return;
    const ArrayRef a = arrays.a, b = arrays.b;
    if (a.type != b.type) return print_both(" \n\tIncompatible types\n");
    if (a.rows() != b.rows() || a.cols() != b.cols())
        return print_both(" \n\tDimensions are incompatible\n");
    if (!is_numeric(a)) return print_both(" \n\tNot implemented for array types\n");
    Result result(target, algebra_work);
    with_type(a.type, [&]<class T>(std::type_identity<T>) {
        const auto x = as_matrix<const T>(a), y = as_matrix<const T>(b);
        const auto row = result.matrix<T>(1, x.cols);
        for (int j = 1; j <= x.cols; ++j)
            row(1, j) = column_product(x.col(j), y.col(j));
    });
    result.place();
}

void cmd_diag_mult(std::string_view) {
    if (is_blank(get_arg(3))) return print_both(" \n\tThree arguments required\n");
    const std::string target(get_arg(3));
    const ArrayPair arrays = find_arguments(1, 2);
    if (!arrays) return;
    const ArrayRef d = arrays.a, b = arrays.b;
    if (d.ndim() != 1) return print_both(" \n\targ1 must be a vector\n");
    if (b.ndim() > 2) return print_both(" \n\targ2 must be a 1-D or a 2-D array");
    if (d.rows() != b.rows()) return print_both(" \n\tDimensions are incompatible\n");
    if (d.type != b.type) return print_both(" \n\tIncompatible types\n");
    if (!is_numeric(d)) return print_both(" \n\tNot implemented for array types\n");
    Result result(target, algebra_work);
    with_type(d.type, [&]<class T>(std::type_identity<T>) {
        const auto diagonal = as_matrix<const T>(d), x = as_matrix<const T>(b);
        const Matrix<T> y{static_cast<T*>(result.create(d.type, b.dims)), x.rows, x.cols};
        for (int j = 1; j <= x.cols; ++j)
            for (int i = 1; i <= x.rows; ++i)
                y(i, j) = times(diagonal(i), x(i, j));
    });
    result.place();
}

constexpr Command rows[] = {
    {.words = {"mult"},
     .run = cmd_mult<false>,
     .summary = "product of two matrices",
     .help =
         "Command Syntax\n\tmult arg1 arg2 arg3\n\n"
         "Creates arg3 = arg1 * arg2. Both must have the same type, integer, real or complex, and the columns of arg1 must be as many as the rows of arg2. arg3 may be the name of arg1 or arg2. There are no defaults.\n\n"
         "Example\n\tident a r=2 c=2\n\tzero b r=2 c=3 v=4\n\tmult a b c\n\n"
         "See Also\n\ttmult, mult_col, mult_elem, diag_mult, pmult\n"},
    {.words = {"tmult"},
     .run = cmd_mult<true>,
     .summary = "product of a transposed matrix and a matrix",
     .help =
         "Command Syntax\n\ttmult arg1 arg2 arg3\n\n"
         "Creates arg3 = Transpose(arg1) * arg2; complex numbers are not conjugated. Both must have the same type, integer, real or complex, and the same number of rows. arg3 may be the name of arg1 or arg2. There are no defaults.\n\n"
         "Example\n\tident a r=2 c=2\n\tzero b r=2 c=3 v=4\n\ttmult b a c\n\n"
         "See Also\n\tmult, trans, mult_col\n"},
    {.words = {"mult_col", "col_mult"},
     .run = cmd_mult_col,
     .summary = "dot products of the columns of two matrices",
     .help =
         "Command Syntax\n\tmult_col arg1 arg2 arg3\n\n"
         "Creates the row vector arg3: element i is the dot product of columns i of arg1 and arg2, which must have the same dimensions and the same type, integer, real or complex. Complex numbers are not conjugated. The command is also known as col_mult. There are no defaults.\n\n"
         "Example\n\tident a r=2 c=2\n\tzero b r=2 c=2 v=4\n\tmult_col a b d\n\n"
         "See Also\n\tmult, tmult, mult_elem\n"},
    {.words = {"diag_mult"},
     .run = cmd_diag_mult,
     .summary = "product of a diagonal matrix and a matrix",
     .help =
         "Command Syntax\n\tdiag_mult arg1 arg2 arg3\n\n"
         "Creates arg3 = arg1 * arg2 for a diagonal matrix arg1. Both must have the same type: integer, real or complex. There are no defaults.\n\n"
         "arg1\n\tvector of the diagonal, as long as arg2 has rows\n"
         "arg2\n\tmatrix or vector\n"
         "arg3\n\tthe product, with the dimensions of arg2\n\n"
         "Example\n\tzero d r=2 v=3\n\tident a r=2 c=2\n\tdiag_mult d a b\n\n"
         "See Also\n\tmult, mult_elem, scale\n"},
};

} // namespace

std::span<const Command> algebra_products_rows() {
    return rows;
}

} // namespace quelor
