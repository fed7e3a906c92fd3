#include "hydro_response/far_field.hpp"

#include "hydro_analysis/symmetry.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quelor {

namespace {

/// Class sums over the images of what a wave is on the panels: (np,ns) each.
struct WaveOnHull {
    explicit WaveOnHull(int np, int ns)
        : zeta(as_size(np) * as_size(ns)), slope(zeta.size()), image(as_size(np)) {}

    std::vector<Complex8> zeta;  ///< Zf exp(-i k (x cos beta + y sin beta))
    std::vector<Complex8> slope; ///< -d(phi_I)/dn
    std::vector<Complex8> image; ///< work
};

void evaluate_wave(const RadiatingHull& hull, const IncomingWave& wave, WaveOnHull& w) {
    const int symmetry = hull.modes.symmetry, np = hull.xyzc.rows, ns = image_count(symmetry);
    incoming_potential(wave, symmetry, hull.xyzc, {w.zeta.data(), np, ns});
    std::ranges::fill(w.slope, Complex8(0));
    for (int m = 1; m <= ns; ++m) {
        incoming_normal_velocity(wave, symmetry, m, hull.xyzc, hull.paneln, w.image);
        for (int k = 1; k <= ns; ++k) {
            const auto sum = Matrix<Complex8>{w.slope.data(), np, ns}.col(k);
            const double sign = class_sign(symmetry, k, m);
            for (std::size_t p = 0; p < sum.size(); ++p)
                sum[p] += sign * w.image[p];
        }
    }
}

/// Sum over p of area(p) phi(p) slope(p).
Complex8 scattered_part(std::span<const double> area, std::span<const Complex8> phi,
                        std::span<const Complex8> slope) {
    double re = 0, im = 0;
    for (std::size_t p = 0; p < area.size(); ++p) {
        const double a = phi[p].real(), b = phi[p].imag();
        const double c = slope[p].real(), d = slope[p].imag();
        re += area[p] * (a * c - b * d);
        im += area[p] * (a * d + b * c);
    }
    return {re, im};
}

} // namespace

double group_velocity(double omega, double k, double depth) {
    const double x = 2 * k * depth;
    // Beyond 80 x/sinh x is nothing beside 1, and sinh would overflow.
    const double shallow = x > 80 || depth <= 0 ? 0 : x / std::sinh(x);
    return omega / (2 * k) * (1 + shallow);
}

int heading_count(double k, double radius) {
    return 2 * static_cast<int>(std::ceil(1.2 * k * radius + 20)) + 1;
}

double plan_radius(const RadiatingHull& hull) {
    const auto half_width = [&](int axis, bool mirrored) {
        const auto [low, high] = std::ranges::minmax(hull.xyzc.col(axis));
        return mirrored ? std::max(std::abs(low), std::abs(high)) : (high - low) / 2;
    };
    return std::hypot(half_width(1, hull.modes.symmetry == 2),
                      half_width(2, hull.modes.symmetry != 0));
}

std::vector<Complex8> haskind_forces(const RadiatingHull& hull, IncomingWave wave, int ifreq,
                                     int count) {
    const PanelModes& modes = hull.modes;
    const int np = hull.xyzc.rows, ns = image_count(modes.symmetry), nmode = modes.un.rows;
    WaveOnHull w(np, ns);
    std::vector<std::span<const Complex8>> zeta;
    for (int k = 1; k <= ns; ++k)
        zeta.push_back(Matrix<const Complex8>{w.zeta.data(), np, ns}.col(k));
    std::vector<Complex8> forces(as_size(nmode) * as_size(count));
    for (int m = 1; m <= count; ++m) {
        wave.beta = 2 * std::numbers::pi * (m - 1) / count;
        evaluate_wave(hull, wave, w);
        const auto x = Matrix<Complex8>{forces.data(), nmode, count}.col(m);
        generalised_force(modes, zeta, hull.rho * hull.g, x);
        for (int j = 1; j <= nmode; ++j) {
            const std::span phi(&hull.potrad(1, ifreq, j), as_size(np)); // of the first image
            const auto slope =
                Matrix<const Complex8>{w.slope.data(), np, ns}.col(modes.class_of(j));
            x[nth(j)] -= hull.rho * scattered_part(modes.area, phi, slope);
        }
    }
    return forces;
}

double far_field_energy(const RadiatingHull& hull, const IncomingWave& wave,
                        Matrix<const Complex8> x, std::span<const Complex8> q) {
    double sum = 0;
    for (int m = 1; m <= x.cols; ++m) {
        Complex8 force = 0;
        for (int j = 1; j <= x.rows; ++j)
            force += x(j, m) * q[nth(j)];
        sum += std::norm(force);
    }
    const double integral = 2 * std::numbers::pi * sum / x.cols;
    return wave.omega * wave.k * integral /
           (8 * hull.rho * hull.g * group_velocity(wave.omega, wave.k, wave.depth));
}

} // namespace quelor
