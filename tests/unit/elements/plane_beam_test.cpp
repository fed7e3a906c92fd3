// The plane beam with large displacements: rigid rotation, tangent, the jump of the angle.
#include "elements/plane_beam.hpp"

#include "element_checks.hpp"

#include <numbers>

using namespace quelor;

namespace {

constexpr double pi = std::numbers::pi;
constexpr PlaneSection section{210, 80, 0.5, 0.02, 0};

/// Nodes at (0, 0) and (1.2, 0.5) with the displacements u.
struct Beam {
    PlaneChord original, present;
};
Beam beam_of(std::span<const double> u) {
    return {plane_chord(0, 0, 1.2, 0.5), plane_chord(u[0], u[1], 1.2 + u[3], 0.5 + u[4])};
}
std::array<double, 6> force_of(std::span<const double> u) {
    const auto [original, present] = beam_of(u);
    return plane_force_vector(plane_forces(section, original, present, u[2], u[5]), present.angle);
}
/// Rigid rotation about a point by an angle.
std::vector<double> rotation(double angle) {
    const double c = std::cos(angle), s = std::sin(angle);
    const auto move = [&](double a, double b) {
        return std::pair{c * (a - 3) - s * (b + 1) + 3 - a, s * (a - 3) + c * (b + 1) - 1 - b};
    };
    const auto [u1, v1] = move(0, 0);
    const auto [u2, v2] = move(1.2, 0.5);
    return {u1, v1, angle, u2, v2, angle};
}

} // namespace

TEST(PlaneBeam, a_rotation_by_any_angle_gives_no_force) {
    for (const double angle : {0.3, -0.3, 2.8, -2.8, pi, -pi, 4.0, 6.2, -6.2, 9.0, -25.0})
        EXPECT_LT(largest(force_of(rotation(angle))), 1e-12 * section.e * section.area) << angle;
}

TEST(PlaneBeam, tangent_of_the_unstressed_beam_is_the_derivative_of_its_force_at_any_angle) {
    for (const double angle : {0.0, 1.0, 3.0, -4.0}) {
        const auto u = rotation(angle);
        const auto [original, present] = beam_of(u);
        const SmallMatrix<6> k = plane_stiffness(section, original, present, 0);
        expect_symmetric(k);
        expect_tangent(k, u, force_of, 1e-8);
    }
}

TEST(PlaneBeam, forces_stay_continuous_through_the_jump_of_the_chords_angle) {
    for (double angle = pi - 0.7; angle < pi + 0.3; angle += 0.01) {
        auto u = rotation(angle);
        u[2] += 0.05; // an end bent by 0.05 carries 4 E I / Lo times that
        const auto [original, present] = beam_of(u);
        const PlaneForces f = plane_forces(section, original, present, u[2], u[5]);
        EXPECT_NEAR(f.m1, 4 * section.e * section.moi / 1.3 * 0.05, 1e-11);
        EXPECT_NEAR(f.m2, f.m1 / 2, 1e-11);
        EXPECT_NEAR(f.v, 1.5 * f.m1 / 1.3, 1e-11);
    }
}
