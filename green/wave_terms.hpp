// What the batch kernels of the free-surface Green function give for n pairs of points.
#pragma once

#include <cstddef>

namespace quelor {

/// Wave remainder of n pairs: the Green function less 1/r, 1/r1 (the image in the surface) and, in
/// finite depth, 1/r2 (the image in the bottom). Structure of arrays, n values each: real and
/// imaginary part, and behind the underscore their derivatives in the horizontal distance R and in
/// the depths d1 and d2 of field and source point. Lengths are times omega^2/g, the time factor is
/// exp(+i omega t), z is upward. In deep water the two derivatives in depth are equal.
struct WaveTerms {
    double *re, *re_R, *re_1, *re_2, *im, *im_R, *im_1, *im_2;

    WaveTerms from(std::ptrdiff_t k) const {
        return {re + k, re_R + k, re_1 + k, re_2 + k, im + k, im_R + k, im_1 + k, im_2 + k};
    }
};

} // namespace quelor
