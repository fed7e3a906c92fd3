// The deep-water wave term against quadrature of its defining integral, and the batch kernels
// against the single-point routine.
#include "finite_quadrature.hpp"
#include "green/deep_wave.hpp"
#include "green/expi.hpp"
#include "green/infred_f.hpp"

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

using namespace quelor;

namespace {

constexpr double pi = std::numbers::pi;

struct Points {
    std::vector<double> R, Z;
    void add(double r, double z) {
        R.push_back(r);
        Z.push_back(z);
    }
};

// R from 1e-6 to 1e3 and Z from 0 to 60 by decades, and both sides of every boundary between
// regions or tables.
Points test_points() {
    Points points;
    for (double R = 1e-6; R < 1.1e3; R *= 3.1)
        for (const double Z : {0.0, 1e-6, 1e-3, 0.03, 0.3, 1.1, 3.0, 6.1, 14.5, 33.0, 60.0})
            points.add(R, Z);
    for (const double side : {1 - 1e-9, 1.0, 1 + 1e-9}) {
        for (const double R : {3.7, 8.0, 10.0})
            for (const double Z : {0.0, 1.9, 5.0, 19.0, 21.0})
                points.add(R * side, Z);
        for (const double Z : {2.0, 4.0, 8.0, 20.0})
            for (const double R : {1e-3, 1.7, 5.0, 30.0})
                points.add(R, Z * side);
        for (const double s : {0.5, 1.0, 2.0, 4.0})
            for (const double Z : {1.5, 3.9, 12.0, 25.0})
                points.add(s * side * Z, Z);
        for (const double rho : {14.0, 28.0})
            points.add(0.2 * rho, std::sqrt(0.96) * rho * side);
    }
    return points;
}

struct Terms {
    std::vector<double> re, re_R, re_1, re_2, im, im_R, im_1, im_2;
    explicit Terms(const Points& points) {
        for (auto* v : {&re, &re_R, &re_1, &re_2, &im, &im_R, &im_1, &im_2})
            v->resize(points.R.size());
        deep_wave_terms(points.R, points.Z,
                        {re.data(), re_R.data(), re_1.data(), re_2.data(), im.data(), im_R.data(),
                         im_1.data(), im_2.data()});
    }
};

// Deep water is the limit of great depth, 1e15 here: the bottom leaves less than 1e-14.
double relative(double value, double exact, double rankine) {
    return std::abs(value - exact) / std::max(std::abs(exact), rankine);
}

// The tables are fitted to 5e-9 of 1/rho^2 and so are the derivatives; F is better.
TEST(DeepWave, value_and_gradient_agree_with_quadrature_everywhere) {
    const Points points = test_points();
    const Terms terms(points);
    for (std::size_t i = 0; i < points.R.size(); ++i) {
        const double R = points.R[i], Z = points.Z[i], p = 1 / std::hypot(R, Z);
        const auto exact = finite_quadrature::finite_remainder(R, Z / 2, Z / 2, 1e15);
        SCOPED_TRACE(testing::Message() << "R " << R << " Z " << Z);
        const double F = exact.v.real(), Fr = exact.r.real(), Fz = exact.d1.real();
        EXPECT_LT(relative(terms.re[i], F, p), 2e-9);
        EXPECT_LT(relative(terms.re_R[i], Fr, p * p), 1e-8);
        EXPECT_LT(relative(terms.re_1[i], Fz, p * p), 1e-8);
        EXPECT_LT(relative(terms.im[i], exact.v.imag(), std::max(p, std::abs(F))), 2e-9);
        EXPECT_LT(relative(terms.im_R[i], exact.r.imag(), std::max(p * p, std::abs(Fr))), 1e-8);
        EXPECT_EQ(terms.im_1[i], -terms.im[i]);
        EXPECT_EQ(terms.re_2[i], terms.re_1[i]);
        EXPECT_EQ(terms.im_2[i], terms.im_1[i]);
    }
}

TEST(DeepWave, the_batch_gives_the_bits_of_the_single_point) {
    const Points points = test_points();
    const Terms terms(points);
    std::vector<double> F(points.R.size()), Fr(F), Fz(F);
    deep_wave_values(points.R, points.Z, F.data(), Fr.data());
    EXPECT_EQ(F, terms.re);
    EXPECT_EQ(Fr, terms.im);
    deep_images(points.R, points.Z, F.data(), Fr.data(), Fz.data());
    EXPECT_EQ(F, terms.re);
    for (std::size_t i = 0; i < F.size(); ++i) {
        const auto single = infred_f(points.R[i], points.Z[i], SurfaceTerms::none);
        SCOPED_TRACE(testing::Message() << "R " << points.R[i] << " Z " << points.Z[i]);
        EXPECT_EQ(F[i], single.F);
        EXPECT_EQ(Fr[i], single.Fr);
        EXPECT_EQ(Fz[i], single.Fz);
    }
}

TEST(DeepWave, on_the_vertical_axis_it_is_the_exponential_integral) {
    Points points;
    for (double Z = 1e-7; Z < 1e8; Z *= 1.7)
        points.add(0.0, Z);
    const Terms terms(points);
    for (std::size_t i = 0; i < points.R.size(); ++i) {
        const double Z = points.Z[i], exact = -2 * expi(Z, 3);
        EXPECT_LT(relative(terms.re[i], exact, 1 / Z), 2e-9) << Z;
        EXPECT_EQ(terms.re_R[i], 0.0);
        EXPECT_EQ(terms.im_R[i], 0.0);
        EXPECT_NEAR(terms.im[i], -2 * pi * std::exp(-Z), 1e-11);
    }
}

TEST(DeepWave, far_away_it_stays_finite_and_at_the_water_line_it_is_zero) {
    Points points;
    points.add(0.0, 0.0);
    points.add(4e-9, 5e-9);
    for (const double far : {1e4, 1e8})
        for (const double other : {0.0, 0.3 * far}) {
            points.add(far, other);
            points.add(other, far);
        }
    const Terms terms(points);
    for (const auto* v : {&terms.re, &terms.re_R, &terms.re_1, &terms.im, &terms.im_R, &terms.im_1})
        for (std::size_t i = 0; i < points.R.size(); ++i)
            EXPECT_LE(std::abs((*v)[i]), i < 2 ? 0.0 : 0.07); // -2/rho and the wave, 6/sqrt(rho)
}

TEST(Infred, forms_with_logarithms_have_their_limit_at_the_origin) {
    // PV int_0^inf (exp(-kZ) J0(kR)/(k - 1) ...) ~ -log((rho + Z)/2) - gamma at the origin.
    for (const double t : {1e-6, 1e-4}) {
        const double limit = 2 * (std::numbers::ln2 - std::numbers::egamma);
        EXPECT_NEAR(infred_f(t, 2 * t, SurfaceTerms::log_rho_plus_Z).F, limit, 100 * t);
        EXPECT_NEAR(infred_f(t, 0, SurfaceTerms::log_rho).F, limit, 100 * t);
    }
    EXPECT_EQ(infred_f(9.0, 20.0 + 1e-9, SurfaceTerms::none).e, 0.0);
    EXPECT_DOUBLE_EQ(infred_f(9.0, 2.0, SurfaceTerms::none).e, std::exp(-2.0));
}

} // namespace
