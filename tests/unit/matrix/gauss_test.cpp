// The product and elimination kernels against the defining identities.
#include "matrix/gauss.hpp"

#include "numeric/dense_products.hpp"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace quelor {
namespace {

template <class T> struct Full {
    int rows, cols;
    std::vector<T> data =
        std::vector<T>(static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols));

    Matrix<T> view() { return {data.data(), rows, cols}; }
    Matrix<const T> view() const { return {data.data(), rows, cols}; }
};

void draw(std::mt19937& random, double& x) {
    x = std::uniform_real_distribution(-1.0, 1.0)(random);
}
void draw(std::mt19937& random, Complex8& z) {
    double re, im;
    draw(random, re);
    draw(random, im);
    z = {re, im};
}
void draw(std::mt19937& random, std::int32_t& x) {
    x = static_cast<std::int32_t>(random());
}
template <class T> Full<T> random_matrix(int rows, int cols, std::mt19937& random) {
    Full<T> a{rows, cols};
    for (T& x : a.data)
        draw(random, x);
    return a;
}
/// Diagonals that dominate the rows: elimination is stable without pivoting.
template <class T> Full<T> dominant_matrix(int n, std::mt19937& random) {
    auto a = random_matrix<T>(n, n, random);
    for (int i = 1; i <= n; ++i)
        a.view()(i, i) += 2.0 * n;
    return a;
}
template <class T> double largest_difference(const Full<T>& x, const Full<T>& y) {
    double largest = 0;
    for (std::size_t i = 0; i < x.data.size(); ++i)
        largest = std::max(largest, std::abs(x.data[i] - y.data[i]));
    return largest;
}
template <class T> Full<T> product(const Full<T>& a, const Full<T>& b) {
    Full<T> c{a.rows, b.cols};
    mat_mult(a.view(), b.view(), c.view(), false);
    return c;
}

template <class T> struct DenseKernels : testing::Test {};
using Numbers = testing::Types<double, Complex8>;
TYPED_TEST_SUITE(DenseKernels, Numbers);

/// gauss_factor of either type; with the scale and the order of rows, if given.
template <class T, class... Rows> void factor(Matrix<T> a, Rows&&... rows) {
    std::vector<GaussDiagonal> diagonals(static_cast<std::size_t>(a.rows));
    if constexpr (std::is_same_v<T, double>)
        gauss_factor(a, diagonals, rows...);
    else
        gauss_factor(a, rows...);
}

// Orders around the block sizes of 32, 64 and 256.
constexpr int orders[] = {1, 2, 31, 32, 33, 65, 130, 300};

TYPED_TEST(DenseKernels, SolutionSatisfiesTheEquationsAndAgreesWithTheInverse) {
    std::mt19937 random(2);
    for (const int n : orders) {
        const auto a = dominant_matrix<TypeParam>(n, random);
        const auto b = random_matrix<TypeParam>(n, 5, random);
        auto factors = a, x = b;
        factor(factors.view());
        gauss_solve(Matrix<const TypeParam>(factors.view()), x.view());
        EXPECT_LT(largest_difference(product(a, x), b), 1e-14) << n;
        auto destroyed = a;
        Full<TypeParam> inverse{n, n};
        std::vector<GaussDiagonal> diagonals(static_cast<std::size_t>(n));
        if constexpr (std::is_same_v<TypeParam, double>)
            gauss_invert(destroyed.view(), inverse.view(), diagonals);
        else
            gauss_invert(destroyed.view(), inverse.view());
        EXPECT_LT(largest_difference(product(inverse, b), x), 1e-15) << n;
        EXPECT_EQ(destroyed.data, factors.data);
    }
}

/// Factors in place with row order; the order.
template <class T> std::vector<std::int32_t> factor_by_rows(Full<T>& a) {
    std::vector<double> scale(static_cast<std::size_t>(a.rows));
    for (int i = 1; i <= a.rows; ++i) {
        double largest = 0;
        for (int j = 1; j <= a.rows; ++j)
            largest = std::max(largest, std::abs(a.view()(i, j)));
        scale[static_cast<std::size_t>(i - 1)] = 1 / largest;
    }
    std::vector<std::int32_t> order(scale.size());
    factor(a.view(), scale, order);
    return order;
}

