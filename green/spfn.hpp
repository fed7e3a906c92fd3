// Bessel and Struve functions of orders 0 and 1 at one point. The vector loops use the same tables
// through bessel_core.
#pragma once

namespace quelor {

/// J0, J1 and, for x >= 4 (else 0), J = amplitude cos(phase), Y = amplitude sin(phase) of each
/// order.
struct BesselTerms {
    double j0, j1, amplitude0, phase0, amplitude1, phase1;
};
/// 0 <= x <= 1e8. Errors below 1e-10 of the amplitude.
BesselTerms spfn_bessel(double x);

/// y0, y1: pi Y0(x), pi Y1(x); h0, h1: pi H0(x), pi H1(x) of Struve; 0 where not asked for.
struct NeumannTerms {
    double y0, y1, h0, h1;
};
/// The second kind from the result of spfn_bessel at the same x > 0. Errors below 1e-10 relative
/// (of the amplitude of Y where x >= 4).
/// n = -100: nothing. n = 1 keeps the logarithm out for x < 4: y0 = pi Y0 - 2 J0 log x,
/// y1 = pi Y1 - 2 J1 log x + 2/x, x = 0 included. n >= 0 gives h0 and h1 too.
NeumannTerms spfn_neumann(double x, const BesselTerms& bessel, int n);

} // namespace quelor
