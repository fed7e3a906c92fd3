// The finite-depth Green function for batches of point pairs: the hot loop of the analysis.
#pragma once

#include <span>

#include "green/finred_poly.hpp"
#include "green/wave_terms.hpp"

namespace quelor {

/// Wave remainder of finite depth and its gradient: the Green function less 1/r, 1/r1 and 1/r2.
/// R       in   n horizontal distances, 0 <= R <= 1e8
/// d1, d2  in   n depths of field and source point, 0 <= d <= h (a little above h does no harm)
/// cache   in   prepare_depth(h), status found
/// out     out  eight arrays of n values; none may overlap the input
/// Lengths are times omega^2/g. Errors below 1e-9 (value) and 3e-8 (gradient) of the larger of the
/// quantity and the Rankine terms removed, for 0.002 <= h <= 20. R = 0 gives the limits, so re_R =
/// im_R = 0. A pair with d1 + d2 + R below 1e-8 gives zeros; what is not a number gives NaN.
void finite_wave_terms(std::span<const double> R, std::span<const double> d1,
                       std::span<const double> d2, const DepthCache& cache, const WaveTerms& out);

/// The remainder without its gradient, to the same accuracy.
void finite_wave_values(std::span<const double> R, std::span<const double> d1,
                        std::span<const double> d2, const DepthCache& cache, double* re,
                        double* im);

} // namespace quelor
