// Exponential and sine pair to ten digits for the terms of a decaying series: about 60 % of the
// work of vecmath. The fits are Chebyshev expansions in powers by tools/finite_tables.py.
#pragma once

#include "numeric/vecmath.hpp"

namespace quelor {

namespace vecmath {
// clang-format off
/// exp(x) in powers of x, |x| <= ln(2)/2, relative error below 6e-11.
inline constexpr double exp_short[] = {
    0.9999999999595618, 0.999999999995509, 0.5000000107729166, 0.16666666786308587,
    0.041666218319291945, 0.008333283538708528, 0.0013948578326459795, 0.00019907569310848288};
/// sin(pi/2 x)/x in powers of x^2, |x| <= 1/2, error below 7e-12.
inline constexpr double sin_quarter[] = {
    1.5707963267881, -0.6459640961467954, 0.07969258272563062, -0.004681266256726245,
    0.00015820630355647733};
/// cos(pi/2 x) in powers of x^2, |x| <= 1/2, error below 5e-11.
inline constexpr double cos_quarter[] = {
    0.9999999999524894, -1.2337005406331623, 0.2536692036551135, -0.02086006950026408,
    0.0009036280663802505};
// clang-format on
} // namespace vecmath

/// exp(x) for x <= 700, relative error below 6e-11 for x >= -708; 3e-308 below.
QUELOR_INLINE double vec_exp_short(double x) {
    using namespace vecmath;
    const double t = x < -708.0 ? -708.0 : x;
    const double shifted = t * std::numbers::log2e + round_shift;
    const double y = t - (shifted - round_shift) * std::numbers::ln2;
    const std::uint64_t scale = (double_to_bits(shifted) + 1023) << 52;
    return horner(exp_short, y) * bits_to_double(scale);
}

/// sin(pi/2 x) and cos(pi/2 x), |x| <= 1e5, absolute errors below 6e-11.
QUELOR_INLINE SinCos vec_sincos_short(double x) {
    using namespace vecmath;
    const double shifted = x + round_shift;
    const double y = x - (shifted - round_shift), z = y * y;
    const std::uint64_t sine = double_to_bits(y * horner(sin_quarter, z));
    const std::uint64_t cosine = double_to_bits(horner(cos_quarter, z));
    const std::uint64_t quadrant = double_to_bits(shifted);
    const std::uint64_t odd = 0 - (quadrant & 1);
    const std::uint64_t sine_sign = (quadrant & 2) << 62, cosine_sign = ((quadrant + 1) & 2) << 62;
    return {bits_to_double(((sine & ~odd) | (cosine & odd)) ^ sine_sign),
            bits_to_double(((cosine & ~odd) | (sine & odd)) ^ cosine_sign)};
}

} // namespace quelor
