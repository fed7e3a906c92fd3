// Elementary functions for vector loops: straight-line code on plain doubles, no table, no branch,
// no call, so that a loop over them is vectorised at -O3 for whatever the processor has. The bits
// of a result depend neither on the vector width nor on the position in the loop.
//
// A loop function that uses them is marked QUELOR_CLONES: the linker then picks its SSE2, AVX2 or
// AVX-512 version at start. Contraction being off, all versions give the same bits.
#pragma once

#include <bit>
#include <cstdint>
#include <limits>
#include <numbers>

#if defined(__clang__)
#if __has_feature(address_sanitizer)
#define QUELOR_CLONES
#endif
#elif defined(__SANITIZE_ADDRESS__)
#define QUELOR_CLONES
#endif
#if !defined(__x86_64__) && !defined(QUELOR_CLONES)
#define QUELOR_CLONES
#endif
// Clang 14 takes the level names but passes over the third.
#if !defined(QUELOR_CLONES) && defined(__clang__)
#define QUELOR_CLONES __attribute__((target_clones("default", "avx2", "avx512f")))
#elif !defined(QUELOR_CLONES)
#define QUELOR_CLONES __attribute__((target_clones("default", "arch=x86-64-v3", "arch=x86-64-v4")))
#endif
#define QUELOR_INLINE [[gnu::always_inline]] inline

namespace quelor {

namespace vecmath {
inline constexpr double round_shift = 0x1.8p52; ///< x + this - this is x rounded to an integer
inline constexpr double ln2_high = 0x1.62e42fefa38p-1; ///< 41 bits: times an exponent is exact
inline constexpr double ln2_low = 0x1.ef35793c7673p-45;
inline constexpr double half_pi_1 = 0x1.921fb544p0;   ///< 31 bits
inline constexpr double half_pi_2 = 0x1.0b4611a6p-34; ///< the next 31 bits
inline constexpr double half_pi_3 = 0x1.3198a2e037073p-69;

/// Horner's rule, coefficient of the highest power last.
template <int n> QUELOR_INLINE double horner(const double (&c)[n], double x) {
    double sum = c[n - 1];
#pragma GCC unroll 32
    for (int i = n - 2; i >= 0; --i)
        sum = sum * x + c[i];
    return sum;
}

QUELOR_INLINE double bits_to_double(std::uint64_t bits) {
    return std::bit_cast<double>(bits);
}
QUELOR_INLINE std::uint64_t double_to_bits(double x) {
    return std::bit_cast<std::uint64_t>(x);
}
} // namespace vecmath

/// exp(x). Relative error below 1e-14 for -708 <= x <= 709.4; 0 below, infinity above, NaN for NaN.
/// exp(x) = 2^k exp(y), |y| <= ln(2)/2, the Taylor series of exp to y^11 (remainder 7e-15).
QUELOR_INLINE double vec_exp(double x) {
    using namespace vecmath;
    constexpr double c[] = {1.0,         1.0,          1.0 / 2,       1.0 / 6,
                            1.0 / 24,    1.0 / 120,    1.0 / 720,     1.0 / 5040,
                            1.0 / 40320, 1.0 / 362880, 1.0 / 3628800, 1.0 / 39916800};
    double t = x < -708.0 ? -708.0 : x;
    t = t > 709.4 ? 709.4 : t;
    const double shifted = t * std::numbers::log2e + round_shift;
    const double k = shifted - round_shift;
    const double y = (t - k * ln2_high) - k * ln2_low;
    const std::uint64_t scale = (double_to_bits(shifted) + 1023) << 52; // 2^k
    const double value = horner(c, y) * bits_to_double(scale);
    const double lower = x < -708.0 ? 0.0 : value;
    return x > 709.4 ? std::numeric_limits<double>::infinity() : lower;
}

/// log(x). Relative error below 1e-15 for normal x > 0, near 1 too; -infinity for 0 and below the
/// normal numbers, NaN for x < 0 and NaN, infinity for infinity.
/// log(x) = k ln 2 + 2 artanh(s), s = (m - 1)/(m + 1), x = 2^k m, sqrt(1/2) <= m < sqrt(2).
QUELOR_INLINE double vec_log(double x) {
    using namespace vecmath;
    constexpr double c[] = {1.0 / 3,  1.0 / 5,  1.0 / 7,  1.0 / 9, 1.0 / 11,
                            1.0 / 13, 1.0 / 15, 1.0 / 17, 1.0 / 19};
    constexpr std::uint64_t sqrt_half = 0x3fe6a09e667f3bcd, one = 0x3ff0000000000000;
    const std::uint64_t u = double_to_bits(x) + (one - sqrt_half);
    const double k =
        bits_to_double((u >> 52) | 0x4330000000000000) - (0x1p52 + 1023.0); // int to double, AVX2
    const double m = bits_to_double((u & 0x000fffffffffffff) + sqrt_half);
    const double f = m - 1.0;
    const double s = f / (m + 1.0);
    const double z = s * s;
    const double tail = s * z * horner(c, z);
    // s = f/2 - (f/2) s exactly, which keeps the leading term free of rounding near x = 1.
    const double value = k * ln2_high + (f - (f * s - 2.0 * tail - k * ln2_low));
    const double zero = x < 0x1p-1022 ? -std::numeric_limits<double>::infinity() : value;
    const double valid = x < 0.0 ? std::numeric_limits<double>::quiet_NaN() : zero;
    return x <= std::numeric_limits<double>::max() ? valid : x; // infinity and NaN
}

struct SinCos {
    double sin, cos;
};

/// sin(x) and cos(x). Absolute error below 2e-15 for |x| <= 1e6 (relative below 1e-14 where the
/// function is above 1e-1); meaningless beyond 1.6e6, where k half_pi_1 is no longer exact.
/// x = k pi/2 + y in three parts of pi/2; the Taylor series to y^15 and y^14.
QUELOR_INLINE SinCos vec_sincos(double x) {
    using namespace vecmath;
    constexpr double s[] = {-1.0 / 6,        1.0 / 120,        -1.0 / 5040,         1.0 / 362880,
                            -1.0 / 39916800, 1.0 / 6227020800, -1.0 / 1307674368000};
    constexpr double c[] = {1.0 / 24,       -1.0 / 720,      1.0 / 40320,
                            -1.0 / 3628800, 1.0 / 479001600, -1.0 / 87178291200};
    const double shifted = x * (2.0 * std::numbers::inv_pi) + round_shift;
    const double k = shifted - round_shift;
    const double y = ((x - k * half_pi_1) - k * half_pi_2) - k * half_pi_3;
    const double z = y * y;
    const std::uint64_t sine = double_to_bits(y + y * z * horner(s, z));
    const std::uint64_t cosine = double_to_bits((1.0 - 0.5 * z) + z * z * horner(c, z));
    const std::uint64_t quadrant = double_to_bits(shifted);
    const std::uint64_t odd = 0 - (quadrant & 1); // all ones in odd quadrants
    const std::uint64_t sine_sign = (quadrant & 2) << 62, cosine_sign = ((quadrant + 1) & 2) << 62;
    return {bits_to_double(((sine & ~odd) | (cosine & odd)) ^ sine_sign),
            bits_to_double(((cosine & ~odd) | (sine & odd)) ^ cosine_sign)};
}

} // namespace quelor
