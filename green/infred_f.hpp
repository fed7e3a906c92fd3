// The real wave term of the deep-water Green function at one point; the batch kernels of
// deep_wave evaluate the same formulas and give the same bits.
#pragma once

namespace quelor {

/// What stands beside the wave terms of the Green function; rho = r1 is the distance from the image
/// of the source in the surface, Z the sum of the two depths.
enum class SurfaceTerms {
    direct_and_image, ///< 1/r + 1/r1: the function as it is
    image,            ///< 1/r1
    none,
    log_rho,        ///< 2 log(rho), bounded at the origin
    log_rho_plus_Z, ///< 2 log(rho + Z), bounded there too and with a limit
};
constexpr bool has_image(SurfaceTerms terms) {
    return terms == SurfaceTerms::direct_and_image || terms == SurfaceTerms::image;
}

/// e = exp(-Z), 0 for Z > 20, and the wave term with its derivatives.
struct InfredTerms {
    double e, F, Fr, Fz, Frz, Fzz;
};

/// F(R, Z) = 2 PV int_0^inf exp(-k Z) J0(k R)/(k - 1) dk, R the horizontal distance and Z the sum
/// of the two depths, both times omega^2/g; 0 <= R, Z <= 1e8 and R + Z >= 1e-8. The terms beside it
/// are added, rho^2 = R^2 + Z^2, except 1/r, which is no function of R and Z; the derivatives are
/// those of the sum. Errors of F below 1e-8 of the larger of |F| and 1/rho, of Fr and Fz below 1e-8
/// of the larger of their size and 1/rho^2.
InfredTerms infred_f(double R, double Z, SurfaceTerms beside);

} // namespace quelor
