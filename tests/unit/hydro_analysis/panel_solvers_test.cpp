// Solvers of the panel equations: residuals, limits and failures.
#include "hydro_analysis/csolve.hpp"
#include "hydro_analysis/solve2.hpp"

#include <cmath>
#include <gtest/gtest.h>
#include <numeric>
#include <random>
#include <vector>

using namespace quelor;

namespace {

template <class T> struct Dense {
    std::vector<T> values;
    Matrix<T> m;
    Dense(int rows, int cols)
        : values(static_cast<std::size_t>(rows * cols)), m{values.data(), rows, cols} {}
    Dense(const Dense&) = delete;
    Matrix<const T> view() const { return {values.data(), m.rows, m.cols}; }
};

// Entries in the unit square; the diagonal of a panel matrix, 2 pi, dominates as there.
template <class T> void fill_random(Dense<T>& a, double diagonal, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> uniform(-1, 1);
    using Real = typename T::value_type;
    for (T& value : a.values) {
        const double re = uniform(random), im = uniform(random);
        value = T(static_cast<Real>(re), static_cast<Real>(im));
    }
    for (int i = 1; diagonal != 0 && i <= a.m.rows; ++i)
        a.m(i, i) += static_cast<Real>(diagonal);
}

// Largest |a x - b| over the largest |b|, in double precision.
template <class T> double residual(const Dense<T>& a, const Dense<T>& x, const Dense<T>& b) {
    double worst = 0, scale = 0;
    for (int c = 1; c <= b.m.cols; ++c) {
        for (int i = 1; i <= a.m.rows; ++i) {
            Complex8 sum = -Complex8(b.m(i, c));
            for (int j = 1; j <= a.m.cols; ++j)
                sum += Complex8(a.m(i, j)) * Complex8(x.m(j, c));
            worst = std::max(worst, std::abs(sum));
            scale = std::max(scale, std::abs(Complex8(b.m(i, c))));
        }
    }
    return worst / scale;
}

template <class T> void solve_and_check(double tolerance) {
    constexpr int n = 90;
    Dense<T> a(n, n), factors(n, n), b(n, 3), x(n, 3), none(n, 0);
    fill_random(a, 6, 1);
    fill_random(b, 0, 2);
    factors.values = a.values;
    x.values = b.values;
    std::vector<std::int32_t> pivots(n);
    int info = 0;
    if constexpr (std::is_same_v<T, Complex4>) {
        info = csolve_factor_sp(factors.m, pivots);
        csolve_solve_sp(factors.view(), x.m, pivots);
        csolve_solve_sp(factors.view(), none.m, pivots);
    } else {
        info = csolve_factor(factors.m, pivots);
        csolve_solve(factors.view(), x.m, pivots);
        csolve_solve(factors.view(), none.m, pivots);
    }
    EXPECT_EQ(info, 0);
    EXPECT_LT(residual(a, x, b), tolerance);
}

} // namespace

// Unit roundoff times the growth of n = 90 sums: some 1e-5 and 1e-13.
TEST(PanelSolver, leaves_a_residual_of_rounding_in_either_precision) {
    solve_and_check<Complex4>(1e-5);
    solve_and_check<Complex8>(1e-13);
}

TEST(PanelSolver, tells_a_zero_pivot) {
    Dense<Complex4> a(3, 3);
    a.m(1, 1) = 1;
    a.m(2, 1) = Complex4(0, 2);
    std::vector<std::int32_t> pivots(3);
    EXPECT_EQ(csolve_factor_sp(a.m, pivots), 2);
}

TEST(MixedProduct, rounds_products_to_single_and_sums_in_double_precision) {
    constexpr int n = 1100; // more than two blocks of rows
    Dense<Complex4> a(n, n), x(n, 2);
    Dense<Complex8> y(n, 2);
    fill_random(a, 6, 3);
    fill_random(x, 0, 4);
    multiply_mixed(a.view(), x.view(), y.m);
    for (int i = 1; i <= n; i += 37) {
        for (int c = 1; c <= 2; ++c) {
            double re = 0, im = 0;
            for (int j = 1; j <= n; ++j) {
                const Complex4 p = a.m(i, j), q = x.m(j, c);
                const float product_re = p.real() * q.real() - p.imag() * q.imag();
                const float product_im = p.real() * q.imag() + p.imag() * q.real();
                re += static_cast<double>(product_re);
                im += static_cast<double>(product_im);
            }
            EXPECT_EQ(y.m(i, c), Complex8(re, im));
        }
    }
}

TEST(IterativeSolver, meets_its_tolerance_and_skips_zero_columns) {
    constexpr int n = 800; // more than one block of rows
    Dense<Complex8> a(n, n), b(n, 3), x(n, 3), none(n, 0);
    fill_random(a, 0, 5);
    for (auto& value : a.values)
        value *= 0.1;
    for (int i = 1; i <= n; ++i)
        a.m(i, i) += Complex8(6, 1);
    fill_random(b, 0, 6);
    std::ranges::fill(b.m.col(2), Complex8{});
    x.values = b.values;
    std::vector<Complex8> work(9 * n);
    std::vector<std::int32_t> iterations(3, -1);
    EXPECT_EQ(solve2(a.view(), x.m, 1e-10, work, iterations), 0);
    // |residual| <= 1e-10 |b| in the norm of all n values: sqrt(n) larger in the largest entry.
    EXPECT_LT(residual(a, x, b), 1e-10 * std::sqrt(n));
    EXPECT_GT(iterations[0], 1);
    EXPECT_EQ(iterations[1], 0);
    EXPECT_EQ(x.m(n, 2), Complex8{});
    EXPECT_EQ(solve2(a.view(), none.m, 1e-10, work, iterations), 0);
}

TEST(IterativeSolver, takes_a_matrix_in_single_precision_as_its_copy_in_double) {
    constexpr int n = 60;
    Dense<Complex4> a(n, n);
    Dense<Complex8> wide(n, n), b(n, 2), x(n, 2);
    fill_random(a, 20, 5);
    std::ranges::copy(a.values, wide.values.begin());
    fill_random(b, 0, 6);
    x.values = b.values;
    std::vector<Complex8> work(9 * n);
    std::vector<std::int32_t> iterations(2);
    EXPECT_EQ(solve2(a.view(), x.m, 1e-10, work, iterations), 0);
    EXPECT_EQ(solve2(wide.view(), b.m, 1e-10, work, iterations), 0);
    EXPECT_EQ(x.values, b.values);
}

// In exact arithmetic n iterations solve n equations, one when the matrix is diagonal.
TEST(IterativeSolver, ends_within_n_iterations_or_fails) {
    Dense<Complex8> a(4, 4), b(4, 2);
    for (int i = 1; i <= 4; ++i)
        a.m(i, i) = Complex8(i, 1);
    fill_random(b, 0, 7);
    std::vector<Complex8> work(36);
    std::vector<std::int32_t> iterations(2);
    EXPECT_EQ(solve2(a.view(), b.m, 1e-12, work, iterations), 0);
    EXPECT_EQ(iterations[1], 1);

    fill_random(a, 0, 8);
    EXPECT_EQ(solve2(a.view(), b.m, 0.0, work, iterations), 1) << "no residual is that small";
    std::ranges::fill(a.values, Complex8{});
    EXPECT_EQ(solve2(a.view(), b.m, 1e-6, work, iterations), 1) << "zero diagonal";
}
