// Discrete Fourier transforms of sequences: real ones of any length, complex and real ones of a
// length that is a power of 2. Arrays of complex numbers are pairs of reals; a(j), A(k) count from
// 0 in the formulas.
#pragma once

#include "numeric/index.hpp"

#include <cstddef>
#include <cstdint>
#include <span>

namespace quelor {

enum class Direction { forward, inverse };

/// Transforms each column of a, N real values, in place, one behind the other; any N, in O(N log
/// N). Packed order of A(k) = sum of a(j) exp(-2 pi i j k / N): A(0), then real and imaginary part
/// of A(1), A(2) ..., and for even N the real A(N/2) last. The inverse takes that order and is not
/// scaled: it gives N times the values. By radix 2 where N is a power of 2, else by a convolution.
/// table  in  2 N values of make_packed_table
/// Order of the packed values: [Swarztrauber 1982]
void packed_transform(std::span<double> a, std::span<const double> table, Direction direction);
/// The table for N rows, 2 N values: roots of unity for even N, and the chirp of the convolution.
void make_packed_table(std::span<double> table);

/// What the transforms of n points need, n a power of 2 from 2 on.
struct Radix2Tables {
    /// cos and sin of 2 pi k / N for k < N/4, N being n or 2 n; N/2 values, at least 1.
    std::span<const double> roots;
    /// Bit reversal of 0 ... l - 1; l = `reversal_size(n)`.
    std::span<const std::int32_t> reversal;
};
std::size_t reversal_size(std::size_t n);
/// Tables for the sizes of the spans: `roots` holds N/2 values, `reversal` a power of 2 of them.
void make_roots(std::span<double> roots);
void make_reversal(std::span<std::int32_t> reversal);

/// z(k) := sum of z(j) exp(sign 2 pi i j k / n), not scaled; 2 n reals, in place.
/// Decimation in time with radix 2: bit reversal, then log2 n passes of butterflies whose halves
/// share one root.   Source: [Cooley 1965]
void complex_transform(std::span<double> z, int sign, const Radix2Tables& tables);

/// Forward, N real values: a(2k) := sum of a(j) cos(2 pi j k / N), a(2k+1) := the same with sin,
/// for 0 < k < N/2; a(0) := the sum of a(j), a(1) := that with alternating signs. Inverse: its
/// reverse but for the factor N/2. Tables of N/2 points, with roots for N.   Source: [Ooura 1996]
void real_transform(std::span<double> a, Direction direction, const Radix2Tables& tables);

} // namespace quelor
