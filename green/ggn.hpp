// The influence of one source panel on one field point: near field with exact Rankine integrals,
// far field with the whole Green function at the centroid.
//
// Lengths are times K = omega^2 / g; time factor exp(+i omega t); z upward.
#pragma once

#include "green/finred_f.hpp"
#include "green/ggnsing.hpp"
#include "numeric/types.hpp"

namespace quelor {

struct GreenWater {
    double hnd;     ///< K times the depth
    double h_green; ///< the same, or -1 where the wave terms are those of deep water
};

/// Potential and normal derivative, and what the Green function was asked and answered.
struct GreenInfluence {
    Complex8 G, dGdn;
    GreenStatus status = GreenStatus::found;
    double R = 0, d1 = 0, d2 = 0, h_green = 0;
    GreenValue f{};
};

/// Potential G and normal derivative dG/dn at the point p with the unit normal n for a constant
/// source of unit strength over the reflected panel; G = integral of 1/r + ..., no factor 1/(4 pi).
/// Beyond source.L from the centroid the whole Green function is taken there; else the Rankine
/// terms are integrated (see rankine_terms) and only the wave terms stand at the centroid; the
/// status is then always `found`. A point in the panel has dG/dn = 2 pi plus the wave terms, with
/// the normal out of the fluid.
GreenInfluence ggn(const Vec3& p, const Vec3& n, const SourcePanel& source, Reflection reflection,
                   const GreenWater& water, DepthCache& cache);

/// The same without the derivative, for points off the body; dGdn stays 0.
GreenInfluence g_only(const Vec3& p, const SourcePanel& source, Reflection reflection,
                      const GreenWater& water, DepthCache& cache);

} // namespace quelor
