// K0 and K1 of every positive argument: the ascending series below the first table's start, the
// table above it.
#include "green/bessel_k.hpp"

#include <cmath>
#include <limits>
#include <numbers>

namespace quelor {

namespace {

constexpr int series_terms = 8; // (x/2)^2 < 0.141: the ninth term is below 1e-17

/// Source: [Abramowitz 1964, eq. 9.6.13 and 9.6.11]
BesselK ascending_series(double x) {
    const double q = 0.25 * x * x, lambda = std::log(0.5 * x) + std::numbers::egamma;
    double power = 1.0, harmonic = 0.0; // q^n/(n!)^2 and 1 + 1/2 + ... + 1/n
    double k0 = 0.0, k1 = 0.0;
    for (int n = 0; n < series_terms; ++n) {
        k0 += power * (harmonic - lambda);
        k1 += power / (n + 1) * (lambda - harmonic - 0.5 / (n + 1));
        harmonic += 1.0 / (n + 1);
        power *= q / ((n + 1.0) * (n + 1.0));
    }
    return {k0, 1.0 / x + 0.5 * x * k1};
}

BesselK bessel_k(double x) {
    if (x == 0.0) {
        return {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity()};
    }
    if (x < bessel_k_1.start) return ascending_series(x);
    const BesselK scaled = bessel_k_scaled(bessel_k_1, 2.0 * bessel_k_1.start / x - 1.0);
    const double factor = std::exp(-x) / std::sqrt(x);
    return {scaled.k0 * factor, scaled.k1 * factor};
}

} // namespace

double k0p(double x) {
    return bessel_k(x).k0;
}

double k1p(double x) {
    return bessel_k(x).k1;
}

} // namespace quelor
