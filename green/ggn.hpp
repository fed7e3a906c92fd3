// The influence of one source panel on one field point: near field with exact Rankine integrals,
// far field with the whole Green function at the centroid.
//
// Lengths are times K = omega^2 / g; time factor exp(+i omega t); z upward.
#pragma once

#include <array>

#include "green/finred_f.hpp"
#include "green/ggnsing.hpp"
#include "numeric/types.hpp"

namespace quelor {

/// Field point and the unit normal there.
struct FieldPoint {
    GreenPoint at;
    GreenPoint normal;
};

/// A source panel or, with a negative sign, its image in x = 0 or y = 0.
struct PanelSource {
    const SourcePanel& panel;
    double sign_x, sign_y;
};

struct GreenWater {
    double hnd;     ///< K times the depth
    double h_green; ///< the same, or -1 where the wave terms are those of deep water
};

/// ier = 1: the Green function has no value there; R to f tell what it was asked.
struct GreenInfluence {
    Complex8 G, dGdn;
    int ier = 0;
    double R = 0, d1 = 0, d2 = 0, h_green = 0;
    std::array<Complex8, 8> f{};
};

/// Potential G and normal derivative dG/dn at the field point for a constant source of unit
/// strength over the panel; G = integral of 1/r + ..., no factor 1/(4 pi). Beyond panel.L from the
/// centroid of the source the whole Green function is taken there; else the Rankine terms are
/// integrated (see rankine_terms) and only the wave terms stand at the centroid; then ier is always
/// 0. A point in the panel has dG/dn = 2 pi plus the wave terms, with the normal out of the fluid.
GreenInfluence ggn(const FieldPoint& field, const PanelSource& source, const GreenWater& water,
                   DepthCache& cache);

/// The same without the derivative, for points off the body; dGdn stays 0.
GreenInfluence g_only(const GreenPoint& field, const PanelSource& source, const GreenWater& water,
                      DepthCache& cache);

} // namespace quelor
