#include "hydro_analysis/incoming_wave.hpp"

#include "hydro_analysis/symmetry.hpp"

#include <cmath>

namespace quelor {

double depth_decay(const IncomingWave& wave, double z) {
    if (wave.deep) return std::exp(wave.k * z);
    // cosh a / cosh b = exp(a - b) (1 + exp(-2a)) / (1 + exp(-2b))
    const double a = wave.k * (z + wave.depth), b = wave.k * wave.depth;
    return std::exp(a - b) * (1 + std::exp(-2 * a)) / (1 + std::exp(-2 * b));
}

namespace {

/// A = cosh(k (z + depth)) / sinh(k depth), B = sinh(k (z + depth)) / sinh(k depth); deep: exp(k
/// z).
struct VelocityDecay {
    double A, B;
};
VelocityDecay velocity_decay(const IncomingWave& wave, double z) {
    if (wave.deep) {
        const double e = std::exp(wave.k * z);
        return {e, e};
    }
    const double a = wave.k * (z + wave.depth), b = wave.k * wave.depth;
    const double ratio = std::exp(a - b) / -std::expm1(-2 * b);
    return {ratio * (1 + std::exp(-2 * a)), ratio * -std::expm1(-2 * a)};
}

/// Class factor of one coordinate: 2 cos for the even part, -2i sin for the odd part.
Complex8 parity_factor(bool odd, double phase) {
    return odd ? Complex8(0, -2 * std::sin(phase)) : Complex8(2 * std::cos(phase), 0);
}

} // namespace

void incoming_potential(const IncomingWave& wave, int symmetry, Matrix<const double> xyzc,
                        Matrix<Complex8> pic) {
    const double kc = wave.k * std::cos(wave.beta), ks = wave.k * std::sin(wave.beta);
    for (int p = 1; p <= xyzc.rows; ++p) {
        const double x = xyzc(p, 1), y = xyzc(p, 2);
        const double Zf = depth_decay(wave, xyzc(p, 3));
        if (symmetry == 0) {
            pic(p, 1) = std::polar(Zf, -(kc * x + ks * y));
            continue;
        }
        for (int k = 1; k <= image_count(symmetry); ++k) {
            const bool odd_y = class_sign(symmetry, k, image_count(symmetry)) < 0;
            const Complex8 in_y = parity_factor(odd_y, ks * y);
            const Complex8 in_x = symmetry == 1 ? std::polar(1.0, -kc * x)
                                                : parity_factor(class_sign(2, k, 2) < 0, kc * x);
            pic(p, k) = Zf * (in_x * in_y);
        }
    }
}

void incoming_normal_velocity(const IncomingWave& wave, int symmetry, int m,
                              Matrix<const double> xyzc, Matrix<const double> n,
                              std::span<Complex8> h) {
    const double c = std::cos(wave.beta), s = std::sin(wave.beta);
    const auto [sign_x, sign_y] = reflection_of(symmetry, m);
    for (int p = 1; p <= xyzc.rows; ++p) {
        const double x = sign_x * xyzc(p, 1), y = sign_y * xyzc(p, 2);
        const double nx = sign_x * n(1, p), ny = sign_y * n(2, p);
        const auto [A, B] = velocity_decay(wave, xyzc(p, 3));
        const Complex8 e = std::polar(1.0, -wave.k * (x * c + y * s));
        h[nth(p)] = -wave.omega * Complex8((nx * c + ny * s) * A, n(3, p) * B) * e;
    }
}

std::array<Complex8, 3> incoming_velocity(const IncomingWave& wave, double grav, const Vec3& x) {
    const double c = std::cos(wave.beta), s = std::sin(wave.beta);
    const double Zf = depth_decay(wave, x[2]);
    // Zf' = k Zf tanh(k (z + depth)), in deep water k Zf
    const double slope = wave.deep ? Zf : Zf * std::tanh(wave.k * (x[2] + wave.depth));
    const Complex8 e = std::polar(grav * wave.k / wave.omega, -wave.k * (x[0] * c + x[1] * s));
    return {c * Zf * e, s * Zf * e, Complex8(-e.imag(), e.real()) * slope};
}

} // namespace quelor
