// The deep-water free-surface Green function for batches of point pairs: the hot loop of the
// analysis.
#pragma once

#include <span>

#include "green/wave_terms.hpp"

namespace quelor {

/// Wave remainder of deep water and its gradient, F - 2 pi i J0(R) exp(-Z) and derivatives, with
/// F = 2 PV int_0^inf exp(-k Z) J0(k R)/(k - 1) dk.
/// R    in   n horizontal distances, 0 <= R <= 1e8
/// Z    in   n sums of the two depths, 0 <= Z <= 1e8
/// out  out  eight arrays of n values; none may overlap the input
/// R = 0 gives the limits, so re_R = im_R = 0. A pair with R + Z below 1e-8 gives zeros.
void deep_wave_terms(std::span<const double> R, std::span<const double> Z, const WaveTerms& out);

/// The remainder without its gradient, the same bits as from deep_wave_terms. `im` may be null.
void deep_wave_values(std::span<const double> R, std::span<const double> Z, double* re, double* im);

/// F, dF/dR and dF/dZ alone, n values each: what the images of finite depth need.
void deep_images(std::span<const double> R, std::span<const double> Z, double* F, double* Fr,
                 double* Fz);

} // namespace quelor
