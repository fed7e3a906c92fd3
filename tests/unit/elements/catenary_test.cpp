// The elastic catenary against the integral that defines it, and its flexibility against
// differences.
#include "elements/catenary.hpp"

#include "numeric/quadrature.hpp"

#include <gtest/gtest.h>

#include <string>

using namespace quelor;

namespace {

/// The end by dx/ds = t/|t| + t/(EA), t(s) = -(T + s w) the force at s: Gauss's rule of 10 points
/// on pieces that shrink toward the point of least tension, where the integrand bends fastest.
Vec3 end_by_quadrature(const CatenarySegment& c, const Vec3& T) {
    std::array<double, 10> x{}, w{};
    gauss_legendre(x, w);
    const double square = dot_product(c.w, c.w), along = -dot_product(T, c.w);
    const double lowest = square > 0 ? std::clamp(along / square, 0.0, c.length) : 0;
    Vec3 end{};
    const auto piece = [&](double a, double b) {
        for (std::size_t k = 0; k < x.size(); ++k) {
            const double s = (a + b) / 2 + (b - a) / 2 * x[k];
            const Vec3 t = add_scaled({-T[0], -T[1], -T[2]}, -s, c.w);
            const double length = vector_length(t);
            if (length > 0) end = add_scaled(end, (b - a) / 2 * w[k] * (1 / length + 1 / c.ea), t);
        }
    };
    for (const double side : {0.0, c.length}) {
        double a = side;
        for (int i = 0; i < 100; ++i) {
            const double b = i == 99 ? lowest : lowest + (a - lowest) * 0.6;
            side < lowest ? piece(a, b) : piece(b, a);
            a = b;
        }
    }
    return end;
}

struct Case {
    std::string name;
    CatenarySegment segment;
    Vec3 end;
};
const Case cases[] = {
    {"slack", {1000, 1e9, {0, 0, -500}}, {10, 0, 0}},
    {"sagging in space", {1000, 1e7, {0, 0, -500}}, {900, 100, 200}},
    {"steep", {1000, 1e9, {0, 0, -500}}, {200, -300, -800}},
    {"level and taut", {1000, 1e9, {0, 0, -500}}, {1000.5, 0, 0}},
    {"very light", {1000, 1e9, {0, 0, -1e-6}}, {1100, 0, 3}},
    {"weightless", {1000, 1e9, {0, 0, 0}}, {1100, 0, 3}},
    {"skew load", {50, 1e6, {3, -4, 1}}, {10, 30, 5}},
    {"straight up", {1000, 1e9, {0, 0, -500}}, {0, 0, 1000.3}},
    {"straight up and slack", {1000, 1e9, {0, 0, -500}}, {0, 0, 300}},
    {"both ends at one point", {1000, 1e9, {0, 0, -500}}, {0, 0, 0}},
};

CatenaryLine solve(const Case& c) {
    const std::span one(&c.segment, 1);
    return cable_shoot(one, {}, c.end, cable_estimate(one, {}, c.end), 1e-12 * c.segment.length,
                       100);
}

} // namespace

// The error of the end by rounding is some 1e-12 of the length, that of the quadrature below it.
TEST(Catenary, ends_where_the_integral_along_the_line_ends) {
    for (const Case& c : cases) {
        const CatenaryLine line = solve(c);
        ASSERT_TRUE(line.converged) << c.name;
        const Vec3 end = end_by_quadrature(c.segment, line.T);
        EXPECT_LT(vector_length(difference(end, c.end)), 1e-11 * c.segment.length) << c.name;
        for (std::size_t i = 0; i < 3; ++i) // balance of the whole
            EXPECT_NEAR(line.T[i] + line.chain.T2[i], -c.segment.length * c.segment.w[i],
                        1e-12 * vector_length(line.T))
                << c.name;
    }
}

