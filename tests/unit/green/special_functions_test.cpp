// Bessel, Struve and exponential integral functions against the standard library and quadrature of
// their integral representations.
#include "green/expi.hpp"
#include "green/spfn.hpp"
#include "quadrature.hpp"

#include <gtest/gtest.h>

using namespace quelor;
using quadrature::Real;

namespace {

constexpr Real pi = std::numbers::pi_v<Real>;

void expect_close(double value, Real exact, Real tolerance, double x) {
    EXPECT_LE(std::abs(value - exact), tolerance) << "at " << x;
}

std::vector<double> arguments() {
    std::vector<double> x = {4.0, 10.0, std::nextafter(4.0, 0.0), std::nextafter(10.0, 20.0)};
    for (double v = 1e-6; v < 2e3; v *= 1.37)
        x.push_back(v);
    for (double v = 0.1; v < 25; v += 0.27)
        x.push_back(v);
    return x;
}

TEST(Spfn, bessel_functions_agree_with_the_library) {
    for (const double x : arguments()) {
        const auto b = spfn_bessel(x);
        const auto y = spfn_neumann(x, b, -1);
        const Real size = x < 4 ? 1 : std::sqrt(2 / (pi * x));
        expect_close(b.j0, j0l(x), 1e-10L * size, x);
        expect_close(b.j1, j1l(x), 1e-10L * size, x);
        expect_close(y.y0, pi * y0l(x), 3e-10L * (size + std::abs(y0l(x))), x);
        expect_close(y.y1, pi * y1l(x), 3e-10L * (size + std::abs(y1l(x))), x);
        if (x < 4) continue;
        expect_close(b.amplitude0 * std::cos(b.phase0), j0l(x), 1e-10L * size, x);
        expect_close(b.amplitude1 * std::cos(b.phase1), j1l(x), 1e-10L * size, x);
    }
}

// H0(x) = (2/pi) int_0^(pi/2) sin(x cos t) dt,
// H1(x) = (2 x/pi) int_0^(pi/2) sin(x cos t) sin(t)^2 dt [Abramowitz 1964, 12.1.6, 12.1.7].
TEST(Spfn, struve_functions_agree_with_quadrature) {
    for (const double x : arguments()) {
        const auto h0 = [x](Real t) { return 2 * std::sin(x * std::cos(t)); };
        const auto h1 = [x](Real t) {
            return 2 * x * std::sin(x * std::cos(t)) * std::sin(t) * std::sin(t);
        };
        const int panels = 2 + static_cast<int>(x / 8);
        const Real exact0 = quadrature::integral(h0, 0, pi / 2, panels);
        const Real exact1 = quadrature::integral(h1, 0, pi / 2, panels);
        const auto y = spfn_neumann(x, spfn_bessel(x), 0);
        expect_close(y.h0, exact0, 3e-10L * (std::min(x, 1.0) + std::abs(exact0)), x);
        expect_close(y.h1, exact1, 3e-10L * (std::min(x * x, 1.0) + std::abs(exact1)), x);
    }
}

TEST(Spfn, selectors_choose_what_is_given) {
    const auto b = spfn_bessel(0.5);
    const auto nothing = spfn_neumann(0.5, b, -100);
    EXPECT_EQ(nothing.y0 + nothing.y1 + nothing.h0 + nothing.h1, 0.0);
    const auto plain = spfn_neumann(0.5, b, 0), regular = spfn_neumann(0.5, b, 1);
    EXPECT_NEAR(regular.y0, plain.y0 - 2 * b.j0 * std::log(0.5), 1e-14);
    EXPECT_NEAR(regular.y1, plain.y1 - 2 * b.j1 * std::log(0.5) + 4.0, 1e-14);
    EXPECT_EQ(regular.h0, plain.h0);
    const auto origin = spfn_neumann(0.0, spfn_bessel(0.0), 1);
    EXPECT_NEAR(origin.y0, 2 * (std::numbers::egamma - std::numbers::ln2), 1e-11);
    EXPECT_EQ(origin.y1, 0.0);
}

// exp(x) E1(x) = int_0^inf exp(-u)/(x + u) du, Ei(x) = gamma + log x + int_0^1 (exp(x t) - 1)/t dt.
TEST(Expi, agrees_with_quadrature_for_every_argument) {
    for (double x = 1e-5; x < 700; x *= 1.23) {
        const Real X = x, e = std::exp(-X);
        const auto e1 = [X](Real u) { return std::exp(-u) / (X + u); };
        Real scaled = quadrature::integral(e1, 0, X, 1 + static_cast<int>(x));
        for (Real a = X; a < 60; a *= 1.5L)
            scaled += quadrature::integral(e1, a, 1.5L * a);
        expect_close(expi(-x, 3), -scaled, 1e-13L * scaled, x);
        expect_close(expi(-x, 1), -scaled * e, 1e-13L * scaled * e, x);
        EXPECT_EQ(expi(x, 2), -expi(-x, 1));
        const auto part = [X, e](Real t) { return std::expm1(X * t) / t * e; };
        const Real regular = quadrature::integral(part, 0, 1, 4 + static_cast<int>(x));
        const Real ei = regular + (std::numbers::egamma_v<Real> + std::log(X)) * e;
        expect_close(expi(x, 3), ei, 1e-13L * std::abs(ei) + 1e-15L * e, x);
        expect_close(expi(x, 1), ei / e, 2e-13L * std::abs(ei / e) + 1e-15L, x);
    }
}

TEST(Expi, is_good_next_to_its_zero_and_at_the_ends) {
    const Real zero = 0.3725074107813666344619918665801L; // Ei rises there with exp(x)/x
    const auto slope = [](Real t) { return std::exp(t) / t; };
    for (const double d :
         {-0.0371, -0.0369, -0.01, -1e-4, -1e-9, 1e-9, 1e-4, 0.01, 0.0369, 0.0371}) {
        const double x = 0.3725074107813666 + d;
        const Real exact = quadrature::integral(slope, zero, x);
        expect_close(expi(x, 1), exact, 1e-14L * std::abs(exact) + 1e-19L, x); // rounding of zero
    }
    EXPECT_LT(expi(0.0, 1), -1.7e308);
    EXPECT_LT(expi(0.0, 3), -1.7e308);
    EXPECT_GT(expi(0.0, 2), 1.7e308);
    EXPECT_GT(expi(720.0, 1), 1.7e308);
    EXPECT_TRUE(std::isfinite(expi(716.0, 1)));
    EXPECT_EQ(expi(1e4, 2), 0.0);
    for (const double x : {720.0, 1e4, 1e8})
        EXPECT_NEAR(x * expi(x, 3), 1 + 1 / x, 3 / (x * x));
}

} // namespace
