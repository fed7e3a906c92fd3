#include "matrix/numerics.hpp"

#include "../support/arrays.hpp"
#include "matrix/polynomial.hpp"
#include "numeric/quadrature.hpp"

#include <algorithm>
#include <cmath>

namespace quelor {
namespace {

constexpr double rounding = 2e-15; // some tens of operations on numbers of order 1

struct Numerics : Session {
    Numerics() : Session({numerics_rows()}) {}
};

void put_reals(std::string_view name, int rows, int cols, std::vector<double> values) {
    std::ranges::copy(values, create_matrix<double>(name, rows, cols).data);
}

TEST(Quadrature, GaussRulesIntegratePolynomialsOfDegreeTwoNLessOneAndNoMore) {
    for (int n = 1; n <= gauss_order_limit; ++n) {
        std::vector<double> x(static_cast<std::size_t>(n)), w(x.size());
        gauss_legendre(x, w);
        EXPECT_TRUE(std::ranges::is_sorted(x));
        const auto integral = [&](int degree) {
            double sum = 0;
            for (std::size_t i = 0; i < x.size(); ++i)
                sum += w[i] * std::pow(x[i], degree);
            return sum;
        };
        for (int degree = 0; degree < 2 * n; ++degree)
            EXPECT_NEAR(integral(degree), degree % 2 ? 0 : 2.0 / (degree + 1), rounding);
        EXPECT_GT(std::abs(integral(2 * n) - 2.0 / (2 * n + 1)), 1e-7);
    }
}

TEST(Quadrature, TriangleRulesIntegratePolynomialsOfTheirDegree) {
    // The mean of l1^i l2^j over a triangle is 2 i! j! / (i + j + 2)!.
    const auto exact = [](int i, int j) {
        return 2 * std::tgamma(i + 1) * std::tgamma(j + 1) / std::tgamma(i + j + 3);
    };
    const std::pair<int, int> degrees[] = {{1, 1}, {3, 2}, {4, 3}, {7, 5}, {9, 5}, {12, 6}};
    for (const auto& [n, degree] : degrees) {
        const auto rule = triangle_rule(n);
        ASSERT_EQ(rule.size(), static_cast<std::size_t>(n));
        for (int i = 0; i <= degree; ++i) {
            for (int j = 0; i + j <= degree; ++j) {
                double sum = 0;
                for (const auto& p : rule) {
                    EXPECT_NEAR(p.l1 + p.l2 + p.l3, 1, rounding);
                    sum += p.weight * std::pow(p.l1, i) * std::pow(p.l2, j);
                }
                EXPECT_NEAR(sum, exact(i, j), rounding) << n << ": " << i << ", " << j;
            }
        }
    }
    EXPECT_TRUE(triangle_rule(2).empty());
}

TEST(Polynomial, DerivativesAreThoseOfThePowers) {
    // (1 + 2 x + 3 y + 5 z)^2 by its terms in their order.
    const std::vector<double> c{1, 4, 6, 10, 4, 12, 20, 9, 30, 25};
    const auto terms = polynomial_terms(3, static_cast<int>(c.size()));
    const double base = 1 + 2 * 0.5 - 3 * 0.25 + 5 * 2;
    const auto [value, slope] = evaluate_polynomial(terms, c, {0.5, -0.25, 2});
    EXPECT_DOUBLE_EQ(value, base * base);
    EXPECT_DOUBLE_EQ(slope[0], 2 * base * 2);
    EXPECT_DOUBLE_EQ(slope[1], 2 * base * 3);
    EXPECT_DOUBLE_EQ(slope[2], 2 * base * 5);
    EXPECT_EQ(polynomial_terms(2, 7).back(), (Exponents{3, 0, 0}));
    EXPECT_EQ(polynomial_terms(2, 8).back(), (Exponents{2, 1, 0}));
    EXPECT_EQ(polynomial_terms(3, 12).back(), (Exponents{2, 1, 0}));
    EXPECT_EQ(polynomial_terms(3, 15).back(), (Exponents{1, 1, 1}));
}

TEST_F(Numerics, GaussPointsOfSeveralDimensions) {
    EXPECT_EQ(run("gauss_pts n=2,3,4 p w"), "");
    EXPECT_EQ(dims("p"), (Ints{24, 3}));
    // x^2 y^4 z^6 over the cube of side 2 is 2/3 2/5 2/7.
    const auto p = elements<double>("p"), w = elements<double>("w");
    double sum = 0;
    for (std::size_t i = 0; i < 24; ++i)
        sum += w[i] * std::pow(p[i], 2) * std::pow(p[24 + i], 4) * std::pow(p[48 + i], 6);
    EXPECT_NEAR(sum, 8.0 / 105, rounding);
    EXPECT_LT(p[0], p[1]);
    EXPECT_EQ(p[24], p[25]);
    EXPECT_EQ(run("gauss_pts p"), "");
    EXPECT_EQ(elements<double>("p"), std::vector<double>{0});
    for (const char* bad : {"n=11", "n=0", "n=2,0,2", "n=2,-1", "n=1e30", "n=~absent"})
        EXPECT_NE(run(std::string("gauss_pts p ") + bad).find("n must be one to three values"),
                  std::string::npos)
            << bad;
    EXPECT_EQ(elements<double>("p"), std::vector<double>{0});
}

TEST_F(Numerics, GaussIntegralsOfEachElement) {
    // x^3 over [0, 1] and [1, 3] from two points in each.
    const double h = 1 / std::sqrt(3.0);
    std::vector<double> f;
    for (const double x : {0.5 - h / 2, 0.5 + h / 2, 2 - h, 2 + h})
        f.push_back(x * x * x);
    put_reals("f", 4, 1, f);
    put_reals("len", 2, 1, {1, 2});
    EXPECT_EQ(run("gauss_int f len f n=2"), ""); // the result may replace an input
    EXPECT_EQ(dims("f"), (Ints{2, 1}));
    EXPECT_NEAR(elements<double>("f")[0], 0.25, rounding);
    EXPECT_NEAR(elements<double>("f")[1], 20, 20 * rounding);
    create_int_scalar("k", 1);
    EXPECT_NE(run("gauss_int k len g n=1").find("must be real"), std::string::npos);
    EXPECT_FALSE(find_array("g"));
}

TEST_F(Numerics, PolynomialsFillTheColumnsBehindTheCoordinates) {
    put_reals("a", 2, 3, {0.5, -2, 9, 9, 9, 9});
    EXPECT_EQ(run("poly a d=1 c=1,0,-2"), "");
    EXPECT_EQ(elements<double>("a"), (std::vector<double>{0.5, -2, 0.5, -7, 9, 9}));
    EXPECT_EQ(run("poly a d=1 n=2 c=1,0,-2"), "");
    EXPECT_EQ(elements<double>("a")[3], 1);
    const auto before = elements<double>("a");
    EXPECT_NE(run("poly a d=4 c=1").find("d must be"), std::string::npos);
    EXPECT_NE(run("poly a n=2000000000 c=1").find("n must be"), std::string::npos);
    EXPECT_EQ(elements<double>("a"), before);
    put_reals("b", 1, 5, {2, 3, 0, 0, 0});
    EXPECT_EQ(run("poly b d=2 n=6 option=1 c=0,0,0,0,1,0"), ""); // x y
    EXPECT_EQ(elements<double>("b"), (std::vector<double>{2, 3, 6, 3, 2}));
}

} // namespace
} // namespace quelor