// Differences of the second order with steps of 1e-5: 1e-10 from the third derivative and 1e-11
// from rounding for lines whose force does not vary much; the slackest has F/T' = 1/H.
TEST(Catenary, flexibility_is_the_difference_quotient_of_the_end) {
    for (const Case& c : std::span(cases).first(7)) {
        const CatenaryLine line = solve(c);
        const double h = 1e-5 * std::hypot(line.T[0], line.T[1]);
        double largest = 0;
        for (const double f : line.chain.F.a)
            largest = std::max(largest, std::abs(f));
        for (int j = 1; j <= 3; ++j) {
            Vec3 e{};
            e[nth(j)] = h;
            const std::span one(&c.segment, 1);
            const Vec3 up = cable_chain(one, {}, add_scaled(line.T, 1, e)).end;
            const Vec3 down = cable_chain(one, {}, add_scaled(line.T, -1, e)).end;
            for (int i = 1; i <= 3; ++i) {
                EXPECT_NEAR((up[nth(i)] - down[nth(i)]) / (2 * h), line.chain.F(i, j),
                            2e-8 * largest)
                    << c.name << i << j;
                EXPECT_NEAR(line.chain.F(i, j), line.chain.F(j, i), 1e-14 * largest) << c.name;
            }
        }
    }
}

TEST(Catenary, a_line_in_two_segments_is_the_line_in_one) {
    const CatenarySegment whole{300, 2e8, {1, 2, -700}};
    CatenarySegment a = whole, b = whole;
    a.length = 120, b.length = 180;
    const std::array parts{a, b};
    const Vec3 T{-3e5, 1e4, 8e4};
    const auto one = cable_chain({&whole, 1}, {5, 6, 7}, T), two = cable_chain(parts, {5, 6, 7}, T);
    EXPECT_LT(vector_length(difference(one.end, two.end)), 1e-12 * 300);
    EXPECT_LT(vector_length(difference(one.T2, two.T2)), 1e-12 * 3e5);
    for (std::size_t i = 0; i < 9; ++i)
        EXPECT_NEAR(one.F.a[i], two.F.a[i], 1e-12 * std::abs(one.F(2, 2)));
}

TEST(Catenary, elongation_is_the_integral_of_the_tension_over_the_stiffness) {
    const CatenarySegment c{400, 1e6, {0, 0, -30}};
    for (const Vec3& T : {Vec3{-2e4, 0, 5e3}, Vec3{0, 0, -1e4}, Vec3{0, 0, 4e3}}) {
        std::array<double, 10> x{}, w{};
        gauss_legendre(x, w);
        const int pieces = 300; // of which one holds the kink of a vertical line at a third
        double sum = 0;
        for (int p = 0; p < pieces; ++p)
            for (std::size_t k = 0; k < x.size(); ++k) {
                const double s = (p + (1 + x[k]) / 2) * c.length / pieces;
                sum += w[k] / 2 * c.length / pieces * vector_length(add_scaled(T, s, c.w)) / c.ea;
            }
        EXPECT_NEAR(cable_segment(c, T).elongation, sum, 1e-5 * sum) << T[2];
    }
}

TEST(Catenary, tells_what_a_segment_lacks_and_makes_no_number_undefined) {
    const Vec3 none{}, w{0, 0, -5}, T{1, 0, 2};
    EXPECT_EQ(cable_transf(w, T).lack, CatenaryLack::nothing);
    EXPECT_EQ(cable_transf(none, T).lack, CatenaryLack::load);
    EXPECT_EQ(cable_transf(w, none).lack, CatenaryLack::tension);
    EXPECT_EQ(cable_transf(none, none).lack, CatenaryLack::both);
    // A slack line without weight has no solution: the last finite state stays.
    const CatenarySegment c{100, 1e6, {}};
    const CatenaryLine line = cable_shoot({&c, 1}, {}, {50, 0, 0}, {-1, 0, 0}, 1e-6, 30);
    EXPECT_FALSE(line.converged);
    EXPECT_TRUE(inverse(line.chain.F).has_value());
}
