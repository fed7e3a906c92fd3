// The plane beam with large displacements: rigid rotation, tangent, and the cantilever that an end
// moment rolls up.
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

TEST(PlaneBeam, an_end_moment_rolls_a_cantilever_up_into_a_circle) {
    // M = 2 pi E I / L bends the axis into one full turn: the tip comes back to the support, turned
    // by 2 pi. Newton steps on 20 elements, the moment in 40 increments.
    constexpr int elements = 20, increments = 40;
    constexpr double length = 10, h = length / elements;
    const double moment = 2 * pi * section.e * section.moi / length;
    std::vector<double> u(3 * (elements + 1));
    for (int step = 1; step <= increments; ++step)
        for (int iteration = 0; iteration < 30; ++iteration) {
            SmallSystem system(3 * elements);
            system.f.back() = moment * step / increments;
            for (int e = 0; e < elements; ++e) {
                const double* const v = &u[static_cast<std::size_t>(3 * e)];
                const PlaneChord original{h, 0};
                const PlaneChord present = plane_chord(v[0], v[1], h + v[3], v[4]);
                const PlaneForces f = plane_forces(section, original, present, v[2], v[5]);
                const auto force = plane_force_vector(f, present.angle);
                std::vector<int> equations;
                for (int i = 0; i < 6; ++i) {
                    equations.push_back(3 * (e - 1) + i);
                    if (equations.back() >= 0)
                        system.f[static_cast<std::size_t>(equations.back())] -=
                            force[static_cast<std::size_t>(i)];
                }
                system.add(equations, plane_stiffness(section, original, present, f.n));
            }
            const auto du = system.solve();
            for (std::size_t i = 0; i < du.size(); ++i)
                u[i + 3] += du[i];
            if (largest(du) < 1e-12) break;
        }
    EXPECT_NEAR(u[3 * elements + 2], 2 * pi, 1e-8);
    EXPECT_NEAR(length + u[3 * elements], 0, 1e-3 * length);
    EXPECT_NEAR(u[3 * elements + 1], 0, 1e-3 * length);
}
