// Modulus of complex numbers without overflow of squares.
#pragma once

#include "numeric/types.hpp"

#include <algorithm>
#include <cmath>

namespace quelor {

/// Modulus max(|re|,|im|) sqrt(1 + (min/max)^2); 0 for 0.
inline double complex_modulus(Complex8 z) {
    const double re = std::abs(z.real()), im = std::abs(z.imag()), larger = std::max(re, im);
    if (larger == 0) return 0;
    const double ratio = std::min(re, im) / larger;
    return larger * std::sqrt(1 + ratio * ratio);
}

} // namespace quelor
