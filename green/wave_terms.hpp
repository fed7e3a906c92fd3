// What the batch kernels of the free-surface Green function give for n pairs of points.
#pragma once

namespace quelor {

/// Structure of arrays, n values each. Lengths are times omega^2/g, the time factor is
/// exp(+i omega t), z is upward; d1 and d2 are the depths of field and source point. The wave
/// remainder is the Green function less 1/r, 1/r1 (the image in the surface) and, in finite depth,
/// 1/r2 (the image in the bottom).
/// f1, g1  real and imaginary part of the remainder
/// f2, g2  its derivative with respect to the horizontal distance R
/// f3, g3  its derivative with respect to d1, the depth of the field point
/// f7, g7  its derivative with respect to d2, the depth of the source; in deep water equal to f3,
/// g3
struct WaveTerms {
    double *f1, *f2, *f3, *f7, *g1, *g2, *g3, *g7;
};

} // namespace quelor
