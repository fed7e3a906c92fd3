// Regions and forms of the deep-water wave term at one point.
#include "green/infred_f.hpp"

#include <cmath>

#include "green/deep_core.hpp"

namespace quelor {

using namespace deep_tables;

namespace {

/// Near the vertical axis, R <= Z/2 and Z > 7.4.
DeepValue steep(double R, double Z) {
    const double rho2 = R * R + Z * Z;
    if (rho2 > 28.0 * 28.0) return deep_steep_form<Steep2, Steep2R>(R, Z);
    if (rho2 > 14.0 * 14.0) return deep_steep_form<Steep1, Steep1R>(R, Z);
    return deep_steep_form<Steep0, Steep0R>(R, Z);
}

/// R <= 3.7 and Z <= 8.
DeepValue logarithmic(double R, double Z) {
    const double e = vec_exp(-Z);
    return Z <= 4.0 ? deep_log_form<LogNear>(R, Z, e) : deep_log_form<LogDeep>(R, Z, e);
}

/// R > 3.7, one band of Z/R.
template <class Near, class Far> DeepValue local(double R, double Z) {
    const double e = vec_exp(-Z);
    return R > 10.0 ? deep_local_form<Far, HankelFar>(R, Z, e)
                    : deep_local_form<Near, HankelNear>(R, Z, e);
}

DeepValue infred_2series(double R, double Z) { // R < Z/2
    return R <= 3.7 && Z <= 8.0 ? logarithmic(R, Z) : steep(R, Z);
}

DeepValue infred_peq5(double R, double Z) {
    return logarithmic(R, Z);
}

DeepValue infred_peq6(double R, double Z) {
    return local<LocalNear0, LocalFar0>(R, Z);
}

DeepValue infred_cfrac(double R, double Z) {
    return local<LocalNear1, LocalFar1>(R, Z);
}

DeepValue infred_poly(double R, double Z) { // Z/2 <= R <= 2 Z
    if (R <= 3.7) return logarithmic(R, Z);
    return R >= Z ? local<LocalNear2, LocalFar2>(R, Z) : local<LocalNear3, LocalFar3>(R, Z);
}

DeepValue infred_ass(double R, double Z) { // far down: all bands meet
    if (R < 0.5 * Z) return steep(R, Z);
    if (R > 4.0 * Z) return infred_peq6(R, Z);
    return R > 2.0 * Z ? infred_cfrac(R, Z) : infred_poly(R, Z);
}

DeepValue wave_term(double R, double Z) {
    if (R > 8.0 && Z > 20.0) return infred_ass(R, Z);
    if (R < 0.5 * Z) return infred_2series(R, Z);
    if (R <= 3.7 && Z <= 2.0) return infred_peq5(R, Z);
    if (R > 4.0 * Z) return infred_peq6(R, Z);
    if (R > 2.0 * Z) return infred_cfrac(R, Z);
    return infred_poly(R, Z);
}

void add_beside(SurfaceTerms beside, double R, double Z, InfredTerms& f) {
    const double rho = std::sqrt(R * R + Z * Z), p = 1.0 / rho, c = Z * p, p2 = p * p, q = p2 * p;
    if (beside == SurfaceTerms::none) return;
    if (beside == SurfaceTerms::log_rho) {
        f.F += 2.0 * std::log(rho);
        f.Fr += 2.0 * R * p2;
        f.Fz += 2.0 * c * p;
        f.Frz -= 4.0 * c * R * q;
        f.Fzz += 2.0 * (1.0 - 2.0 * c * c) * p2;
    } else if (beside == SurfaceTerms::log_rho_plus_Z) {
        f.F += 2.0 * std::log(rho + Z);
        f.Fr += 2.0 * R * p / (rho + Z);
        f.Fz += 2.0 * p;
        f.Frz -= 2.0 * R * q;
        f.Fzz -= 2.0 * c * p2;
    } else {
        f.F += p;
        f.Fr -= R * q;
        f.Fz -= c * p2;
        f.Frz += 3.0 * c * R * p2 * p2;
        f.Fzz -= (1.0 - 3.0 * c * c) * q;
    }
}

} // namespace

InfredTerms infred_f(double R, double Z, SurfaceTerms beside) {
    const DeepValue wave = wave_term(R, Z);
    const double p = 1.0 / std::sqrt(R * R + Z * Z), q = p * p * p;
    InfredTerms f{.e = Z > 20.0 ? 0.0 : vec_exp(-Z),
                  .F = wave.F,
                  .Fr = wave.Fr,
                  .Fz = wave.Fz, // -2 p - F
                  .Frz = 2.0 * R * q - wave.Fr,
                  .Fzz = 2.0 * Z * q - wave.Fz};
    add_beside(beside, R, Z, f);
    return f;
}

} // namespace quelor
