#include "hydro_analysis/coefficients.hpp"
#include "hydro_analysis/incoming_wave.hpp"
#include "hydro_analysis/symmetry.hpp"
#include "hydro_model/waven.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <vector>

namespace quelor {
namespace {

constexpr double g = 9.81;

/// phi_I by its definition, in water of the wave's depth.
Complex8 potential(const IncomingWave& w, double x, double y, double z) {
    const double Zf =
        w.deep ? std::exp(w.k * z) : std::cosh(w.k * (z + w.depth)) / std::cosh(w.k * w.depth);
    return Complex8(0, g / w.omega) * Zf *
           std::exp(Complex8(0, -w.k * (x * std::cos(w.beta) + y * std::sin(w.beta))));
}

IncomingWave wave(double omega, double depth, double beta) {
    return {omega, waven(omega, depth, g).k, depth, beta, depth > 1e3};
}

constexpr std::array<double, 6> centroids{1.3, -0.2, 0.7, 2.1, -0.4, -1.9}; // two panels, (np,3)
const Matrix<const double> xyzc{centroids.data(), 2, 3};

TEST(IncomingWave, class_sums_are_the_signed_sums_over_the_images) {
    for (const double depth : {4.0, 1e4})
        for (const int symmetry : {0, 1, 2}) {
            const IncomingWave w = wave(1.4, depth, 0.8);
            const int ns = image_count(symmetry);
            std::vector<Complex8> values(static_cast<std::size_t>(2 * ns));
            const Matrix<Complex8> pic{values.data(), 2, ns};
            incoming_potential(w, symmetry, xyzc, pic);
            for (int p = 1; p <= 2; ++p)
                for (int k = 1; k <= ns; ++k) {
                    Complex8 sum = 0;
                    for (int m = 1; m <= ns; ++m)
                        sum += class_sign(symmetry, k, m) *
                               potential(w, reflection_of(symmetry, m).x * xyzc(p, 1),
                                         reflection_of(symmetry, m).y * xyzc(p, 2), xyzc(p, 3));
                    EXPECT_LT(std::abs(Complex8(0, g / w.omega) * pic(p, k) - sum), 1e-12);
                }
        }
}

TEST(IncomingWave, velocities_are_the_derivatives_of_the_potential) {
    // Central differences of step 1e-5: errors of 1e-10 from the step and from rounding.
    constexpr std::array<double, 6> normals{0.6, -0.48, 0.64, 0, 0.8, -0.6};
    for (const double depth : {4.0, 1e4})
        for (const int m : {1, 2, 3, 4}) {
            const IncomingWave w = wave(1.4, depth, 2.3);
            std::array<Complex8, 2> h;
            incoming_normal_velocity(w, 2, m, xyzc, {normals.data(), 3, 2}, h);
            for (int p = 1; p <= 2; ++p) {
                const auto [sx, sy] = reflection_of(2, m);
                const double* n = &normals[static_cast<std::size_t>(3 * (p - 1))];
                const auto along = [&](double t) {
                    return potential(w, sx * (xyzc(p, 1) + t * n[0]), sy * (xyzc(p, 2) + t * n[1]),
                                     xyzc(p, 3) + t * n[2]);
                };
                const Complex8 slope = (along(1e-5) - along(-1e-5)) / 2e-5;
                EXPECT_LT(std::abs(h[static_cast<std::size_t>(p - 1)] + slope), 1e-8) << depth << m;
                const auto v =
                    incoming_velocity(w, g, {sx * xyzc(p, 1), sy * xyzc(p, 2), xyzc(p, 3)});
                EXPECT_LT(std::abs(sx * n[0] * v[0] + sy * n[1] * v[1] + n[2] * v[2] - slope), 1e-8)
                    << depth << m;
            }
        }
}

TEST(IncomingWave, decay_stays_finite_in_any_depth) {
    // cosh of k depth = 5,000 has no value in double precision.
    const IncomingWave w{1.0, 1.0, 5000.0, 0.0, false};
    EXPECT_NEAR(depth_decay(w, -2.0), std::exp(-2.0), 1e-15);
    EXPECT_NEAR(depth_decay(w, 0.0), 1.0, 1e-15);
}

TEST(SymmetryClasses, expansion_undoes_the_class_sums) {
    for (const int symmetry : {0, 1, 2}) {
        const int ns = image_count(symmetry);
        const std::array<Complex8, 4> image{Complex8(1, 2), Complex8(-3, 0.5), Complex8(0, 4),
                                            Complex8(2, -1)};
        std::array<Complex8, 4> sums{};
        for (int k = 1; k <= ns; ++k)
            for (int m = 1; m <= ns; ++m)
                sums[nth(k)] += class_sign(symmetry, k, m) * image[nth(m)];
        expand_classes(symmetry, 1.0, std::span(sums).first(as_size(ns)));
        for (std::size_t m = 0; m < as_size(ns); ++m)
            EXPECT_LT(std::abs(sums[m] - image[m]), 1e-15);
    }
}

} // namespace
} // namespace quelor
