#include "hydro_model/waven.hpp"

#include <cmath>

namespace quelor {

namespace {

constexpr int max_rounds = 2000;
constexpr double tolerance = 1e-12;

/// x / cosh^2 x. Beyond x = 40 it is below 1e-32, nothing beside the tanh x = 1 that it is added
/// to; the zero there keeps cosh from overflowing.
double sech2_term(double x) {
    if (x > 40.0) return 0.0;
    const double s = std::cosh(x);
    return x / (s * s);
}

} // namespace

WaveNumber waven(double omega, double depth, double grav) {
    const double knu = omega * omega / grav;
    double k = knu;
    if (!(depth > 0.0) || knu == 0.0) return {k, knu, true};
    for (int i = 1; i <= max_rounds; ++i) {
        const double x = depth * k;
        const double t = std::tanh(x);
        const double f = knu - k * t;
        const double d = f / -(sech2_term(x) + t); // f / f'(k)
        const double knew = k - d;
        k = knew;
        if (std::abs(-d / knew) <= tolerance) return {k, knu, true};
    }
    return {k, knu, false};
}

} // namespace quelor
