// Everything of the finite-depth Green function that depends on the depth alone, and the smooth
// part of the form for small distances.
//
// With B = 2 h - d1 - d2 (sum of the heights above the bottom) and D = d1 - d2, the remainder is
// F(R, Z) of deep water plus p(R, D) + q(R, B), two harmonic functions:
//   p = PV int 2 (k+1) exp(-2kh) cosh(kD)/n(k) J0(kR) dk,  n(k) = (k - 1) - (k + 1) exp(-2kh),
//   q = PV int (k+1) exp(-2kh) [(k+1) exp(-2kh+kB) + (k-1) exp(-kB)]/((k - 1) n(k)) J0(kR) dk.
// They hold the deep-water images at the depths 2h - D, 2h + D and 2h + B and all later ones. None
// of these comes nearer than h, so for R < h/2 the functions are polynomials to 1e-8: p in (D/h)^2
// and (R/h)^2, q in B/h - 1 and (R/h)^2.   Source: [John 1950], [Newman 1985]
#pragma once

#include <array>
#include <utility>

#include "green/eigwno.hpp"
#include "numeric/vecmath.hpp"

namespace quelor {

/// Degree in (R/h)^2 of the coefficient of each power of the vertical variable. Chosen so that the
/// terms dropped change neither value nor gradient by 1e-8 of 1/h and 1/h^2, 0.002 <= h <= 20.
inline constexpr std::array p_degrees{8, 8, 8, 8, 7, 7, 6, 6, 5, 4, 2};
inline constexpr std::array q_degrees{5, 5, 5, 5, 5, 5, 5, 5, 4, 4, 4, 3, 3, 2, 2, 1};

/// What one depth needs. Made by prepare_depth, read by the kernels.
struct DepthCache {
    double h = 0.0; ///< depth times omega^2/g; 0 while empty
    RootStatus status = RootStatus::found;
    WaveRoots roots;
    double p[p_degrees.size()][p_degrees[0] + 1] = {}; ///< h p = sum of p[i][j] (D/h)^2i (R/h)^2j
    double q[q_degrees.size()][q_degrees[0] + 1] = {}; ///< h q = sum of q[i][j] (B/h-1)^i (R/h)^2j
};

/// Roots, weights and polynomials for 1e-8 <= h <= 1e8; about 5 ms. When a root is not found the
/// status says which and nothing else is filled.
DepthCache prepare_depth(double h);

/// The polynomials of prepare_depth: 159 coefficients by quadrature of the two integrals.
void finred_poly(double h, DepthCache& cache);

/// b(R, B) + d(R, D): value and derivatives; the second ones are filled with `second` only.
struct SeparatedField {
    double v = 0, r = 0, b = 0, d = 0;
    double bb = 0, dd = 0, br = 0, dr = 0;
};

/// Value and derivatives of a double polynomial in a vertical variable x and t = (R/h)^2.
struct BivariateValue {
    double v = 0, x = 0, t = 0;
    double half_xx = 0, xt = 0; ///< filled with `second` only
};

namespace finite_core {

/// One Horner step in x; the coefficient is itself a polynomial in t of the given degree.
template <int degree, bool second>
QUELOR_INLINE void polynomial_step(const double* c, double x, double t, BivariateValue& sum) {
    double value = c[degree], slope = 0.0;
#pragma GCC unroll 16
    for (int j = degree - 1; j >= 0; --j) {
        slope = slope * t + value;
        value = value * t + c[j];
    }
    if constexpr (second) {
        sum.half_xx = sum.half_xx * x + sum.x;
        sum.xt = sum.xt * x + sum.t;
    }
    sum.x = sum.x * x + sum.v;
    sum.v = sum.v * x + value;
    sum.t = sum.t * x + slope;
}

template <const auto& degrees, bool second, std::size_t columns, std::size_t... i>
QUELOR_INLINE BivariateValue polynomial(const double (*c)[columns], double x, double t,
                                        std::index_sequence<i...>) {
    BivariateValue sum;
    (polynomial_step<degrees[degrees.size() - 1 - i], second>(c[degrees.size() - 1 - i], x, t, sum),
     ...);
    return sum;
}

/// h p(R, D) and its derivatives in y = (D/h)^2 and t = (R/h)^2.
template <bool second>
QUELOR_INLINE BivariateValue p_polynomial(const DepthCache& cache, double y, double t) {
    return polynomial<p_degrees, second>(cache.p, y, t,
                                         std::make_index_sequence<p_degrees.size()>());
}

/// h q(R, B) and its derivatives in u = B/h - 1 and t = (R/h)^2.
template <bool second>
QUELOR_INLINE BivariateValue q_polynomial(const DepthCache& cache, double u, double t) {
    return polynomial<q_degrees, second>(cache.q, u, t,
                                         std::make_index_sequence<q_degrees.size()>());
}

/// p(R, D) + q(R, B) for R < h/2.
template <bool second>
QUELOR_INLINE SeparatedField smooth_part(const DepthCache& cache, double inverse_h, double R,
                                         double d1, double d2) {
    const double s = R * inverse_h, t = s * s, w = (d1 - d2) * inverse_h;
    const double u = 1.0 - (d1 + d2) * inverse_h;
    const BivariateValue p = p_polynomial<second>(cache, w * w, t);
    const BivariateValue q = q_polynomial<second>(cache, u, t);
    const double scale = inverse_h * inverse_h;
    SeparatedField sum;
    sum.v = (p.v + q.v) * inverse_h;
    sum.r = (p.t + q.t) * 2.0 * s * scale;
    sum.b = q.x * scale;
    sum.d = p.x * 2.0 * w * scale;
    if constexpr (second) {
        const double cube = scale * inverse_h;
        sum.bb = 2.0 * q.half_xx * cube;
        sum.dd = (2.0 * p.x + 8.0 * w * w * p.half_xx) * cube;
        sum.br = 2.0 * s * q.xt * cube;
        sum.dr = 4.0 * s * w * p.xt * cube;
    }
    return sum;
}

} // namespace finite_core

} // namespace quelor
