// Energy balance of responses, and the radiated wave against the damping.
#include "hydro_response/hyd_energyloss.hpp"

#include "../support/arrays.hpp"
#include "hydro_response/far_field.hpp"
#include "hydro_response/hyd_response.hpp"
#include "tests/support/bodies.hpp"

#include <algorithm>

namespace quelor {
namespace {

class FlexibleBarge : public ArraySession {
protected:
    FlexibleBarge() : ArraySession({hyd_response_rows(), hyd_energy_rows()}) {
        type("filein " TEST_DATA "/../../examples/barge/barge.txt -noecho");
        symmetrize_matrix(as_matrix<double>(find_array(".hyd_kf")));
        run("hyd_analysis_response symmetrize=on");
    }
    /// Column c of the table, all frequencies and headings.
    static Reals column(int c) {
        const auto table = as_array3<const double>(find_array(".hyd_dissipate"));
        Reals values;
        for (int b = 1; b <= table.n3; ++b)
            for (int f = 1; f <= table.n1; ++f)
                values.push_back(table(f, c, b));
        return values;
    }
};

TEST_F(FlexibleBarge, balance_closes_to_rounding_and_the_far_field_to_the_mesh) {
    run("hyd_energy -farfield");
    const Reals put_in = column(2), lost = column(3), fluid = column(4), structure = column(5);
    const Reals far = elements<double>(".hyd_farfield");
    for (std::size_t i = 0; i < lost.size(); ++i) {
        // What the solution leaves as residual, n eps |D| |q|^2, against the energy, of which
        // inertia and restoring hold up to some thousand times more.
        EXPECT_NEAR(put_in[i], lost[i], 1e-10 * lost[i]) << i;
        EXPECT_GT(structure[i], 0);
        EXPECT_NEAR(fluid[i] + structure[i], 100, 1e-10);
        // 352 panels, the largest a seventh of the shortest wave: the error of the mesh.
        EXPECT_NEAR(far[i] / (lost[i] * fluid[i] / 100), 1, 0.05) << i;
    }
    // Neither the method nor symmetrizing changes a form.
    run("hyd_energy method=2 symmetrize=off");
    for (std::size_t i = 0; i < lost.size(); ++i)
        EXPECT_NEAR(column(3)[i], lost[i], 1e-12 * lost[i]);
    create_real_scalar(".hyd_hysdamp", -0.02);
    run("hyd_energy");
    EXPECT_EQ(std::ranges::count(column(4), 100.0), std::ssize(lost));
    EXPECT_EQ(std::ranges::count(column(5), 0.0), std::ssize(lost));
}

TEST_F(FlexibleBarge, damping_of_the_wrong_sign_is_named_and_kept) {
    for (double& b : as_span<double>(find_array(".hyd_damp")))
        b = -b;
    const std::string said = run("hyd_energy");
    EXPECT_NE(said.find("Negative energy dissipation\n"), std::string::npos);
    EXPECT_EQ(said.find("ubar_p"), std::string::npos); // the total is still above 0
    EXPECT_LT(column(3)[0], 0);
}

// --- far field

using test::Body;

RadiatingHull hull_of(const Analysis& s) {
    const HydModel& m = s.model;
    return {{m.panels.area, m.un, m.size.symmetry, m.modesym, {}},
            m.panels.xyzc,
            m.panels.n,
            s.results.potrad,
            m.size.rho,
            m.size.grav};
}
IncomingWave wave_of(double omega, double depth) {
    const double k = waven(omega, depth, 9.80665).k;
    return {omega, k, depth, 0, k * depth > 10};
}

TEST(FarField, haskind_forces_are_those_of_the_diffraction_problem_on_every_mesh) {
    constexpr int count = 5;
    constexpr double omega = 3, depth = 1.5;
    std::vector<Complex8> full;
    for (const int symmetry : {0, 1, 2}) {
        Body body = test::box(1.0, 0.6, 0.5, 5, symmetry);
        body.freq = {omega};
        body.beta.clear();
        for (int m = 0; m < count; ++m)
            body.beta.push_back(2 * std::numbers::pi * m / count);
        const Analysis s = test::solve(body, depth);
        const auto x = haskind_forces(hull_of(s), wave_of(omega, depth), 1, count);
        const auto fi = s.results.fi.slice(1).all(), fd = s.results.fd.slice(1).all();
        double largest = 0;
        for (std::size_t i = 0; i < fi.size(); ++i)
            largest = std::max(largest, std::abs(fi[i] + fd[i]));
        // Two routes to the force: the error of the mesh. One mesh reflected: single precision.
        for (std::size_t i = 0; i < fi.size(); ++i)
            EXPECT_LT(std::abs(x[i] - fi[i] - fd[i]), 0.03 * largest) << symmetry << " " << i;
        if (symmetry == 0) full = x;
        for (std::size_t i = 0; i < x.size(); ++i)
            EXPECT_LT(std::abs(x[i] - full[i]), 1e-4 * largest) << symmetry << " " << i;
    }
}

TEST(FarField, carries_what_the_damping_takes_in_deep_and_shallow_water) {
    constexpr double omega = 3;
    for (const double depth : {1e4, 1.0}) {
        double before = 1;
        for (const int n : {10, 20}) {
            Body body = test::box(1.0, 0.6, 0.5, n, 2);
            body.freq = {omega};
            const Analysis s = test::solve(body, depth);
            const RadiatingHull hull = hull_of(s);
            const IncomingWave wave = wave_of(omega, depth);
            const int headings = heading_count(wave.k, plan_radius(hull));
            const auto energy = [&](int count, std::span<const Complex8> q) {
                const auto x = haskind_forces(hull, wave, 1, count);
                return far_field_energy(hull, wave, {x.data(), 6, count}, q);
            };
            double worst = 0;
            for (int j = 1; j <= 6; ++j) {
                std::array<Complex8, 6> q{};
                q[nth(j)] = {0.6, -0.8};
                const double fluid = omega * std::numbers::pi * s.results.damp(j, j, 1);
                worst = std::max(worst, std::abs(energy(headings, q) / fluid - 1));
            }
            EXPECT_LT(worst, 0.5 * before) << depth << " " << n; // the first power of the panel
            before = worst;
            const std::array<Complex8, 6> q{1, {0, 1}, {1, 1}, 0.5, {0, -0.5}, 0.3};
            EXPECT_NEAR(energy(2 * headings, q) / energy(headings, q), 1, 1e-12);
        }
        EXPECT_LT(before, 0.012) << depth;
    }
}

} // namespace
} // namespace quelor