TYPED_TEST(DenseKernels, RowOrderSolvesWhatNeedsPivotingWhateverTheSizesOfTheRows) {
    std::mt19937 random(3);
    for (const int n : orders) {
        auto a = random_matrix<TypeParam>(n, n, random);
        if (n > 1) a.view()(1, 1) = 0.0;
        auto even = a;
        for (int i = 1; i <= n; ++i)
            for (int j = 1; j <= n; ++j)
                a.view()(i, j) *= i % 2 == 0 ? 0x1p40 : 0x1p-40; // exact, some 10^12 each way
        auto factors = a;
        auto order = factor_by_rows(factors);
        EXPECT_EQ(order, factor_by_rows(even)) << n;
        const auto x = random_matrix<TypeParam>(n, 1, random), b = product(a, x);
        auto solved = b;
        for (int i = 1; i <= n; ++i)
            solved.view()(i) = b.view()(order[static_cast<std::size_t>(i - 1)]);
        gauss_solve(Matrix<const TypeParam>(factors.view()), solved.view());
        // random matrices: condition about n^2 at worst among these
        EXPECT_LT(largest_difference(solved, x), 1e-15 * n * n + 1e-13) << n;
        std::ranges::sort(order);
        for (int i = 1; i <= n; ++i)
            EXPECT_EQ(order[static_cast<std::size_t>(i - 1)], i);
    }
}

TEST(GaussFactor, DiagonalsAreThoseOfAPlainElimination) {
    std::mt19937 random(4);
    const int n = 100;
    const auto a = dominant_matrix<double>(n, random);
    auto factors = a;
    std::vector<GaussDiagonal> diagonals(n);
    gauss_factor(factors.view(), diagonals);
    for (int j = 1; j <= n; ++j) {
        const auto& d = diagonals[static_cast<std::size_t>(j - 1)];
        EXPECT_EQ(d.before, a.view()(j, j));
        EXPECT_EQ(d.after, d.before - d.subtracted);
        EXPECT_EQ(d.after, factors.view()(j, j));
    }
}

/// Calls check(plain, transposed, i, j) with the element of the product by each kernel.
template <class T, class Check>
void compare_products(const Full<T>& a, const Full<T>& b, Check check) {
    Full<T> transposed{a.cols, a.rows}, d{a.rows, b.cols};
    for (int i = 1; i <= a.rows; ++i)
        for (int k = 1; k <= a.cols; ++k)
            transposed.view()(k, i) = a.view()(i, k);
    const Full<T> c = product(a, b);
    mat_mult(std::as_const(transposed).view(), b.view(), d.view(), true);
    for (int i = 1; i <= a.rows; ++i)
        for (int j = 1; j <= b.cols; ++j)
            check(c.view()(i, j), d.view()(i, j), i, j);
}

TYPED_TEST(DenseKernels, ProductsAreTheSumsOfTheirDefinition) {
    std::mt19937 random(5);
    const auto a = random_matrix<TypeParam>(17, 40, random),
               b = random_matrix<TypeParam>(40, 9, random);
    compare_products(a, b, [&](TypeParam c, TypeParam d, int i, int j) {
        TypeParam sum{};
        for (int k = 1; k <= a.cols; ++k)
            sum += a.view()(i, k) * b.view()(k, j);
        EXPECT_LT(std::abs(c - sum), 1e-14); // 40 products of at most 2 in size
        EXPECT_LT(std::abs(d - sum), 1e-14);
    });
}

TEST(MatMult, IntegersWrapAround) {
    std::mt19937 random(6);
    const auto a = random_matrix<std::int32_t>(1100, 3, random),
               b = random_matrix<std::int32_t>(3, 2, random);
    compare_products(a, b, [&](std::int32_t c, std::int32_t d, int i, int j) {
        std::uint64_t sum = 0;
        for (int k = 1; k <= 3; ++k)
            sum += static_cast<std::uint64_t>(std::int64_t{a.view()(i, k)} * b.view()(k, j));
        EXPECT_EQ(c, static_cast<std::int32_t>(sum));
        EXPECT_EQ(d, static_cast<std::int32_t>(sum));
    });
}

} // namespace
} // namespace quelor
