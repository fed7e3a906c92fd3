// Gauss elimination by blocks of columns from the left: a block takes the rows of U from a
// triangular solution and all that the columns before it contribute from one matrix product, then
// is eliminated column by column. Its columns are those of the original matrix until then, so that
// each diagonal's loss of digits can be told.
#include "matrix/gauss.hpp"

#include <algorithm>
#include <numeric>
#include <vector>

#include "numeric/complex_division.hpp"
#include "numeric/dense_products.hpp"
#include "numeric/vecmath.hpp"

namespace quelor {

namespace {

constexpr int panel_width = 32; ///< columns that are eliminated one by one
constexpr int solve_block = 64; ///< rows that are substituted one by one
constexpr int solve_cols = 256; ///< right-hand sides that are worked on together

// y -= a x
QUELOR_CLONES void subtract_multiple(int n, double a, const double* x, double* __restrict y) {
    for (int i = 0; i < n; ++i)
        y[i] -= a * x[i];
}
// Real parts as sums: see SmithDivisor.
QUELOR_CLONES void subtract_multiple(int n, Complex8 a, const Complex8* x, Complex8* __restrict y) {
    const double re = a.real(), im = a.imag(), minus_im = -im;
    const auto* const p = reinterpret_cast<const double*>(x);
    auto* const q = reinterpret_cast<double*>(y);
    for (std::ptrdiff_t i = 0; i < n; ++i) {
        q[2 * i] -= re * p[2 * i] + minus_im * p[2 * i + 1];
        q[2 * i + 1] -= re * p[2 * i + 1] + im * p[2 * i];
    }
}
void divide(std::span<double> x, double d) {
    for (double& value : x)
        value /= d;
}
void divide(std::span<Complex8> x, Complex8 d) {
    const SmithDivisor divisor(d);
    for (Complex8& value : x)
        value = divisor.divide(value);
}

/// Rows first to last of columns c1 to c2.
template <class T> MatrixBlock<T> part(Matrix<T> a, int first, int last, int c1, int c2) {
    return {a.data + (first - 1) + std::ptrdiff_t{c1 - 1} * a.rows, last - first + 1, c2 - c1 + 1,
            a.rows};
}

/// b := L^-1 b for the first n rows of columns c1 to c2 of b; rows above `first` are zero.
template <class T>
void solve_lower(Matrix<const T> l, Matrix<T> b, int first, int n, int c1, int c2) {
    for (int k1 = first; k1 <= n; k1 += solve_block) {
        const int k2 = std::min(k1 + solve_block - 1, n);
        for (int c = c1; c <= c2; ++c)
            for (int k = k1; k < k2; ++k)
                subtract_multiple(k2 - k, b(k, c), &l(k + 1, k), &b(k + 1, c));
        subtract_product(part(l, k2 + 1, n, k1, k2), part(Matrix<const T>(b), k1, k2, c1, c2),
                         part(b, k2 + 1, n, c1, c2));
    }
}

/// b := U^-1 b for columns c1 to c2 of b.
template <class T> void solve_upper(Matrix<const T> u, Matrix<T> b, int c1, int c2) {
    for (int k2 = u.rows; k2 >= 1; k2 -= solve_block) {
        const int k1 = std::max(k2 - solve_block + 1, 1);
        for (int c = c1; c <= c2; ++c) {
            for (int k = k2; k >= k1; --k) {
                divide({&b(k, c), 1}, u(k, k));
                subtract_multiple(k - k1, b(k, c), &u(k1, k), &b(k1, c));
            }
        }
        subtract_product(part(u, 1, k1 - 1, k1, k2), part(Matrix<const T>(b), k1, k2, c1, c2),
                         part(b, 1, k1 - 1, c1, c2));
    }
}

/// What an elimination works with; `scale` and `order` are empty without a row order.
template <class T> struct Elimination {
    Matrix<T> a;
    std::span<GaussDiagonal> diagonals;
    std::span<const double> scale;
    std::span<std::int32_t> order;
    Matrix<T> panel; ///< the columns of the block before elimination, rows in order

    std::int32_t& equation(int i) const { return order[nth(i)]; }
};

template <class T> void swap_rows(Matrix<T> a, int i, int k, int cols) {
    for (int j = 1; j <= cols; ++j)
        std::swap(a(i, j), a(k, j));
}

/// Brings the row with the largest scaled value in column j into row j of columns 1 to last.
template <class T> void choose_pivot(const Elimination<T>& e, int j, int last) {
    int pivot = j;
    double largest = -1;
    for (int i = j; i <= e.a.rows; ++i) {
        const double size = std::abs(e.a(i, j)) * e.scale[nth(e.equation(i))];
        if (size > largest) {
            largest = size;
            pivot = i;
        }
    }
    if (pivot == j) return;
    std::swap(e.equation(j), e.equation(pivot));
    swap_rows(e.a, j, pivot, last);
    swap_rows(e.panel, j, pivot, e.panel.cols);
}

/// The diagonal j of a real matrix in the order of a plain elimination.
void form_diagonal(const Elimination<double>& e, int j, int first) {
    GaussDiagonal& d = e.diagonals[nth(j)];
    d.before = e.panel(j, j - first + 1);
    d.subtracted = 0;
    for (int k = 1; k < j; ++k)
        d.subtracted += e.a(j, k) * e.a(k, j);
    d.after = e.a(j, j) = d.before - d.subtracted;
}
void form_diagonal(const Elimination<Complex8>&, int, int) {}

/// Puts the rows of columns first to last, as yet untouched, in the order of the equations.
template <class T> void order_rows(const Elimination<T>& e, int first, int last) {
    std::vector<T> column(as_size(e.a.rows));
    for (int j = first; j <= last; ++j) {
        std::ranges::copy(e.a.col(j), column.begin());
        for (int i = 1; i <= e.a.rows; ++i)
            e.a(i, j) = column[nth(e.equation(i))];
    }
}

template <class T> void eliminate_panel(const Elimination<T>& e, int first, int last) {
    const int n = e.a.rows;
    for (int j = first; j <= last; ++j) {
        if (!e.order.empty()) choose_pivot(e, j, last);
        form_diagonal(e, j, first);
        if (j == n) break;
        divide(e.a.col(j).subspan(as_size(j)), e.a(j, j));
        for (int c = j + 1; c <= last; ++c)
            subtract_multiple(n - j, e.a(j, c), &e.a(j + 1, j), &e.a(j + 1, c));
    }
}

template <class T> void eliminate(Elimination<T> e) {
    const int n = e.a.rows;
    std::vector<T> original(as_size(n) * as_size(std::min(n, panel_width)));
    std::iota(e.order.begin(), e.order.end(), 1);
    for (int first = 1; first <= n; first += panel_width) {
        const int last = std::min(first + panel_width - 1, n), before = first - 1;
        if (!e.order.empty()) order_rows(e, first, last);
        e.panel = {original.data(), n, last - before};
        std::copy_n(&e.a(1, first), std::ptrdiff_t{n} * e.panel.cols, original.data());
        const Matrix<const T> a = e.a;
        solve_lower(a, e.a, 1, before, first, last);
        subtract_product(part(a, first, n, 1, before), part(a, 1, before, first, last),
                         part(e.a, first, n, first, last));
        eliminate_panel(e, first, last);
    }
}

template <class T> void solve(Matrix<const T> factors, Matrix<T> b, int first) {
    for (int c1 = 1; c1 <= b.cols; c1 += solve_cols) {
        const int c2 = std::min(c1 + solve_cols - 1, b.cols);
        solve_lower(factors, b, first, b.rows, c1, c2);
        solve_upper(factors, b, c1, c2);
    }
}

/// Columns of the inverse; the rows of L^-1 above a column's own are zero.
template <class T> void invert_factors(Matrix<const T> factors, Matrix<T> inverse) {
    const int n = factors.rows;
    std::ranges::fill(inverse.all(), T{});
    for (int j = 1; j <= n; ++j)
        inverse(j, j) = T{1};
    for (int c1 = 1; c1 <= n; c1 += solve_cols) {
        const int c2 = std::min(c1 + solve_cols - 1, n);
        solve(factors, Matrix<T>{&inverse(1, c1), n, c2 - c1 + 1}, c1);
    }
}

} // namespace

void gauss_factor(Matrix<double> a, std::span<GaussDiagonal> diagonals) {
    eliminate<double>({a, diagonals, {}, {}, {}});
}
void gauss_factor(Matrix<Complex8> a) {
    eliminate<Complex8>({a, {}, {}, {}, {}});
}
void gauss_factor(Matrix<double> a, std::span<GaussDiagonal> diagonals,
                  std::span<const double> scale, std::span<std::int32_t> order) {
    eliminate<double>({a, diagonals, scale, order, {}});
}
void gauss_factor(Matrix<Complex8> a, std::span<const double> scale,
                  std::span<std::int32_t> order) {
    eliminate<Complex8>({a, {}, scale, order, {}});
}

template <class T> void gauss_restore(Matrix<T> a, std::span<const std::int32_t> order) {
    std::vector<T> column(as_size(a.rows));
    for (int j = 1; j <= a.cols; ++j) {
        std::ranges::copy(a.col(j), column.begin());
        for (int i = 1; i <= a.rows; ++i)
            a(order[nth(i)], j) = column[nth(i)];
    }
}
template void gauss_restore(Matrix<double>, std::span<const std::int32_t>);
template void gauss_restore(Matrix<Complex8>, std::span<const std::int32_t>);

void gauss_solve(Matrix<const double> factors, Matrix<double> b, int first) {
    solve(factors, b, first);
}
void gauss_solve(Matrix<const Complex8> factors, Matrix<Complex8> b, int first) {
    solve(factors, b, first);
}

void gauss_invert(Matrix<double> a, Matrix<double> inverse, std::span<GaussDiagonal> diagonals) {
    gauss_factor(a, diagonals);
    invert_factors(Matrix<const double>(a), inverse);
}
void gauss_invert(Matrix<Complex8> a, Matrix<Complex8> inverse) {
    gauss_factor(a);
    invert_factors(Matrix<const Complex8>(a), inverse);
}

} // namespace quelor
