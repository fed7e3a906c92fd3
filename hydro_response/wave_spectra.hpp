// One-sided wave spectra S of the circular frequency w, and their moments by the trapezoidal rule.
// Numeric kernels. Every spectrum but the last is built on  S(w) = A w^-5 exp(-B w^-4).
//
// Source: [Bretschneider 1959] (types 1, 2, 4), [Hasselmann 1973] (3), [Pierson 1964] (5, 6),
// [Mitsuyasu 1968] (7).
#pragma once

#include "numeric/types.hpp"

#include <array>
#include <string_view>

namespace quelor {

/// The types, by their codes 1 to 7, and the parameters in rows 2 to 6 of a column that holds the
/// code in row 1. Lengths and times in the user's units; g is the acceleration of gravity.
///   1 Bretschneider  Hs, To       wm = 2 pi/To:  A = 0.3125 wm^4 Hs^2,  B = 1.25 wm^4
///   2 ISSC           Hs, Tv       wv = 2 pi/Tv:  A = 0.11 wv^4 Hs^2,    B = 0.44 wv^4
///   3 JONSWAP        To, gamma, tao_a, tao_b, alpha:  A = alpha g^2,  B = 1.25 wm^4, times
///   gamma^E,
///                    E = exp(-((w - wm)/(wm tao))^2/2), tao = tao_a up to wm, tao_b above
///   4 ITTC           Hs, k        A = 0.0081 g^2/k^4,   B = 4 A/Hs^2
///   5 P-M-Wind       U            A = 0.0081 g^2,       B = 0.74 (g/U)^4
///   6 P-M-Hs         Hs           A = 0.0081 g^2,       B = 0.0324 (g/Hs)^2
///   7 Mitsuyasu      Xo, U*, To   wo = 2 pi/To:  0 up to 0.3 wo,
///                    3.55e-9 g^2 w^-5 exp(+b w^-4) below wo, b = 22.1 Xo^0.312 (2 pi g/U*)^4,
///                    2.3 g^2 w^-5 Xo^-0.308 from wo on
/// The exponential of type 7 grows towards low frequencies: with parameters of a real sea it is
/// infinite below wo.
inline constexpr std::array<std::string_view, 7> spectrum_names = {
    "Bretschneider", "ISSC", "JONSWAP", "ITTC", "P-M-Wind", "P-M-Hs", "Mitsuyasu"};
inline constexpr int spectrum_rows = 6;

constexpr bool is_spectrum_type(int type) {
    return 1 <= type && type <= static_cast<int>(spectrum_names.size());
}
/// Types 1 and 2 take their size from the wave height and period alone.
constexpr bool needs_gravity(int type) {
    return is_spectrum_type(type) && type >= 3;
}

/// S at the frequencies omega, rad/s; nothing for a type that is none of the seven.
/// column  in   six values: code and parameters
/// s       out  as many values as omega has
/// Zero parameters give what the arithmetic gives: zero, infinity or not-a-number.
void hyd_spectrum(int type, std::span<const double> column, double g, std::span<const double> omega,
                  std::span<double> s);

/// 0.5 * sum over i = 1..n-1 of (y(i+1) + y(i)) dx(i); 0 for n below 2.
/// dx  in  at least n - 1 steps;  y  in  n values
double trapezoid(std::span<const double> dx, std::span<const double> y);

/// domega(i) = |omega(i+1) - omega(i)|; the last value of the n is not set.
void frequency_steps(std::span<const double> omega, std::span<double> domega);
/// Whether a list rises or falls throughout; equal neighbours do no harm.
bool is_monotone(std::span<const double> list);

/// Integrals of S, w S, w^2 S and S/w.
struct SpectrumMoments {
    double m0, m1, m2, mm1;
};
/// work  out  n values
SpectrumMoments hyd_spectrum_moments(std::span<const double> s, std::span<const double> omega,
                                     std::span<const double> domega, std::span<double> work);

/// Short-term statistics of a narrow-banded Gaussian process of this spectrum: amplitudes in parts
/// of the root mean square, periods in seconds.   Source: [Newman 1977, sec. 6.20]
struct SeaStatistics {
    double mean_square, rms, average, significant, maximum;
    double average_period, energy_period, zero_crossing_period;
};
SeaStatistics sea_statistics(const SpectrumMoments& m);

/// The most probable maximum of a thousand amplitudes over the root mean square, (2 ln 1000)^1/2.
inline constexpr double maximum_of_thousand = 3.72;

} // namespace quelor
