// The real wave term of deep water [Wehausen 1960, sec. 13],
//     F(R, Z) = 2 PV int_0^inf exp(-k Z) J0(k R)/(k - 1) dk,
// and its derivative in R, in three forms that together cover R, Z >= 0. Straight-line code for
// vector loops; `infred_f` and the batch kernels share it. rho = sqrt(R^2 + Z^2), p = 1/rho,
// c = Z/rho. The free-surface condition gives dF/dZ = -2 p - F, so that [Newman 1985]
//     F = exp(-Z) (F(R, 0) - 2 int_0^Z exp(t)/sqrt(R^2 + t^2) dt), F(R, 0) = -pi (H0(R) + Y0(R)).
//
// log form    R <= 3.7 and Z <= 8: F = -2 exp(-Z) (y0/2 + J0 log(rho + Z) + rho A(R^2, Z)), y0 the
//             regular part of pi Y0. The integral's part without logarithm and the Struve function
//             leave A, which is entire.
// local form  R >= 3.7 and R >= Z/2: F = -2 pi Y0(R) exp(-Z) - N. What remains of the Struve
//             function and the integral is N = 2 int_0^inf exp(-u)/sqrt(R^2 + (Z - u)^2) du,
//             which has no waves; it is fitted in 1/R and Z/R.
// steep form  R <= Z/2 and Z >= 7.4: F itself, regular through R = 0, fitted in p and c.
//
// The fits are of (N/2 - p)/p^2 and -(F/2 + p)/p^2, so that dF/dZ, in which the leading term
// cancels, keeps its accuracy relative to p^2.
#pragma once

#include <iterator>

#include "green/bessel_core.hpp"

namespace quelor {

namespace deep_core {

template <class T, int row> QUELOR_INLINE double row_value(double v) {
    constexpr int start = [] {
        int sum = 0;
        for (int i = 0; i < row; ++i)
            sum += T::lengths[i];
        return sum;
    }();
    double sum = T::powers[start + T::lengths[row] - 1];
#pragma GCC unroll 32
    for (int l = T::lengths[row] - 2; l >= 0; --l)
        sum = sum * v + T::powers[start + l];
    return sum;
}

struct Fit {
    double value, slope; ///< and its derivative with respect to the scaled first variable
};

template <class T, int row> QUELOR_INLINE Fit add_rows(Fit sum, double u, double v) {
    const Fit next{sum.value * u + row_value<T, row>(v), sum.slope * u + sum.value};
    if constexpr (row == 0)
        return next;
    else
        return add_rows<T, row - 1>(next, u, v);
}

/// Fitted function of table T at (x, y); the slope costs nothing when it is not used.
template <class T> QUELOR_INLINE Fit evaluate(double x, double y) {
    constexpr int last = static_cast<int>(std::size(T::lengths)) - 1;
    const double u = T::x.offset + T::x.factor * x, v = T::y.offset + T::y.factor * y;
    const double top = row_value<T, last>(v);
    const Fit first{top * u + row_value<T, last - 1>(v), top};
    return add_rows<T, last - 2>(first, u, v);
}

} // namespace deep_core

/// F, dF/dR, dF/dZ, and the Bessel functions of the imaginary part where the form needs them.
struct DeepValue {
    double F, Fr, Fz, j0, j1;
};

/// Log form; T is LogNear for Z <= 4 or LogDeep for 4 <= Z <= 8. With L = log(rho + Z):
/// dF/dR = -2 exp(-Z) (R A/rho + (1 - c J0)/R - L J1 - y2/2 + rho dA/dR), where
/// (1 - c J0)/R = R (1/(rho (rho + Z)) + c (1 - J0)/R^2).
template <class T> QUELOR_INLINE DeepValue deep_log_form(double R, double Z, double e) {
    const double R2 = R * R, rho = std::sqrt(R2 + Z * Z);
    const double both = 1.0 / (rho * (rho + Z)), p = both * (rho + Z);
    const SmallBessel b = small_bessel(R2);
    const double log_sum = vec_log(rho + Z), j0 = 1.0 - R2 * b.j0_rest;
    const auto A = deep_core::evaluate<T>(R2, Z);
    const double F = -2.0 * e * (0.5 * b.y0 + log_sum * j0 + rho * A.value);
    const double bracket = A.value * p + both + Z * p * b.j0_rest - log_sum * b.j1_by_x -
                           0.5 * b.y1_by_x + 2.0 * T::x.factor * rho * A.slope;
    return {F, -2.0 * e * R * bracket, -2.0 * p - F, j0, R * b.j1_by_x};
}

/// Local form; T, H are LocalNear0..3, HankelNear for R <= 10, LocalFar0..3, HankelFar above, the
/// digit by Z/R < 1/4, <= 1/2, <= 1, <= 2. With
/// m(1/R, Z/R) = (N/2 - p)/p^2 and N's own dN/dZ = 2 p - N, the radial derivative gives
/// (dN/dR)/2 = (1/R) (-p + p^2 (Z m - 2 m - x dm/dx)), x = 1/R.
template <class T, class H> QUELOR_INLINE DeepValue deep_local_form(double R, double Z, double e) {
    const double rho = std::sqrt(R * R + Z * Z);
    const double both = 1.0 / (R * rho), x = both * rho, p = both * R, p2 = p * p;
    const auto m = deep_core::evaluate<T>(x, Z * x);
    const Bessel b = large_bessel<H>(R, x);
    const double wave = 2.0 * std::numbers::pi * e, wave0 = wave * b.y0;
    const double slope = x * (-p + p2 * ((Z - 2.0) * m.value - T::x.factor * x * m.slope));
    const double rest = 2.0 * m.value * p2; // N - 2 p
    return {-wave0 - 2.0 * p - rest, wave * b.y1 - 2.0 * slope, wave0 + rest, b.j0, b.j1};
}

/// Steep form without the Bessel functions; T, S are Steep0, Steep0R for 8 <= rho <= 14, Steep1,
/// Steep1R to 28, Steep2, Steep2R above.
template <class T, class S> QUELOR_INLINE DeepValue deep_steep_form(double R, double Z) {
    const double p = 1.0 / std::sqrt(R * R + Z * Z), c = Z * p;
    const double rest = 2.0 * deep_core::evaluate<T>(p, c).value * p * p;
    const double slope = 2.0 * deep_core::evaluate<S>(p, c).value * p * p * p;
    return {-2.0 * p - rest, slope * R, rest, 0.0, 0.0};
}

} // namespace quelor
