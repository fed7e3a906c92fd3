// The free-surface Green function at one point, deep and finite water, all derivatives. The header
// brings the batch kernel of finite depth and its cache along.
#pragma once

#include "green/finite_wave.hpp"
#include "green/finred_poly.hpp"
#include "green/infred_f.hpp"
#include "numeric/types.hpp"

namespace quelor {

/// The Green function and its derivatives; R, 1 and 2 behind the underscore stand for those in the
/// horizontal distance R and in the depths d1 and d2 of field and source point.
struct GreenValue {
    Complex8 G, G_R, G_1, G_R1, G_11, G_12, G_2, G_R2;
};

/// Why the Green function has no value.
enum class GreenStatus {
    found,
    out_of_range, ///< arguments beyond their limits or not numbers, or both points at one place of
                  ///< the surface
    coincident,   ///< a term that is not removed has a distance below 1e-8
    no_roots      ///< of the dispersion relation; DepthCache::status tells which
};

/// Whether 1/r2, the image in the bottom, stands in the function of finite depth.
enum class BottomTerm { kept, removed };

/// Green function G = 1/r + 1/r1 (+ 1/r2 in finite depth) + wave terms, lengths times omega^2/g,
/// time factor exp(+i omega t), no factor 1/(4 pi).
/// R       in      horizontal distance, 0 <= R <= 1e8
/// d1, d2  in      depths of field and source point, not above h in finite depth; their sum is Z
/// h       in      water depth, 1e-8 to 1e8; deep water if not above 0
/// beside  in      what stands beside the wave terms in place of 1/r + 1/r1
/// bottom  in      whether 1/r2 does
/// cache   in/out  made anew when h is not its depth
/// f       out     0 where G has no value; of coincident points without the term that has none
/// Accuracy as of finite_wave_terms; in deep water as of infred_f.
/// Source: [John 1950], [Wehausen 1960]
GreenStatus finred_f(double R, double d1, double d2, double h, SurfaceTerms beside,
                     BottomTerm bottom, DepthCache& cache, GreenValue& f);

} // namespace quelor
