// Kernels of the wave field at free points.
#include "hydro_model/waven.hpp"
#include "hydro_response/field_potential.hpp"

#include <gtest/gtest.h>

#include <numbers>
#include <vector>

namespace quelor {
namespace {

constexpr double g = 9.80665, pi = std::numbers::pi;

IncomingWave wave_of(double omega, double depth, double beta, bool deep) {
    return {omega, waven(omega, depth, g).k, depth, beta, deep};
}

TEST(IncomingElevation, has_modulus_one_and_the_phase_of_the_wave) {
    // The factors of potential and elevation cancel to a rounding each.
    const std::vector<Vec3> points{{0, 0, 0}, {13, -7, 0}, {-40, 22, 0}, {250, 90, 0}};
    for (const bool deep : {false, true}) {
        const IncomingWave wave = wave_of(0.9, deep ? 1e4 : 12.0, 0.7, deep);
        std::vector<Complex8> eta(4);
        incoming_field(wave, g, points, eta);
        elevation_from_potential(wave.omega, g, eta);
        for (std::size_t i = 0; i < 4; ++i) {
            const double phase =
                -wave.k * (points[i][0] * std::cos(0.7) + points[i][1] * std::sin(0.7));
            EXPECT_NEAR(std::abs(eta[i]), 1, 1e-15);
            EXPECT_LT(std::abs(eta[i] - std::polar(1.0, phase)), 1e-14);
        }
    }
}

TEST(RadiationSources, are_those_of_the_velocity_of_each_mode) {
    const std::vector<Complex4> src{{1, 2}, {3, -1}, {0, 1}, {2, 2}}; // (2 panels, 2 modes)
    const std::vector<Complex8> q{{0.5, 1}, {-2, 0.25}};
    std::vector<Complex8> sigma{{10, 20}, {30, 40}};
    add_radiation_sources(1.5, {src.data(), 2, 2}, q, sigma);
    const Complex8 v1 = Complex8(0, 1.5) * q[0], v2 = Complex8(0, 1.5) * q[1];
    EXPECT_LT(std::abs(sigma[0] - (Complex8(10, 20) + Complex8(1, 2) * v1 + Complex8(0, 1) * v2)),
              1e-14);
    EXPECT_LT(std::abs(sigma[1] - (Complex8(30, 40) + Complex8(3, -1) * v1 + Complex8(2, 2) * v2)),
              1e-14);
}

TEST(SixPoints, stay_in_the_water) {
    // In the middle; on the surface; just below it; on the bed; del reaches both planes exactly.
    const std::vector<Vec3> nodes{{1, 2, -5}, {0, 0, 0}, {0, 0, -0.1}, {0, 0, -10}, {3, 3, -5}};
    std::vector<Vec3> p(30);
    EXPECT_EQ(six_points(nodes, {0.5, 0.25, 1}, 10, p), 0);
    const Vec3 first[] = {{1.5, 2, -5},  {0.5, 2, -5}, {1, 2.25, -5},
                          {1, 1.75, -5}, {1, 2, -4},   {1, 2, -6}};
    for (std::size_t k = 0; k < 6; ++k)
        EXPECT_EQ(p[k], first[k]);
    EXPECT_EQ(p[10][2], 0); // the node itself
    EXPECT_EQ(p[11][2], -1);
    EXPECT_EQ(p[16][2], -0.1);
    EXPECT_EQ(p[17][2], -1.1);
    EXPECT_EQ(p[22][2], -9);
    EXPECT_EQ(p[23][2], -10);
    EXPECT_EQ(six_points(nodes, {1, 1, 5}, 10, p), 0);
    EXPECT_EQ(p[28][2], 0); // a point exactly on a plane stays
    EXPECT_EQ(p[29][2], -10);
    EXPECT_EQ(six_points(nodes, {1, 1, 5.1}, 10, p), 1); // both replaced
    EXPECT_EQ(six_points(nodes, {1e-30, 1, 1}, 10, p), 1);
}

TEST(Velocity, is_exact_for_what_differences_see) {
    // Quadratic between two points, linear where the node takes the place of one.
    const std::vector<Vec3> nodes{{1, 2, -5}, {1, 2, 0}};
    std::vector<Vec3> six(12);
    six_points(nodes, {0.5, 0.25, 1}, 10, six);
    std::vector<Complex8> phi, v(6);
    for (const auto& [x, y, z] : six)
        phi.push_back(Complex8(x * x - 3 * y, phi.size() < 6 ? z * z + x * y : 4 * z));
    velocity_from_potentials(six, phi, {v.data(), 3, 2});
    EXPECT_EQ(v[0], Complex8(2, 2));
    EXPECT_EQ(v[1], Complex8(-3, 1));
    EXPECT_EQ(v[2], Complex8(0, -10));
    EXPECT_EQ(v[5], Complex8(0, 4));
}

TEST(Velocity, of_the_incoming_wave_converges_to_its_gradient) {
    // d(phi_I)/dx = (omega cosh k(z+h)/sinh kh) cos(beta) exp(..), vertically i omega sinh/sinh.
    // The error of a central difference is (k del)^2/6 of it, and (k del)^4/120 more.
    const IncomingWave wave = wave_of(0.8, 15, 0.5, false);
    const std::vector<Vec3> node{{4, -9, -6}};
    const double a = wave.k * 9, b = wave.k * 15;
    const Complex8 e =
        std::polar(wave.omega / std::sinh(b), -wave.k * (4 * std::cos(0.5) - 9 * std::sin(0.5)));
    const std::array<Complex8, 3> exact{std::cosh(a) * std::cos(0.5) * e,
                                        std::cosh(a) * std::sin(0.5) * e,
                                        Complex8(0, 1) * std::sinh(a) * e};
    for (const double del : {0.4, 0.1}) {
        std::vector<Vec3> six(6);
        six_points(node, {del, del, del}, 15, six);
        std::vector<Complex8> phi(6), v(3);
        incoming_field(wave, g, six, phi);
        velocity_from_potentials(six, phi, {v.data(), 3, 1});
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_LT(std::abs(v[i] / exact[i] - 1.0), std::pow(wave.k * del, 2) / 5.9);
    }
}

} // namespace
} // namespace quelor
