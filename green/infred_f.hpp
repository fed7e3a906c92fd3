// The real wave term of the deep-water Green function at one point; the batch kernels of
// deep_wave evaluate the same formulas and give the same bits.
#pragma once

namespace quelor {

/// e = exp(-Z), 0 for Z > 20, and the wave term with its derivatives.
struct InfredTerms {
    double e, F, Fr, Fz, Frz, Fzz;
};

/// F(R, Z) = 2 PV int_0^inf exp(-k Z) J0(k R)/(k - 1) dk, R the horizontal distance and Z the sum
/// of the two depths, both times omega^2/g; 0 <= R, Z <= 1e8 and R + Z >= 1e-8. With
/// rho^2 = R^2 + Z^2 the mode chooses the form:
/// 2      the wave term alone
/// 3      plus 2 log(rho), bounded at the origin
/// 4      plus 2 log(rho + Z), bounded there too and with a limit
/// other  plus the image 1/rho
/// The derivatives are those of the chosen form. Errors of F below 1e-8 of the larger of |F| and
/// 1/rho, of Fr and Fz below 1e-8 of the larger of their size and 1/rho^2.
InfredTerms infred_f(double R, double Z, int mode);

} // namespace quelor
