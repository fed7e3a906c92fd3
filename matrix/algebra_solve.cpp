// Linear equations with a full matrix, and its inverse.
// Reads and overwrites the arrays named by the arguments; `gauss -pp` works with `$gauss_max`,
// `$gauss_rindx` and `$x`.
#include "matrix/algebra.hpp"
#include "matrix/gauss.hpp"

#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"

#include <algorithm>
#include <vector>

namespace quelor {

namespace {

// --- messages of the diagonals ---

void report_zero(int j, std::span<const std::int32_t> order) {
    if (order.empty()) {
        write_both("10(/, ' Zero diagonal enountered during matrix ',                "
                   "'factorizaton - equation', i6, /)",
                   {j});
        return;
    }
    write_both("10(/, ' Zero diagonal enountered during matrix ',                "
               "'factorizaton - equation', i7, ' (original equation', i7, ')')",
               {j, order[nth(j)]});
}

void report_loss(int digits, int j, std::span<const std::int32_t> order) {
    if (order.empty()) {
        write_both("30('      Warning:', i3, ' digits lost in diagonal', i7,/)", {digits, j});
        return;
    }
    write_both("30('      Warning:', i3, ' digits lost in diagonal of ',                "
               "'equation', i7, ' (original equation', i7, ')', /)",
               {digits, j, order[nth(j)]});
}

/// Reports zero diagonals and, from `limit` on, the digits lost where a sum cancels a diagonal.
void report_diagonals(std::span<const GaussDiagonal> diagonals, int limit,
                      std::span<const std::int32_t> order) {
    int j = 0;
    for (const auto& [before, subtracted, after] : diagonals) {
        ++j;
        if (after == 0) {
            report_zero(j, order);
        } else if (before * subtracted > 0) {
            const int digits =
                std::max(exponent10(before), exponent10(subtracted)) - exponent10(after);
            if (digits >= limit) report_loss(digits, j, order);
        }
    }
}

// --- gauss ---

/// Factors of the matrix, and the messages of a real one.
void factor(Matrix<double> a, int digits) {
    std::vector<GaussDiagonal> diagonals(as_size(a.rows));
    gauss_factor(a, diagonals);
    report_diagonals(diagonals, digits, {});
}
void factor(Matrix<Complex8> a, int) {
    gauss_factor(a);
}
void factor(Matrix<double> a, int digits, std::span<const double> scale,
            std::span<std::int32_t> order) {
    std::vector<GaussDiagonal> diagonals(as_size(a.rows));
    gauss_factor(a, diagonals, scale, order);
    report_diagonals(diagonals, digits, order);
}
void factor(Matrix<Complex8> a, int, std::span<const double> scale, std::span<std::int32_t> order) {
    gauss_factor(a, scale, order);
}

template <class T> void solve_plainly(Matrix<T> a, Matrix<T> b, int digits) {
    factor(a, digits);
    gauss_solve(Matrix<const T>(a), b);
}

template <class T> void row_scales(Matrix<const T> a, std::span<double> scale) {
    for (int j = 1; j <= a.cols; ++j)
        for (int i = 1; i <= a.rows; ++i) {
            double& largest = scale[nth(i)];
            largest = std::max(largest, std::abs(a(i, j)));
        }
    for (double& x : scale)
        x = 1 / x;
}

template <class T> void solve_with_row_order(Matrix<T> a, Matrix<T> b, int digits) {
    const Temporary<double> scale(unused_name("$gauss_max"), a.rows, 0);
    const Temporary<std::int32_t> order(unused_name("$gauss_rindx"), a.rows, 0);
    const Temporary<T> x(unused_name("$x"), a.rows, 0);
    row_scales(Matrix<const T>(a), scale.view.all());
    factor(a, digits, scale.view.all(), order.view.all());
    for (int j = 1; j <= b.cols; ++j) {
        std::ranges::copy(b.col(j), x.view.data);
        for (int i = 1; i <= b.rows; ++i)
            b(i, j) = x.view(order.view(i));
    }
    gauss_solve(Matrix<const T>(a), b);
    gauss_restore(a, std::span<const std::int32_t>(order.view.all()));
}

template <class T> void solve(const ArrayRef& a, const ArrayRef& b, bool row_order, int digits) {
    const auto matrix = as_matrix<T>(a), right = as_matrix<T>(b);
    std::vector<T> copy; // of a matrix that is its own right-hand side
    if (a.data == b.data) copy.assign(right.data, right.data + right.all().size());
    const Matrix<T> x{copy.empty() ? right.data : copy.data(), right.rows, right.cols};
    if (row_order)
        solve_with_row_order(matrix, x, digits);
    else
        solve_plainly(matrix, x, digits);
    std::ranges::copy(copy, right.data);
}

void cmd_gauss(std::string_view) {
    if (is_blank(get_arg(2))) return print_both(" \n\tTwo arguments required\n");
    const bool row_order = has_flag(" -pp");
    std::int32_t digits = 7;
    get_int_par(" #digits=", digits);
    if (digits < 1) digits = 7;
    const ArrayPair arrays = find_arguments_2d(1, 2);
    if (!arrays) return;
    const ArrayRef a = arrays.a, b = arrays.b;
    if (a.rows() != a.cols()) return print_both(" \n\targ1 must be square\n");
    if (a.rows() != b.rows())
        return print_both(" \n\targ1 and arg2 must have the same number of rows\n");
    if (a.type != b.type) return print_both(" \n\targ1 and arg2 must be the same type\n");
    if (a.is(type_real)) return solve<double>(a, b, row_order, digits);
    if (a.is(type_complex8)) return solve<Complex8>(a, b, row_order, digits);
    print_both(" \n\tNot implemented for array type\n");
}

// --- invert ---

void invert(Matrix<double> a, Matrix<double> inverse) {
    std::vector<GaussDiagonal> diagonals(as_size(a.rows));
    gauss_invert(a, inverse, diagonals);
    for (int j = 1; j <= a.rows; ++j)
        if (diagonals[nth(j)].after == 0) report_zero(j, {});
}
void invert(Matrix<Complex8> a, Matrix<Complex8> inverse) {
    gauss_invert(a, inverse);
}

void cmd_invert(std::string_view) {
    if (is_blank(get_arg(2))) return print_both(" \n\tTwo arguments required\n");
    const std::string target(get_arg(2));
    const ArrayRef a = find_argument_2d(1);
    if (!a) return;
    if (a.rows() != a.cols()) return print_both(" \narg1 must be square\n");
    if (!a.is(type_real) && !a.is(type_complex8))
        return print_both(" \n\tNot implemented for array type\n");
    with_type(a.type, [&]<class T>(std::type_identity<T>) {
        if constexpr (!std::is_same_v<T, std::int32_t>) {
            Result result(target, algebra_work);
            invert(as_matrix<T>(a), result.matrix<T>(a.rows(), a.cols()));
            result.place();
        }
    });
}

constexpr Command rows[] = {
    {.words = {"gauss"},
     .run = cmd_gauss,
     .summary = "solve equations with a full matrix",
     .help =
         "Command Syntax\n\tgauss arg1 arg2 [-pp] [#digits=?]\n\n"
         "Solves arg1 x = arg2 by Gauss elimination. Nothing is created: the solution replaces arg2, and arg1 is replaced by its factors.\n\n"
         "arg1\n\tsquare matrix, real or complex\n"
         "arg2\n\tright-hand sides, one a column, of the type of arg1\n"
         "-pp\n\tpartial pivoting: the row with the largest element, relative to the largest element of its equation, comes next (default: the equations in their order)\n"
         "#digits\n\ta warning names each equation whose diagonal loses at least this many digits; real matrices only (default = 7)\n\n"
         "A zero diagonal of a real matrix is reported, and the elimination goes on.\n\n"
         "Example\n\tident a r=2 c=2\n\tzero b r=2 c=1 v=3\n\tgauss a b\n\n"
         "See Also\n\tinvert, psolve, mult\n"},
    {.words = {"invert"},
     .run = cmd_invert,
     .summary = "inverse of a matrix",
     .help =
         "Command Syntax\n\tinvert arg1 arg2\n\n"
         "Creates arg2, the inverse of the square matrix arg1, real or complex. Straight Gauss elimination is used. The matrix arg1 is modified. There are no defaults.\n\n"
         "A zero diagonal of a real matrix is reported, and the elimination goes on.\n\n"
         "Example\n\tident a r=2 c=2\n\tinvert a b\n\n"
         "See Also\n\tgauss, mult\n"},
};

} // namespace

std::span<const Command> algebra_solve_rows() {
    return rows;
}

} // namespace quelor
