// The hydrodynamic analysis against published results and against what potential theory demands.
#include "tests/support/bodies.hpp"

#include <gtest/gtest.h>

namespace quelor::test {
namespace {

constexpr double g = 9.80665, rho = 1025.0, pi = std::numbers::pi, deep = 1e5;

double frequency(double ka, double a) {
    return std::sqrt(ka * g / a);
}

/// Added mass and damping of a mode over rho V and rho V omega.
struct Coefficients {
    double a, b;
};
Coefficients heave(const Analysis& s, int ifreq, double omega, double volume) {
    return {s.results.addm(3, 3, ifreq) / (rho * volume),
            s.results.damp(3, 3, ifreq) / (rho * volume * omega)};
}

double largest(std::span<const double> v) {
    double m = 0;
    for (const double x : v)
        m = std::max(m, std::abs(x));
    return m;
}

/// Largest |m(i,j) - m(j,i)| over the largest entry.
double asymmetry(Matrix<const double> m) {
    double worst = 0;
    for (int i = 1; i <= m.rows; ++i)
        for (int j = 1; j < i; ++j)
            worst = std::max(worst, std::abs(m(i, j) - m(j, i)));
    return worst / largest(m.all());
}

// Hulme (1982), heave of a floating hemisphere in deep water: K a, A/(rho V), B/(rho V omega).
constexpr double hulme[][3] = {{0.1, 0.8627, 0.1816}, {0.2, 0.7938, 0.2793}, {0.5, 0.5861, 0.3391},
                               {1.0, 0.4284, 0.2484}, {2.0, 0.3884, 0.1031}, {3.0, 0.4111, 0.0452}};

/// Largest error of heave over the published frequencies: relative added mass, absolute damping.
Coefficients heave_error(int rows, int columns) {
    Body body = hemisphere(1.0, rows, columns, 2);
    body.freq.clear();
    for (const auto& row : hulme)
        body.freq.push_back(frequency(row[0], 1.0));
    const Analysis s = solve(body, deep);
    Coefficients worst{0, 0};
    for (int i = 0; i < 6; ++i) {
        const auto c = heave(s, i + 1, body.freq[static_cast<std::size_t>(i)], 2 * pi / 3);
        worst.a = std::max(worst.a, std::abs(c.a / hulme[i][1] - 1));
        worst.b = std::max(worst.b, std::abs(c.b - hulme[i][2]));
    }
    return worst;
}

// Constant sources on flat panels leave an error of the first power of the panel size.
TEST(Hemisphere, heave_is_near_the_published_coefficients) {
    const Coefficients thousand = heave_error(36, 7), four_thousand = heave_error(72, 14);
    EXPECT_LT(thousand.a, 0.02);
    EXPECT_LT(thousand.b, 0.01);
    EXPECT_LT(four_thousand.a, 0.01);
    EXPECT_LT(four_thousand.b, 0.01);
}

TEST(Hemisphere, heave_converges_in_the_first_power_of_the_panel_size) {
    const Coefficients coarse = heave_error(8, 8), medium = heave_error(16, 16),
                       fine = heave_error(32, 32);
    EXPECT_LT(medium.a, 0.6 * coarse.a);
    EXPECT_LT(fine.a, 0.6 * medium.a);
    EXPECT_LT(medium.b, 0.6 * coarse.b);
    EXPECT_LT(fine.b, 0.6 * medium.b);
}

TEST(Symmetry, full_half_and_quarter_meshes_agree) {
    // One mesh, reflected: only the single precision of the matrices separates the three.
    for (const double depth : {deep, 1.5}) {
        std::vector<double> addm, damp;
        std::vector<Complex8> force, potential;
        for (const int symmetry : {0, 1, 2}) {
            Body body = box(1.0, 0.6, 0.5, 5, symmetry);
            body.freq = {frequency(0.8, 1.0)};
            body.beta = {0.7};
            const Analysis s = solve(body, depth);
            const auto a = s.results.addm.slice(1).all(), b = s.results.damp.slice(1).all();
            const auto fi = s.results.fi.slice(1).all(), fd = s.results.fd.slice(1).all();
            if (symmetry == 0) {
                addm.assign(a.begin(), a.end());
                damp.assign(b.begin(), b.end());
                for (std::size_t i = 0; i < fi.size(); ++i)
                    force.push_back(fi[i] + fd[i]);
                continue;
            }
            for (std::size_t i = 0; i < a.size(); ++i) {
                EXPECT_NEAR(a[i], addm[i], 1e-4 * largest(addm)) << symmetry << " " << i;
                EXPECT_NEAR(b[i], damp[i], 1e-4 * largest(damp)) << symmetry << " " << i;
            }
            for (std::size_t i = 0; i < fi.size(); ++i)
                EXPECT_LT(std::abs(fi[i] + fd[i] - force[i]), 1e-4 * std::abs(force[2])) << i;
        }
    }
}

TEST(Symmetry, potentials_of_the_images_are_those_of_the_full_mesh) {
    const auto sum_over_panels = [](const Analysis& s, int mode) {
        // Force on the full panel set from the stored potentials: -rho omega^2 A + i rho omega B.
        const int np = s.model.size.np;
        Complex8 f = 0;
        for (int m = 1; m <= image_count(s.model.size.symmetry); ++m)
            for (int p = 1; p <= np; ++p) {
                const int k = s.model.size.symmetry == 0
                                  ? 1
                                  : s.model.modesym[static_cast<std::size_t>(mode - 1)];
                f += class_sign(s.model.size.symmetry, k, m) *
                     s.model.panels.area[static_cast<std::size_t>(p - 1)] * s.model.un(mode, p) *
                     s.results.potrad(p + (m - 1) * np, 1, mode);
            }
        return f;
    };
    for (const int symmetry : {0, 1, 2}) {
        Body body = box(1.0, 0.6, 0.5, 4, symmetry);
        const double omega = body.freq[0] = frequency(1.2, 1.0);
        const Analysis s = solve(body, deep);
        for (int mode = 1; mode <= 6; ++mode) {
            const Complex8 expected(s.results.damp(mode, mode, 1) / rho,
                                    omega * s.results.addm(mode, mode, 1) / rho);
            EXPECT_LT(std::abs(sum_over_panels(s, mode) - expected), 1e-9 * std::abs(expected))
                << symmetry << mode;
        }
        // A point of the water line has |phi_I| near g / omega times the decay to its centroid.
        const double K = omega * omega / g;
        const double z = s.model.panels.xyzc(1, 3);
        EXPECT_NEAR(std::abs(s.results.potincm(1, 1, 1)), g / omega * std::exp(K * z), 1e-10);
    }
}

TEST(Energy, haskind_ties_exciting_force_to_damping) {
    // B33 = K omega |X3|^2 / (2 rho g^2) for an axisymmetric body in deep water [Newman
    // 1977, 6.174]. Both sides carry the discretisation error of the mesh, 1 % at 1,000 panels.
    Body body = hemisphere(1.0, 25, 10, 2);
    body.freq = {frequency(0.5, 1.0), frequency(1.5, 1.0)};
    const Analysis s = solve(body, deep);
    for (int i = 1; i <= 2; ++i) {
        const double omega = body.freq[static_cast<std::size_t>(i - 1)], K = omega * omega / g;
        const double X = std::abs(s.results.fi(3, 1, i) + s.results.fd(3, 1, i));
        const double B = s.results.damp(3, 3, i);
        EXPECT_NEAR(K * omega * X * X / (2 * rho * g * g), B, 0.02 * B) << i;
    }
}

TEST(Energy, the_two_routes_to_the_exciting_force_agree) {
    // X_j = -i omega rho sum (phi_I un_j - psi_j d phi_I / dn) area, psi_j for unit normal
    // velocity. The two differ by the discretisation error, which falls with the mesh.
    double before = 1;
    for (const int n : {4, 8}) {
        Body body = box(1.0, 0.6, 0.5, n, 0);
        body.beta = {0.6};
        const double omega = body.freq[0] = frequency(1.0, 1.0);
        const double depth = 2.0;
        const Analysis s = solve(body, depth);
        const WaveNumber w = waven(omega, depth, g);
        std::vector<Complex8> h(s.model.panels.area.size());
        incoming_normal_velocity({omega, w.k, depth, body.beta[0], false}, 0, 1,
                                 s.model.panels.xyzc, s.model.panels.n, h);
        double worst = 0, scale = 0;
        for (int j = 1; j <= 6; ++j) {
            Complex8 X = 0;
            for (int p = 1; p <= s.model.size.np; ++p) {
                const auto at = static_cast<std::size_t>(p - 1);
                const Complex8 psi = s.results.potrad(p, 1, j) / Complex8(0, omega);
                X += s.model.panels.area[at] *
                     (s.results.potincm(p, 1, 1) * s.model.un(j, p) + psi * h[at]);
            }
            X *= Complex8(0, -omega * rho);
            const Complex8 direct = s.results.fi(j, 1, 1) + s.results.fd(j, 1, 1);
            scale = std::max(scale, std::abs(direct));
            worst = std::max(worst, std::abs(X - direct));
        }
        EXPECT_LT(worst / scale, 0.02) << n;
        EXPECT_LT(worst / scale, 0.8 * before) << n;
        before = worst / scale;
    }
}

TEST(Reciprocity, asymmetry_of_the_coefficients_falls_with_the_mesh) {
    double before_a = 1, before_b = 1;
    for (const int n : {5, 10, 20}) {
        Body body = box(1.0, 0.6, 0.6, n, 2);
        body.freq = {frequency(0.8, 1.0)};
        const Analysis s = solve(body, 1.5);
        const double a = asymmetry(s.results.addm.slice(1)), b = asymmetry(s.results.damp.slice(1));
        EXPECT_LT(a, 0.8 * before_a) << n;
        EXPECT_LT(b, 0.8 * before_b) << n;
        before_a = a;
        before_b = b;
    }
    EXPECT_LT(before_a, 0.01);
    EXPECT_LT(before_b, 0.01);
}

TEST(Limits, far_apart_two_bodies_are_one_alone) {
    // What one body radiates reaches the other with an amplitude of order 1/sqrt(K R) and returns
    // with the same loss: the change of the own coefficients is of order B/(K R).
    const double ka = 2.0, apart = 5000;
    Body alone = hemisphere(1.0, 5, 20, 0);
    alone.freq = {frequency(ka, 1.0)};
    const Analysis one = solve(alone, deep);
    const auto single = heave(one, 1, alone.freq[0], 1.0);
    Body pair = hemisphere(1.0, 5, 20, 0);
    pair.origins.push_back({apart, 0, 0});
    pair.add(hemisphere_panels(1.0, 5, 20, 0, apart), 1);
    pair.freq = alone.freq;
    const Analysis two = solve(pair, deep);
    const auto first = heave(two, 1, pair.freq[0], 1.0);
    const double bound = 10 * single.b / (ka * apart);
    EXPECT_NEAR(first.a, single.a, bound);
    EXPECT_NEAR(first.b, single.b, bound);
    EXPECT_LT(std::abs(two.results.addm(3, 9, 1)), two.results.addm(3, 3, 1) * 0.05);
}

TEST(Limits, finite_depth_tends_to_deep_water) {
    // At k h = 9.9 the finite-depth function is used; it differs from deep water by exp(-2 k h).
    Body body = hemisphere(1.0, 8, 8, 2);
    body.freq = {frequency(1.0, 1.0)};
    body.beta = {0.3};
    const Analysis finite = solve(body, 9.9);
    const auto a = heave(finite, 1, body.freq[0], 1.0);
    const Complex8 fa = finite.results.fi(3, 1, 1) + finite.results.fd(3, 1, 1);
    const Analysis infinite = solve(body, 1000.0);
    const auto b = heave(infinite, 1, body.freq[0], 1.0);
    const Complex8 fb = infinite.results.fi(3, 1, 1) + infinite.results.fd(3, 1, 1);
    // The image 2 h below remains: its added mass is of order (a / 2h)^3.
    EXPECT_NEAR(a.a, b.a, 2e-3 * b.a);
    EXPECT_NEAR(a.b, b.b, 2e-3 * b.b);
    EXPECT_LT(std::abs(fa - fb), 2e-3 * std::abs(fb));
}

} // namespace
} // namespace quelor::test
