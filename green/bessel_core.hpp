// Bessel functions as straight-line code for vector loops; the scalar routines of spfn and the
// deep-water kernels share it.
#pragma once

#include <cmath>

#include "green/deep_tables.hpp"
#include "numeric/vecmath.hpp"

namespace quelor {

/// J0, J1, Y0 and Y1 near the origin without logarithms and poles, 0 <= x <= 4. Errors below 1e-12.
struct SmallBessel {
    double j0_rest; ///< (1 - J0)/x^2
    double j1_by_x; ///< J1/x
    double y0;      ///< pi Y0 - 2 J0 log x
    double y1_by_x; ///< (pi Y1 - 2 J1 log x + 2/x)/x
};
QUELOR_INLINE SmallBessel small_bessel(double x2) {
    using namespace vecmath;
    using namespace deep_tables;
    return {horner(bessel_j0, x2), horner(bessel_j1, x2), horner(neumann_y0, x2),
            horner(neumann_y1, x2)};
}

/// Coefficients of the Hankel form of orders 0 and 1, x >= 3.7 [Abramowitz 1964, 9.2.5]:
/// J = sqrt(2/(pi x)) (P cos chi - Q sin chi), Y = sqrt(2/(pi x)) (P sin chi + Q cos chi),
/// chi = x - pi/4 for order 0, x - 3 pi/4 for order 1. The table H is HankelNear for x <= 10 or
/// HankelFar; errors below 1e-9/x^2 in P, 5e-9/x^3 in Q.
struct HankelForm {
    double p0, q0, p1, q1;
};
template <class H> QUELOR_INLINE HankelForm hankel_form(double x_inverse) {
    using vecmath::horner;
    const double v = x_inverse * x_inverse;
    return {1.0 + v * horner(H::p0, v), x_inverse * (-0.125 + v * horner(H::q0, v)),
            1.0 + v * horner(H::p1, v), x_inverse * (0.375 + v * horner(H::q1, v))};
}

struct Bessel {
    double j0, j1, y0, y1;
};
/// All four for 3.7 <= x <= 1e8; the phase is good to 1e-15 up to x = 1e6, to 1e-7 at the end.
template <class H> QUELOR_INLINE Bessel large_bessel(double x, double x_inverse) {
    const HankelForm h = hankel_form<H>(x_inverse);
    const SinCos a = vec_sincos(x);
    const double sum = a.sin + a.cos, difference = a.sin - a.cos; // sqrt(2) cos, sin of x - pi/4
    const double size = std::sqrt(x_inverse * std::numbers::inv_pi);
    return {size * (h.p0 * sum - h.q0 * difference), size * (h.p1 * difference + h.q1 * sum),
            size * (h.p0 * difference + h.q0 * sum), size * (h.q1 * difference - h.p1 * sum)};
}

} // namespace quelor
