// Newton iterations for the roots of the dispersion relation.
#include "green/eigwno.hpp"

#include "numeric/index.hpp"

#include <cmath>
#include <cstddef>
#include <numbers>

namespace quelor {

namespace {

constexpr int most_rounds = 100;
constexpr double root_tolerance = 1e-14; // of the last correction; the error left is its square

/// First guess of x tanh x = H, within 0.2 % for every H.   Source: [Hunt 1979]
double first_wave_number(double H) {
    const double p =
        (((((0.0065407983 * H + 0.0217540484) * H + 0.0632098765) * H + 0.1608465608) * H +
          0.3555555556) *
             H +
         0.6666666667) *
            H +
        1.0;
    return std::sqrt(H / p + H * H);
}

/// Newton on x tanh x - H. False after too many rounds.
bool solve_wave_number(double H, double& x) {
    x = first_wave_number(H);
    for (int round = 0; round < most_rounds; ++round) {
        const double t = std::tanh(x);
        const double correction = (x * t - H) / ((1.0 - t * t) * x + t);
        x -= correction;
        if (std::abs(correction) <= root_tolerance * x) return true;
    }
    return false;
}

/// Newton on x = atan(H/y), y = m pi - x: the equation y tan x = H in a form whose slope stays
/// between 0 and 2, so that it converges for every H. x is the start on entry, the root on exit.
bool solve_evanescent(double H, int m, double& x) {
    for (int round = 0; round < most_rounds; ++round) {
        const double y = m * std::numbers::pi - x;
        const double correction = (x - std::atan2(H, y)) / (1.0 - H / (y * y + H * H));
        x -= correction;
        if (std::abs(correction) <= root_tolerance * y) return true;
    }
    return false;
}

} // namespace

RootStatus eigwno(double H, WaveRoots& roots) {
    constexpr double pi = std::numbers::pi;
    if (!solve_wave_number(H, roots.x0)) return RootStatus::no_wave_number;
    roots.k0 = roots.x0 / H;
    const double E = roots.x0 > 30.0 ? 0.0 : std::exp(-2.0 * roots.x0);
    const double rise = roots.x0 > 30.0 ? 1.0 : -std::expm1(-2.0 * roots.x0); // 1 - E
    roots.c0 = -(roots.k0 + 1.0) * rise / (rise * rise + 4.0 * H * E) / 2.0;

    double x = std::atan(H * 1.3333333333 / pi);
    for (int m = 1; m <= evanescent_modes; ++m) {
        if (!solve_evanescent(H, m, x)) return RootStatus::no_evanescent_mode;
        const auto i = nth(m);
        const double y = m * pi - x;
        roots.k[i] = y / H;
        roots.c[i] = 4.0 * (y * y + H * H) / (H * (y * y + H * H - H));
        const double t = std::tan(x);
        x -= t * pi / (H * t + (y - t) + pi); // start of the next mode
    }
    return RootStatus::found;
}

} // namespace quelor
