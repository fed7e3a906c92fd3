// The Green function at one point: differential equation, boundary conditions, limits, refusals.
#include "green/finred_f.hpp"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>

#include "finite_quadrature.hpp"

using namespace quelor;

namespace {

using Values = std::array<Complex8, 8>;

Values green(double R, double d1, double d2, double h, int n1 = 0, int n2 = 0) {
    static DepthCache cache;
    Values f;
    EXPECT_EQ(finred_f(R, d1, d2, h, n1, n2, cache, f), 0) << R << " " << d1 << " " << d2;
    return f;
}

struct Place {
    double R, d1, d2, h;
};
/// Deep, and both branches of finite depth; d1 and d2 apart.
constexpr Place places[] = {
    {0.7, 0.3, 0.9, -1.0},  {6.0, 2.0, 0.5, -1.0},    {2.0, 0.6, 0.4, -1.0},
    {30.0, 9.0, 7.0, -1.0}, {0.1, 0.2, 0.7, 1.0},     {0.4, 0.9, 0.3, 1.0},
    {0.6, 0.1, 0.3, 1.0},   {2.5, 0.7, 0.2, 1.0},     {0.9, 1.5, 0.4, 5.0},
    {4.0, 0.3, 2.0, 5.0},   {2e-4, 1e-3, 3e-4, 2e-3}, {3e-3, 1e-3, 3e-4, 2e-3}};

/// Central difference of f[i] along a direction of (R, d1, d2), and the step's error, O(1e-8).
Complex8 difference(const Place& p, std::size_t i, double r, double a, double b, int n1, int n2) {
    const double step = 1e-4 * std::hypot(p.R, p.d1 - p.d2);
    const auto at = [&](double t) {
        return green(p.R + r * t, p.d1 + a * t, p.d2 + b * t, p.h, n1, n2)[i];
    };
    return (at(step) - at(-step)) / (2.0 * step);
}

TEST(FinredF, the_derivatives_are_those_of_the_value_in_every_mode) {
    constexpr std::size_t v = 0, r = 1, a = 2, ra = 3, aa = 4, ab = 5, b = 6, rb = 7;
    for (const Place& p : places)
        for (const int n1 : {0, 1, 2, 3, 4})
            for (const int n2 : {0, 1}) {
                const Values f = green(p.R, p.d1, p.d2, p.h, n1, n2);
                const double size = std::hypot(p.R, p.d1 - p.d2), inverse = 1.0 / size;
                // value and gradient are fitted apart, each to some 1e-8 of its own scale
                const double first = 1e-6 * (inverse * inverse + std::abs(f[a]));
                const double second = 1e-6 * (inverse * inverse * inverse + std::abs(f[aa]));
                const auto slope = [&](std::size_t i, double x, double y, double z) {
                    return difference(p, i, x, y, z, n1, n2);
                };
                EXPECT_LT(std::abs(slope(v, 1, 0, 0) - f[r]), first) << p.R << " " << p.h << n1;
                EXPECT_LT(std::abs(slope(v, 0, 1, 0) - f[a]), first) << p.R << " " << p.h << n1;
                EXPECT_LT(std::abs(slope(v, 0, 0, 1) - f[b]), first) << p.R << " " << p.h << n1;
                EXPECT_LT(std::abs(slope(r, 0, 1, 0) - f[ra]), second) << p.R << " " << p.h << n1;
                EXPECT_LT(std::abs(slope(r, 0, 0, 1) - f[rb]), second) << p.R << " " << p.h << n1;
                EXPECT_LT(std::abs(slope(a, 0, 1, 0) - f[aa]), second) << p.R << " " << p.h << n1;
                EXPECT_LT(std::abs(slope(a, 0, 0, 1) - f[ab]), second) << p.R << " " << p.h << n1;
            }
}

TEST(FinredF, Laplace_equation_and_the_conditions_at_the_surface_and_the_bottom) {
    for (const Place& p : places) {
        const Values f = green(p.R, p.d1, p.d2, p.h);
        const double size = std::hypot(p.R, p.d1 - p.d2);
        const Complex8 rr = difference(p, 1, 1, 0, 0, 0, 0);
        EXPECT_LT(std::abs(rr + f[1] / p.R + f[4]), 3e-6 / (size * size * size))
            << p.R << " " << p.h;
        // dG/dz = G at z = 0, of the whole function; 1e-7 of its Rankine scale
        const Values top = green(p.R, 0.0, p.d2, p.h);
        const double square = p.R * p.R + p.d2 * p.d2;
        EXPECT_LT(std::abs(top[2] + top[0]), 1e-7 * (std::abs(top[0]) + 1.0 / square));
        if (p.h < 0.0) continue;
        const Values bottom = green(p.R, p.h, p.d2, p.h);
        const double above = p.R * p.R + (p.h - p.d2) * (p.h - p.d2);
        EXPECT_LT(std::abs(bottom[2]), 1e-7 / above + 1e-7 * std::abs(bottom[0]) / p.h);
    }
}

TEST(FinredF, the_terms_removed_are_the_Rankine_terms_and_the_logarithms) {
    for (const Place& p : places) {
        const double Z = p.d1 + p.d2, r1 = std::hypot(p.R, Z);
        const double r = std::hypot(p.R, p.d1 - p.d2), r2 = std::hypot(p.R, 2.0 * p.h - Z);
        const auto value = [&](int n1, int n2) {
            return green(p.R, p.d1, p.d2, p.h, n1, n2)[0].real();
        };
        const double tolerance = 1e-11 * (1.0 / r + std::abs(value(0, 0)));
        EXPECT_NEAR(value(0, 0) - value(1, 0), 1.0 / r, tolerance);
        EXPECT_NEAR(value(1, 0) - value(2, 0), 1.0 / r1, tolerance);
        EXPECT_NEAR(value(3, 0) - value(2, 0), 2.0 * std::log(r1), tolerance + 1e-11);
        EXPECT_NEAR(value(4, 0) - value(2, 0), 2.0 * std::log(r1 + Z), tolerance + 1e-11);
        EXPECT_NEAR(value(2, 0) - value(2, 1), p.h > 0.0 ? 1.0 / r2 : 0.0, tolerance);
        if (p.h < 0.0) continue;
        const auto want = finite_quadrature::finite_remainder(p.R, p.d1, p.d2, p.h);
        EXPECT_LT(std::abs(green(p.R, p.d1, p.d2, p.h, 2, 1)[0] - want.v),
                  5e-8 * (1.0 / r + 1.0 / r1 + 1.0 / r2 + std::abs(want.v)));
    }
}

TEST(FinredF, great_depth_tends_to_deep_water_with_the_cube_of_the_depth) {
    for (const double R : {0.0, 0.5, 5.0, 40.0}) {
        const Values deep = green(R, 0.8, 0.3, -1.0, 1, 0);
        EXPECT_NEAR(deep[0].imag(), -2.0 * std::numbers::pi * ::j0(R) * std::exp(-1.1), 1e-8);
        for (const double h : {20.0, 100.0, 1e4, 1e6}) {
            const Values finite = green(R, 0.8, 0.3, h, 1, 0);
            // images in the bottom: quadrupole of strength R^2 + Z^2 and dipoles at 2 h
            const double far = 4.0 * (R * R + 4.0) / (h * h * h) + 2e-8 / h + 1e-10;
            EXPECT_LT(std::abs(finite[0] - deep[0]), far) << R << " " << h;
            EXPECT_LT(std::abs(finite[1] - deep[1]), far) << R << " " << h;
            EXPECT_LT(std::abs(finite[2] - deep[2]), far) << R << " " << h;
        }
    }
}

TEST(FinredF, senseless_arguments_are_refused) {
    const double nan = std::nan(""), infinite = std::numeric_limits<double>::infinity();
    DepthCache cache;
    Values f;
    const double refused[][4] = {
        {nan, 1, 1, 5},    {-1, 1, 1, 5},       {2e8, 1, 1, 5},       {1, nan, 1, 5},
        {1, 1, nan, -1},   {1, 1, 1, nan},      {0, 0, 0, 5},         {0, 0, 0, -1},
        {1, 5.0001, 1, 5}, {1, 1, 5.0001, 5},   {1, 0, 0, 1e-9},      {1, 1, 1, 2e8},
        {1, 2e8, 1, -1},   {infinite, 1, 1, 5}, {1, infinite, 1, -1}, {1, -infinite, 1, -1}};
    for (const auto& x : refused) {
        EXPECT_EQ(finred_f(x[0], x[1], x[2], x[3], 0, 0, cache, f), 1) << x[0] << " " << x[1];
        for (const Complex8 value : f)
            EXPECT_EQ(value, 0.0);
    }
    // coincident points: refused with 1/r in, a value without it
    EXPECT_EQ(finred_f(0.0, 1.0, 1.0, 5.0, 0, 0, cache, f), 1);
    EXPECT_EQ(finred_f(0.0, 1.0, 1.0, 5.0, 2, 1, cache, f), 0);
    EXPECT_EQ(finred_f(0.0, 1.0, 1.0, -1.0, 0, 0, cache, f), 1);
    EXPECT_EQ(finred_f(0.0, 5.0, 5.0, 5.0, 1, 0, cache, f), 1); // 1/r2 at the bottom
    EXPECT_EQ(finred_f(0.0, 5.0, 5.0, 5.0, 1, 1, cache, f), 0);
}

} // namespace
