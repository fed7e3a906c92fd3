// The wave remainder of finite depth from its defining integral, apart from the kernels' own
// methods:
//     W = PV int_0^inf f(k) J0(k R) dk - i pi res J0(k0 R),
//     f = {(k + 1) [e(2h - D) + e(2h + D) + e(4h - Z) + e(2h + Z)] + 2 e(Z)}/n(k), e(x) = exp(-k
//     x), n = (k - 1) - (k + 1) exp(-2kh), D = d1 - d2, Z = d1 + d2, res the residue of f at k0,
// which is the integral of John (1950) and of Wehausen and Laitone (1960, eq. 13.18) with 1/r1
// taken out. J0 is the real part of H0(1), and the path is turned to the ray of 45 degrees, away
// from the poles on both axes: PV = Re(int over the ray) - pi res Y0(k0 R). With k = exp(x + i
// pi/4) the trapezoidal rule of step 1/8 errs by exp(-2 pi (pi/4) 8) = 1e-17 of the largest
// integrand.
#pragma once

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>

namespace finite_quadrature {

using Complex = std::complex<double>;
constexpr double pi = std::numbers::pi;

struct Hankel {
    Complex h0, h1;
};

/// Ascending series, |z| <= 2.
inline Hankel hankel_series(Complex z) {
    const Complex q = -z * z / 4.0, i(0.0, 1.0);
    Complex power = 1.0, j0, j1, sum0, sum1; // power = q^n/(n!)^2
    double harmonic = 0.0;
    for (int n = 0; n < 16; ++n) {
        j0 += power;
        sum0 += power * harmonic;
        j1 += power / (n + 1.0);
        sum1 += power / (n + 1.0) * (2.0 * harmonic + 1.0 / (n + 1));
        harmonic += 1.0 / (n + 1);
        power *= q / ((n + 1.0) * (n + 1.0));
    }
    const Complex log_term = std::log(z / 2.0) + std::numbers::egamma;
    const Complex y0 = 2.0 / pi * (log_term * j0 - sum0);
    const Complex y1 = -2.0 / (pi * z) + z / pi * (log_term * j1 - 0.5 * sum1);
    return {j0 + i * y0, z / 2.0 * j1 + i * y1};
}

/// H0(1) = 2/(pi i) int_0^inf exp(i z cosh u) du and H1(1), its derivative reversed, by the
/// trapezoidal rule; arg z = pi/4.
inline Hankel hankel_integral(Complex z) {
    const Complex i(0.0, 1.0);
    constexpr double step = 0.1;
    Hankel sum{};
    for (int n = 0; z.imag() * (std::cosh(n * step) - 1.0) < 40.0; ++n) {
        const Complex term = (n == 0 ? 0.5 : 1.0) * std::exp(i * z * std::cosh(n * step));
        sum.h0 += term;
        sum.h1 += std::cosh(n * step) * term;
    }
    return {sum.h0 * step * 2.0 / (pi * i), sum.h1 * step * -2.0 / pi};
}

/// f and its derivatives in d1 and d2 times n(k).
struct Numerator {
    Complex v, d1, d2;
};
inline Numerator numerator(Complex k, double h, double d1, double d2) {
    const double D = d1 - d2, Z = d1 + d2;
    const Complex up = (k + 1.0) * std::exp(-k * (2 * h - D)),
                  down = (k + 1.0) * std::exp(-k * (2 * h + D));
    const Complex rise = (k + 1.0) * std::exp(-k * (4 * h - Z));
    const Complex fall = (k + 1.0) * std::exp(-k * (2 * h + Z)) + 2.0 * std::exp(-k * Z);
    return {up + down + rise + fall, k * (up - down + rise - fall), k * (down - up + rise - fall)};
}

inline Complex denominator(Complex k, double h) {
    const Complex E = std::exp(-2.0 * k * h);
    const Complex rise = k.real() * h < 1.0 ? 2.0 * std::exp(-k * h) * std::sinh(k * h) : 1.0 - E;
    return k * rise - (1.0 + E);
}

/// k0 tanh(k0 h) = 1 by bisection.
inline double wave_number(double h) {
    double low = 1.0, high = 1.0 + 1.0 / h + 1.0 / std::sqrt(h);
    for (int round = 0; round < 200; ++round) {
        const double k = 0.5 * (low + high);
        (k * std::tanh(k * h) < 1.0 ? low : high) = k;
    }
    return 0.5 * (low + high);
}

/// The remainder and its derivatives in R, d1 and d2.
struct Remainder {
    Complex v, r, d1, d2;
};

/// For R > 0 and 0 <= d <= h.
inline Remainder finite_remainder(double R, double d1, double d2, double h) {
    const Complex turn = std::polar(1.0, pi / 4);
    const double k0 = wave_number(h), shortest = R + d1 + d2;
    const double last = std::log(60.0 / shortest);
    const double first = std::min(last, std::log(std::min({1.0, 1.0 / h, 1.0 / R}))) - 40.0;
    Remainder sum{};
    constexpr double step = 0.125;
    for (double x = first; x < last; x += step) {
        const Complex k = std::exp(x) * turn, z = k * R, weight = step * k / denominator(k, h);
        const Hankel H = std::abs(z) < 2.0 ? hankel_series(z) : hankel_integral(z);
        const Numerator f = numerator(k, h, d1, d2);
        sum.v += (weight * f.v * H.h0).real();
        sum.r -= (weight * k * f.v * H.h1).real();
        sum.d1 += (weight * f.d1 * H.h0).real();
        sum.d2 += (weight * f.d2 * H.h0).real();
    }
    const double E = std::exp(-2.0 * k0 * h);
    const Numerator f = numerator(k0, h, d1, d2);
    const double residue = 1.0 / (1.0 - E + 2.0 * h * (k0 + 1.0) * E);
    const Complex wave0 = -pi * residue * Complex(::y0(k0 * R), ::j0(k0 * R));
    const Complex wave1 = pi * residue * k0 * Complex(::y1(k0 * R), ::j1(k0 * R));
    return {sum.v + f.v * wave0, sum.r + f.v * wave1, sum.d1 + f.d1 * wave0, sum.d2 + f.d2 * wave0};
}

} // namespace finite_quadrature
