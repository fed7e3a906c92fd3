// Division of complex numbers without overflow of squares.
#pragma once

#include "numeric/types.hpp"

#include <cmath>

namespace quelor {

/// Division by one complex number after Smith: numerator and denominator are first divided by the
/// larger part of the denominator, so that its square cannot overflow.   Source: [Smith 1962]
/// With p the larger part of c + i d, q the other, ratio = q/p and scale = p + q ratio, the
/// quotient of x + i y is (x + y ratio, y - x ratio)/scale for |c| >= |d|, else (x ratio + y, y
/// ratio - x). A difference stands as a sum with the negative: GCC 12 fuses a pair of sum and
/// difference of products in spite of -ffp-contract=off.
struct SmithDivisor {
    explicit SmithDivisor(Complex8 z)
        : real_larger(std::abs(z.real()) >= std::abs(z.imag())),
          ratio(real_larger ? z.imag() / z.real() : z.real() / z.imag()),
          scale(real_larger ? z.real() + z.imag() * ratio : z.real() * ratio + z.imag()) {}

    /// z := z / divisor, by its members re and im: numbers or vectors
    template <class Z> [[gnu::always_inline]] void divide_parts(Z& z) const {
        const Z x = z;
        z.re = (real_larger ? x.re + x.im * ratio : x.re * ratio + x.im) / scale;
        z.im = (real_larger ? x.im + x.re * -ratio : x.im * ratio + -x.re) / scale;
    }
    Complex8 divide(Complex8 z) const {
        struct {
            double re, im;
        } parts{z.real(), z.imag()};
        divide_parts(parts);
        return {parts.re, parts.im};
    }

    bool real_larger;
    double ratio, scale;
};

} // namespace quelor
