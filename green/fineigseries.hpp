// Eigenfunction series of the finite-depth Green function, for R >= h/2.
//
// With a1 = h - d1, a2 = h - d2, the heights above the bottom, B = a1 + a2 and D = d1 - d2,
//   G = 2 pi A (Y0(k0 R) + i J0(k0 R)) + sum over m of c(m)/2 (cos k(m)B + cos k(m)D) K0(k(m) R),
//   A = c0 exp(-k0 (d1 + d2)) (1 + exp(-2 k0 a1)) (1 + exp(-2 k0 a2)).
// The sum is a function of (R, B) plus one of (R, D), and so is every Rankine term; the derivatives
// in d1 and d2 follow from those in B and D.   Source: [John 1950], [Wehausen 1960, eq. 13.19]
#pragma once

#include <algorithm>
#include <cmath>
#include <numbers>

#include "green/bessel_core.hpp"
#include "green/bessel_k.hpp"
#include "green/finred_poly.hpp"
#include "green/vecmath_short.hpp"

namespace quelor {

/// Sum of the evanescent modes at (R, B, D), R >= h/2, all derivatives. The propagating mode is
/// added by the caller, who needs its imaginary part as well.
SeparatedField fineigseries(double R, double B, double D, const DepthCache& cache);

namespace finite_core {

/// Number of modes at R >= h/2: those with k R below 20.5, so that what is left is some 1e-8 of
/// the Rankine gradient. k(m) h >= m pi - (pi - k(1) h); at least 1, at most 13.
QUELOR_INLINE int series_terms(double R, const DepthCache& cache) {
    const double angle = std::numbers::pi - cache.roots.k[0] * cache.h;
    const double terms = (20.5 * cache.h / R + angle) * std::numbers::inv_pi;
    return std::clamp(static_cast<int>(terms), 1, evanescent_modes);
}

/// The point of evaluation with what all modes share.
struct SeriesPoint {
    double R, B, D, inverse, inverse_root; ///< the last two 1/R and R^(-1/2)
};

/// Adds the mode of wave number k and weight c; the table must hold for k R.
template <bool second, int degree>
QUELOR_INLINE void add_mode(const BesselKTable<degree>& table, double k, double half_c,
                            double inverse_root_k, const SeriesPoint& p, SeparatedField& sum) {
    const BesselK scaled = bessel_k_scaled(table, 2.0 * table.start / k * p.inverse - 1.0);
    const double factor = vec_exp_short(-k * p.R) * p.inverse_root * (half_c * inverse_root_k);
    const double k0 = factor * scaled.k0, k1 = k * factor * scaled.k1, kk0 = k * k0;
    const double turn = k * (2.0 * std::numbers::inv_pi);
    const SinCos at_b = vec_sincos_short(turn * p.B), at_d = vec_sincos_short(turn * p.D);
    const double both = at_b.cos + at_d.cos;
    sum.v += k0 * both;
    sum.r -= k1 * both;
    sum.b -= kk0 * at_b.sin;
    sum.d -= kk0 * at_d.sin;
    if constexpr (second) {
        sum.bb -= k * kk0 * at_b.cos;
        sum.dd -= k * kk0 * at_d.cos;
        sum.br += k * k1 * at_b.sin;
        sum.dr += k * k1 * at_d.sin;
    }
}

/// Calls body(table) with the table that serves mode m where R >= h/2: k(m) h > (m - 1/2) pi.
template <class Body> QUELOR_INLINE void with_bessel_table(int m, const Body& body) {
    if (m == 1) return body(bessel_k_1);
    if (m == 2) return body(bessel_k_2);
    if (m == 3) return body(bessel_k_3);
    if (m == 4) return body(bessel_k_4);
    if (m <= 6) return body(bessel_k_5);
    if (m <= 8) return body(bessel_k_6);
    return body(bessel_k_7);
}

/// J0, J1, Y0 and Y1 for 0 < x <= 4, from their forms without logarithm and pole.
QUELOR_INLINE Bessel near_bessel(double x) {
    const double x2 = x * x, twice_log = 2.0 * vec_log(x);
    const SmallBessel small = small_bessel(x2);
    const double j0 = 1.0 - x2 * small.j0_rest, j1 = x * small.j1_by_x;
    return {j0, j1, std::numbers::inv_pi * (small.y0 + twice_log * j0),
            std::numbers::inv_pi * (x * small.y1_by_x + twice_log * j1 - 2.0 / x)};
}

/// The four functions at k0 R, x > 0; J0 and J1 at 0 too.
QUELOR_INLINE Bessel propagating_bessel(double x) {
    if (x < 4.0) return near_bessel(x);
    return x < 10.0 ? large_bessel<deep_tables::HankelNear>(x, 1.0 / x)
                    : large_bessel<deep_tables::HankelFar>(x, 1.0 / x);
}

/// 2 pi times the vertical amplitude A of the propagating wave, and its derivatives in d1 and d2.
struct WaveAmplitude {
    double a, a1, a2, a12;
};

QUELOR_INLINE WaveAmplitude wave_amplitude(double d1, double d2, const DepthCache& cache) {
    const double k0 = cache.roots.k0, h = cache.h;
    const double e1 = vec_exp_short(-2.0 * k0 * (h - d1)), e2 = vec_exp_short(-2.0 * k0 * (h - d2));
    const double w = 2.0 * std::numbers::pi * cache.roots.c0 * vec_exp_short(-k0 * (d1 + d2));
    const double wk = w * k0;
    return {w * (1.0 + e1) * (1.0 + e2), wk * (e1 - 1.0) * (1.0 + e2), wk * (1.0 + e1) * (e2 - 1.0),
            wk * k0 * (e1 - 1.0) * (e2 - 1.0)};
}

/// Adds factor/sqrt(R^2 + D^2) and its derivatives.
template <bool second>
QUELOR_INLINE void add_rankine_d(double factor, double R, double D, SeparatedField& sum) {
    const double inverse2 = 1.0 / (R * R + D * D);
    const double value = factor * std::sqrt(inverse2), cube = value * inverse2;
    sum.v += value;
    sum.r -= R * cube;
    sum.d -= D * cube;
    if constexpr (second) {
        sum.dd += (3.0 * D * D * inverse2 - 1.0) * cube;
        sum.dr += 3.0 * R * D * cube * inverse2;
    }
}

/// Adds factor/sqrt(R^2 + X^2) and its derivatives, X = B (sign 1) or 2 h - B (sign -1).
template <bool second>
QUELOR_INLINE void add_rankine_b(double factor, double R, double X, double sign,
                                 SeparatedField& sum) {
    SeparatedField term;
    add_rankine_d<second>(factor, R, X, term);
    sum.v += term.v;
    sum.r += term.r;
    sum.b += sign * term.d;
    if constexpr (second) {
        sum.bb += term.dd;
        sum.br += sign * term.dr;
    }
}

} // namespace finite_core

} // namespace quelor
