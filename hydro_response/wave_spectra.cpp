#include "hydro_response/wave_spectra.hpp"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>

namespace quelor {

namespace {

constexpr double two_pi = 2 * std::numbers::pi;
constexpr double phillips = 0.0081; ///< Phillips' constant of the saturated range

double fourth(double x) {
    return (x * x) * (x * x);
}

/// A and B of A w^-5 exp(-B w^-4).
struct Exponential {
    double A, B;

    double operator()(double w) const { return A / (fourth(w) * w) * std::exp(-B / fourth(w)); }
};

/// `p` holds the parameters in the order of their rows.
Exponential exponential_of(int type, std::span<const double> p, double g) {
    switch (type) {
    case 1: {
        const double wm4 = fourth(two_pi / p[1]);
        return {0.3125 * wm4 * p[0] * p[0], 1.25 * wm4};
    }
    case 2: {
        const double wv4 = fourth(two_pi / p[1]);
        return {0.11 * wv4 * p[0] * p[0], 0.44 * wv4};
    }
    case 3:
        return {p[4] * g * g, 1.25 * fourth(two_pi / p[0])};
    case 4: {
        const double A = phillips * g * g / fourth(p[1]);
        return {A, 4 * A / (p[0] * p[0])};
    }
    case 5:
        return {phillips * g * g, 0.74 * fourth(g / p[0])};
    default:
        return {phillips * g * g, 0.0324 * (g / p[0]) * (g / p[0])};
    }
}

/// The factor by which the peak stands above the spectrum of a fully developed sea.
double peak_enhancement(std::span<const double> p, double w) {
    const double wm = two_pi / p[0], tao = w > wm ? p[3] : p[2];
    const double t = (w - wm) / (wm * tao);
    return std::pow(p[1], std::exp(-0.5 * t * t));
}

double mitsuyasu(std::span<const double> p, double g, double w) {
    const double Xo = p[0], wo = two_pi / p[2], w5 = fourth(w) * w;
    if (w <= 0.3 * wo) return 0;
    if (w >= wo) return 2.3 * g * g / w5 * std::pow(Xo, -0.308);
    constexpr auto exponent =
        static_cast<double>(0.312F); // single precision is part of the formula
    const double b = std::pow(Xo, exponent) * 22.1 * fourth(two_pi * g / p[1]);
    return 3.55e-9 * g * g / w5 * std::exp(b / fourth(w));
}

} // namespace

void hyd_spectrum(int type, std::span<const double> column, double g, std::span<const double> omega,
                  std::span<double> s) {
    if (!is_spectrum_type(type)) return;
    const auto p = column.subspan(1);
    if (type == 7) {
        std::ranges::transform(omega, s.begin(), [&](double w) { return mitsuyasu(p, g, w); });
        return;
    }
    std::ranges::transform(omega, s.begin(), exponential_of(type, p, g));
    if (type != 3) return;
    for (std::size_t i = 0; i < omega.size(); ++i)
        s[i] *= peak_enhancement(p, omega[i]);
}

double trapezoid(std::span<const double> dx, std::span<const double> y) {
    double sum = 0;
    for (std::size_t i = 1; i < y.size(); ++i)
        sum += (y[i] + y[i - 1]) * dx[i - 1];
    return 0.5 * sum;
}

void frequency_steps(std::span<const double> omega, std::span<double> domega) {
    for (std::size_t i = 1; i < omega.size(); ++i)
        domega[i - 1] = std::abs(omega[i] - omega[i - 1]);
}

bool is_monotone(std::span<const double> list) {
    return std::ranges::is_sorted(list) || std::ranges::is_sorted(list, std::greater{});
}

SpectrumMoments hyd_spectrum_moments(std::span<const double> s, std::span<const double> omega,
                                     std::span<const double> domega, std::span<double> work) {
    SpectrumMoments m{};
    m.m0 = trapezoid(domega, s);
    std::ranges::transform(omega, s, work.begin(), [](double w, double S) { return w * S; });
    m.m1 = trapezoid(domega, work);
    std::ranges::transform(omega, s, work.begin(), [](double w, double S) { return w * w * S; });
    m.m2 = trapezoid(domega, work);
    std::ranges::transform(omega, s, work.begin(), [](double w, double S) { return S / w; });
    m.mm1 = trapezoid(domega, work);
    return m;
}

SeaStatistics sea_statistics(const SpectrumMoments& m) {
    const double rms = std::sqrt(m.m0);
    return {.mean_square = m.m0,
            .rms = rms,
            .average = 1.25 * rms,
            .significant = 2.0 * rms,
            .maximum = maximum_of_thousand * rms,
            .average_period = two_pi * m.m0 / m.m1,
            .energy_period = two_pi * m.mm1 / m.m0,
            .zero_crossing_period = two_pi * std::sqrt(m.m0 / m.m2)};
}

} // namespace quelor
