// Bessel and Struve functions at one point.
#include "green/spfn.hpp"

#include "green/bessel_core.hpp"

namespace quelor {

namespace {

BesselTerms far_bessel(double x) {
    const double x_inverse = 1.0 / x, size = std::sqrt(2.0 * std::numbers::inv_pi * x_inverse);
    const bool near = x <= 10.0;
    const HankelForm h = near ? hankel_form<deep_tables::HankelNear>(x_inverse)
                              : hankel_form<deep_tables::HankelFar>(x_inverse);
    const Bessel b = near ? large_bessel<deep_tables::HankelNear>(x, x_inverse)
                          : large_bessel<deep_tables::HankelFar>(x, x_inverse);
    return {.j0 = b.j0,
            .j1 = b.j1,
            .amplitude0 = size * std::hypot(h.p0, h.q0),
            .phase0 = x - std::numbers::pi / 4 + std::atan(h.q0 / h.p0),
            .amplitude1 = size * std::hypot(h.p1, h.q1),
            .phase1 = x - 3 * std::numbers::pi / 4 + std::atan(h.q1 / h.p1)};
}

NeumannTerms near_neumann(double x, const BesselTerms& bessel, int n) {
    const SmallBessel b = small_bessel(x * x);
    const double log_x = n == 1 ? 0.0 : std::log(x), pole = n == 1 ? 0.0 : 2.0 / x;
    NeumannTerms y{.y0 = b.y0 + 2.0 * bessel.j0 * log_x,
                   .y1 = x * b.y1_by_x + 2.0 * bessel.j1 * log_x - pole,
                   .h0 = 0.0,
                   .h1 = 0.0};
    if (n >= 0) {
        y.h0 = x * vecmath::horner(deep_tables::struve_h0, x * x);
        y.h1 = x * x * vecmath::horner(deep_tables::struve_h1, x * x);
    }
    return y;
}

} // namespace

BesselTerms spfn_bessel(double x) {
    if (x >= 4.0) return far_bessel(x);
    const SmallBessel b = small_bessel(x * x);
    return {.j0 = 1.0 - x * x * b.j0_rest,
            .j1 = x * b.j1_by_x,
            .amplitude0 = 0.0,
            .phase0 = 0.0,
            .amplitude1 = 0.0,
            .phase1 = 0.0};
}

NeumannTerms spfn_neumann(double x, const BesselTerms& bessel, int n) {
    if (n == -100) return {0.0, 0.0, 0.0, 0.0};
    if (x < 4.0) return near_neumann(x, bessel, n);
    NeumannTerms y{.y0 = std::numbers::pi * bessel.amplitude0 * std::sin(bessel.phase0),
                   .y1 = std::numbers::pi * bessel.amplitude1 * std::sin(bessel.phase1),
                   .h0 = 0.0,
                   .h1 = 0.0};
    if (n >= 0) {
        const double v = 1.0 / (x * x);
        y.h0 = y.y0 + 2.0 / x * vecmath::horner(deep_tables::struve_far_0, v);
        y.h1 = y.y1 + 2.0 * vecmath::horner(deep_tables::struve_far_1, v);
    }
    return y;
}

} // namespace quelor
