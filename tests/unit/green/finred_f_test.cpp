// The Green function at one point: differential equation, boundary conditions, limits, refusals.
#include "green/finred_f.hpp"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>

#include "finite_quadrature.hpp"
#include "numeric/vectors.hpp"

using namespace quelor;

namespace {

using enum SurfaceTerms;
using enum BottomTerm;

GreenValue green(double R, double d1, double d2, double h, SurfaceTerms beside = direct_and_image,
                 BottomTerm bottom = kept) {
    static DepthCache cache;
    GreenValue f;
    EXPECT_EQ(finred_f(R, d1, d2, h, beside, bottom, cache, f), GreenStatus::found)
        << R << " " << d1 << " " << d2;
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

/// Central difference of a member along a direction of (R, d1, d2); the step's error is O(1e-8).
Complex8 difference(const Place& p, Complex8 GreenValue::*member, const Vec3& along,
                    SurfaceTerms beside = direct_and_image, BottomTerm bottom = kept) {
    const double step = 1e-4 * std::hypot(p.R, p.d1 - p.d2);
    const auto at = [&](double t) {
        return green(p.R + along[0] * t, p.d1 + along[1] * t, p.d2 + along[2] * t, p.h, beside,
                     bottom).*
               member;
    };
    return (at(step) - at(-step)) / (2.0 * step);
}

TEST(FinredF, the_derivatives_are_those_of_the_value_in_every_form) {
    using G = GreenValue;
    constexpr Vec3 along_R{1, 0, 0}, along_d1{0, 1, 0}, along_d2{0, 0, 1};
    struct Pair {
        Complex8 G::*of;
        Vec3 along;
        Complex8 G::*slope;
        bool second;
    };
    constexpr Pair pairs[] = {
        {&G::G, along_R, &G::G_R, false},    {&G::G, along_d1, &G::G_1, false},
        {&G::G, along_d2, &G::G_2, false},   {&G::G_R, along_d1, &G::G_R1, true},
        {&G::G_R, along_d2, &G::G_R2, true}, {&G::G_1, along_d1, &G::G_11, true},
        {&G::G_1, along_d2, &G::G_12, true}};
    for (const Place& p : places)
        for (const auto beside : {direct_and_image, image, none, log_rho, log_rho_plus_Z})
            for (const auto bottom : {kept, removed}) {
                const GreenValue f = green(p.R, p.d1, p.d2, p.h, beside, bottom);
                const double size = std::hypot(p.R, p.d1 - p.d2), inverse = 1.0 / size;
                // value and gradient are fitted apart, each to some 1e-8 of its own scale
                const double first = 1e-6 * (inverse * inverse + std::abs(f.G_1));
                const double second = 1e-6 * (inverse * inverse * inverse + std::abs(f.G_11));
                for (const Pair& pair : pairs) {
                    const Complex8 slope = difference(p, pair.of, pair.along, beside, bottom);
                    EXPECT_LT(std::abs(slope - f.*pair.slope), pair.second ? second : first)
                        << p.R << " " << p.h << " " << static_cast<int>(beside);
                }
            }
}

TEST(FinredF, Laplace_equation_and_the_conditions_at_the_surface_and_the_bottom) {
    for (const Place& p : places) {
        const GreenValue f = green(p.R, p.d1, p.d2, p.h);
        const double size = std::hypot(p.R, p.d1 - p.d2);
        const Complex8 rr = difference(p, &GreenValue::G_R, {1, 0, 0});
        EXPECT_LT(std::abs(rr + f.G_R / p.R + f.G_11), 3e-6 / (size * size * size))
            << p.R << " " << p.h;
        // dG/dz = G at z = 0, of the whole function; 1e-7 of its Rankine scale
        const GreenValue top = green(p.R, 0.0, p.d2, p.h);
        const double square = p.R * p.R + p.d2 * p.d2;
        EXPECT_LT(std::abs(top.G_1 + top.G), 1e-7 * (std::abs(top.G) + 1.0 / square));
        if (p.h < 0.0) continue;
        const GreenValue bottom = green(p.R, p.h, p.d2, p.h);
        const double above = p.R * p.R + (p.h - p.d2) * (p.h - p.d2);
        EXPECT_LT(std::abs(bottom.G_1), 1e-7 / above + 1e-7 * std::abs(bottom.G) / p.h);
    }
}

TEST(FinredF, the_terms_removed_are_the_Rankine_terms_and_the_logarithms) {
    for (const Place& p : places) {
        const double Z = p.d1 + p.d2, r1 = std::hypot(p.R, Z);
        const double r = std::hypot(p.R, p.d1 - p.d2), r2 = std::hypot(p.R, 2.0 * p.h - Z);
        const auto value = [&](SurfaceTerms beside, BottomTerm bottom = kept) {
            return green(p.R, p.d1, p.d2, p.h, beside, bottom).G.real();
        };
        const double tolerance = 1e-11 * (1.0 / r + std::abs(value(direct_and_image)));
        EXPECT_NEAR(value(direct_and_image) - value(image), 1.0 / r, tolerance);
        EXPECT_NEAR(value(image) - value(none), 1.0 / r1, tolerance);
        EXPECT_NEAR(value(log_rho) - value(none), 2.0 * std::log(r1), tolerance + 1e-11);
        EXPECT_NEAR(value(log_rho_plus_Z) - value(none), 2.0 * std::log(r1 + Z), tolerance + 1e-11);
        EXPECT_NEAR(value(none) - value(none, removed), p.h > 0.0 ? 1.0 / r2 : 0.0, tolerance);
        if (p.h < 0.0) continue;
        const auto want = finite_quadrature::finite_remainder(p.R, p.d1, p.d2, p.h);
        EXPECT_LT(std::abs(green(p.R, p.d1, p.d2, p.h, none, removed).G - want.v),
                  5e-8 * (1.0 / r + 1.0 / r1 + 1.0 / r2 + std::abs(want.v)));
    }
}

TEST(FinredF, great_depth_tends_to_deep_water_with_the_cube_of_the_depth) {
    for (const double R : {0.0, 0.5, 5.0, 40.0}) {
        const GreenValue deep = green(R, 0.8, 0.3, -1.0, image);
        EXPECT_NEAR(deep.G.imag(), -2.0 * std::numbers::pi * ::j0(R) * std::exp(-1.1), 1e-8);
        for (const double h : {20.0, 100.0, 1e4, 1e6}) {
            const GreenValue finite = green(R, 0.8, 0.3, h, image);
            // images in the bottom: quadrupole of strength R^2 + Z^2 and dipoles at 2 h
            const double far = 4.0 * (R * R + 4.0) / (h * h * h) + 2e-8 / h + 1e-10;
            EXPECT_LT(std::abs(finite.G - deep.G), far) << R << " " << h;
            EXPECT_LT(std::abs(finite.G_R - deep.G_R), far) << R << " " << h;
            EXPECT_LT(std::abs(finite.G_1 - deep.G_1), far) << R << " " << h;
        }
    }
}

TEST(FinredF, senseless_arguments_are_refused) {
    const double nan = std::nan(""), infinite = std::numeric_limits<double>::infinity();
    DepthCache cache;
    GreenValue f;
    const auto status = [&](double R, double d1, double d2, double h,
                            SurfaceTerms beside = direct_and_image, BottomTerm bottom = kept) {
        return finred_f(R, d1, d2, h, beside, bottom, cache, f);
    };
    const double refused[][4] = {
        {nan, 1, 1, 5},    {-1, 1, 1, 5},       {2e8, 1, 1, 5},       {1, nan, 1, 5},
        {1, 1, nan, -1},   {1, 1, 1, nan},      {0, 0, 0, 5},         {0, 0, 0, -1},
        {1, 5.0001, 1, 5}, {1, 1, 5.0001, 5},   {1, 0, 0, 1e-9},      {1, 1, 1, 2e8},
        {1, 2e8, 1, -1},   {infinite, 1, 1, 5}, {1, infinite, 1, -1}, {1, -infinite, 1, -1}};
    for (const auto& x : refused) {
        EXPECT_EQ(status(x[0], x[1], x[2], x[3]), GreenStatus::out_of_range) << x[0] << " " << x[1];
        EXPECT_TRUE(f.G == 0.0 && f.G_R == 0.0 && f.G_1 == 0.0 && f.G_2 == 0.0);
    }
    // coincident points: refused with 1/r in, a value without it
    EXPECT_EQ(status(0.0, 1.0, 1.0, 5.0), GreenStatus::coincident);
    EXPECT_EQ(status(0.0, 1.0, 1.0, 5.0, none, removed), GreenStatus::found);
    EXPECT_EQ(status(0.0, 1.0, 1.0, -1.0), GreenStatus::coincident);
    EXPECT_EQ(status(0.0, 5.0, 5.0, 5.0, image), GreenStatus::coincident); // 1/r2 at the bottom
    EXPECT_EQ(status(0.0, 5.0, 5.0, 5.0, image, removed), GreenStatus::found);
}

} // namespace
