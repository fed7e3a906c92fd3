// The free-surface Green function at one point, deep and finite water, all derivatives. The header
// brings the batch kernel of finite depth and its cache along.
#pragma once

#include <array>

#include "green/finite_wave.hpp"
#include "green/finred_poly.hpp"
#include "numeric/types.hpp"

namespace quelor {

/// Green function G = 1/r + 1/r1 (+ 1/r2 in finite depth) + wave terms, lengths times omega^2/g,
/// time factor exp(+i omega t), no factor 1/(4 pi).
/// R       in      horizontal distance, 0 <= R <= 1e8
/// d1, d2  in      depths of field and source point, not above h in finite depth; their sum is Z
/// h       in      water depth, 1e-8 to 1e8; deep water if not above 0
/// n1      in      0 G as it stands; 1 without 1/r; 2 without 1/r and 1/r1; 3, 4 as 2, plus
///                 2 log(r1) or 2 log(r1 + Z), which keep the wave terms bounded at the surface
/// n2      in      1 without 1/r2, else 0
/// cache   in/out  made anew when h is not its depth
/// f       out     f[0] G; its derivatives: f[1] R; f[2] d1; f[3] R d1; f[4] d1 d1; f[5] d1 d2;
///                 f[6] d2; f[7] R d2
/// Returns ier: 0, or 1 where G has no value: arguments out of range or not numbers, Z + R < 1e-8,
/// roots not found (cache.status), or a term not removed whose distance is below 1e-8; f is then 0
/// or lacks that term. Accuracy as of finite_wave_terms; in deep water as of infred_f.
/// Source: [John 1950], [Wehausen 1960]
int finred_f(double R, double d1, double d2, double h, int n1, int n2, DepthCache& cache,
             std::array<Complex8, 8>& f);

} // namespace quelor
