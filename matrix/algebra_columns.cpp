// Sums, norms and extremes of the columns of a matrix; a row vector counts as a column.
// Reads the array named by the first argument, creates the vector named by the second under a
// temporary name, so that it may bear the name of the input.
#include "matrix/algebra.hpp"

#include "kernel/gencom.hpp"

#include <array>
#include <cmath>

namespace quelor {

namespace {

template <class T> Matrix<const T> columns_of(const ArrayRef& ref) {
    const auto matrix = as_matrix<const T>(ref);
    return matrix.rows == 1 ? Matrix<const T>{matrix.data, matrix.cols, 1} : matrix;
}
/// Number of columns as columns_of has them.
int column_count(const ArrayRef& ref) {
    return ref.rows() == 1 ? 1 : ref.cols();
}

std::int32_t size_of(std::int32_t x) {
    return x < 0 ? minus(0, x) : x;
}
double size_of(double x) {
    return std::abs(x);
}
double size_of(Complex8 z) {
    return complex_modulus(z);
}

/// Creates `target` as a vector of n elements x(j) = of_column(j).
template <class T, class OfColumn>
void create_vector(std::string_view target, int n, OfColumn of_column) {
    Result result(target, algebra_work);
    const auto vector = result.matrix<T>(n, 0);
    for (int j = 1; j <= n; ++j)
        vector(j) = of_column(j);
    result.place();
}

// --- sumcol ---

template <class T, class Value> auto sum_of(std::span<const T> column, Value value) {
    decltype(value(T{})) sum{};
    for (const T& x : column)
        sum = plus(sum, value(x));
    return sum;
}

void cmd_sumcol(std::string_view) {
    if (is_blank(get_arg(2))) return print_both(" \n\tTwo arguments required\n");
    const std::string target(get_arg(2));
    const bool sizes = has_flag("-abs");
    const ArrayRef a = find_argument_2d(1);
    if (!a) return;
    if (!is_numeric(a)) return print_both(" \n\tCommand not implemented for data type\n");
    with_type(a.type, [&]<class T>(std::type_identity<T>) {
        const auto x = columns_of<T>(a);
        using Size = decltype(size_of(T{}));
        if (sizes)
            create_vector<Size>(target, x.cols, [&](int j) {
                return sum_of(x.col(j), [](T value) { return size_of(value); });
            });
        else
            create_vector<T>(target, x.cols, [&](int j) {
                return sum_of(x.col(j), [](T value) { return value; });
            });
    });
}

// --- norm ---

/// The largest value(x) of a column, the first of equal ones; numbers before NaN.
template <class T, class Value> double largest(std::span<const T> column, Value value) {
    double best = value(column[0]);
    for (const T& x : column.subspan(1))
        if (value(x) > best || std::isnan(best)) best = value(x);
    return best;
}

template <class T> double root_of_squares(std::span<const T> column) {
    double sum = 0;
    for (const T& x : column)
        sum += std::norm(x);
    return std::sqrt(sum);
}

double signed_value(double x) {
    return x;
}
double signed_value(Complex8 z) {
    return size_of(z);
}

template <class T> void norms(const ArrayRef& a, std::string_view target) {
    const auto x = columns_of<T>(a);
    const bool l2 = has_flag("-l2"), sizes = has_flag("-max");
    create_vector<double>(target, x.cols, [&](int j) {
        const auto column = x.col(j);
        if (l2) return root_of_squares(column);
        if (sizes) return largest(column, [](T value) { return size_of(value); });
        return largest(column, [](T value) { return signed_value(value); });
    });
}

void cmd_norm(std::string_view) {
    if (is_blank(get_arg(2))) return print_both(" \n\tTwo arguments required\n");
    const std::string target(get_arg(2));
    const ArrayRef a = find_argument_2d(1);
    if (!a) return;
    if (a.is(type_integer)) return print_both(" \n\tCommand not implemented for integer\n");
    if (a.is(type_real)) return norms<double>(a, target);
    if (a.is(type_complex8)) return norms<Complex8>(a, target);
    print_both(" \n\tCommand not implemented for data type\n");
}

// --- max, min ---

/// Row of the element of the column that comes first by precedes(x, y), the first of equal ones.
template <class T, class Precedes> int extreme_row(std::span<const T> column, Precedes precedes) {
    std::size_t best = 0;
    for (std::size_t i = 1; i < column.size(); ++i)
        if (precedes(column[i], column[best]) || column[best] != column[best]) best = i;
    return static_cast<int>(best) + 1;
}

double ordered(Complex8 z) {
    return size_of(z);
}
template <class T> T ordered(T x) {
    return x;
}

template <class T, bool maximum> int row_of_extreme(std::span<const T> column, bool sizes) {
    return extreme_row(column, [sizes](T x, T y) {
        const auto p = sizes ? size_of(x) : ordered(x), q = sizes ? size_of(y) : ordered(y);
        return maximum ? p > q : p < q;
    });
}

template <bool maximum> void cmd_extreme(std::string_view) {
    if (is_blank(get_arg(2))) return print_both(" \n\tTwo arguments required\n");
    const std::string target(get_arg(2));
    std::int32_t c = 1;
    get_int_par("c=", c);
    const bool sizes = maximum && has_flag("-abs");
    const ArrayRef a = find_argument_2d(1);
    if (!a) return;
    if (!is_numeric(a)) return print_both(" \n\tCommand not implemented for data type\n");
    if (c < 1) return print_both(" \n\tColumn number must be positive\n");
    if (c > column_count(a)) return print_both(" \n\tColumn number is out of range\n");
    with_type(a.type, [&]<class T>(std::type_identity<T>) {
        const auto x = columns_of<T>(a);
        const int row = row_of_extreme<T, maximum>(x.col(c), sizes);
        create_vector<T>(target, x.cols, [&](int j) { return x(row, j); });
    });
}

constexpr Command rows[] = {
    {.words = {"sumcol"},
     .run = cmd_sumcol,
     .summary = "sum of each column",
     .help =
         "Command Syntax\n\tsumcol arg1 arg2 [-abs]\n\n"
         "Creates the vector arg2 of the sums of the columns of arg1, an integer, real or complex matrix. A row vector is treated as a column vector.\n\n"
         "-abs\n\tsum the absolute values (default: the values); real for a complex array\n\n"
         "Example\n\tident a r=3 c=3\n\tsumcol a s\n\n"
         "See Also\n\tnorm, max, min, add\n"},
    {.words = {"norm"},
     .run = cmd_norm,
     .summary = "norm of each column",
     .help =
         "Command Syntax\n\tnorm arg1 arg2 [-max] [-l2]\n\n"
         "Creates the real vector arg2 with one value for each column of arg1, a real or complex matrix: the largest value in the column. Complex numbers count by their absolute values. A row vector is treated as a column vector.\n\n"
         "-max\n\tthe largest absolute value (default: the largest value)\n"
         "-l2\n\tthe root of the sum of squares (default: the largest value)\n\n"
         "Example\n\tident a r=3 c=3\n\tnorm a n -l2\n\n"
         "See Also\n\tsumcol, max, min\n"},
    {.words = {"max"},
     .run = cmd_extreme<true>,
     .summary = "row with the largest element of a column",
     .help =
         "Command Syntax\n\tmax arg1 arg2 [c=?] [-abs]\n\n"
         "Finds the largest element in a column of arg1, an integer, real or complex matrix, and creates the vector arg2 of the whole row in which it stands. Of equal elements the first counts. Complex numbers are compared by their absolute values. A row vector is treated as a column vector.\n\n"
         "c\n\tthe column (default = 1)\n"
         "-abs\n\tcompare absolute values (default: values)\n\n"
         "Example\n\tident a r=3 c=3\n\tmax a row c=2\n\n"
         "See Also\n\tmin, norm, sort\n"},
    {.words = {"min"},
     .run = cmd_extreme<false>,
     .summary = "row with the smallest element of a column",
     .help =
         "Command Syntax\n\tmin arg1 arg2 [c=?]\n\n"
         "Finds the smallest element in a column of arg1, an integer, real or complex matrix, and creates the vector arg2 of the whole row in which it stands. Of equal elements the first counts. Complex numbers are compared by their absolute values. A row vector is treated as a column vector.\n\n"
         "c\n\tthe column (default = 1)\n\n"
         "Example\n\tident a r=3 c=3\n\tmin a row c=2\n\n"
         "See Also\n\tmax, norm, sort\n"},
};

} // namespace

std::span<const Command> algebra_columns_rows() {
    return rows;
}

} // namespace quelor
