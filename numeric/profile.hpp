// Profile (skyline) matrices: factorisation A = L D L^T, solution, and product with a matrix.
//
// A symmetric matrix of order n is kept as the columns of its upper triangle, each from the
// diagonal upward to its highest nonzero row:
//   loc  n + 1 positions, loc(1) = 1; the diagonal of column j stands at loc(j), the element (i, j)
//        at loc(j) + j - i, for i from top(j) = j - (loc(j+1) - loc(j) - 1) to j
//   a    loc(n+1) - 1 elements, real, or complex and then complex symmetric (nothing is conjugated)
// The order of every sum is part of the result: the bits are those of the loops given with each
// routine, each product and each sum rounded by itself, whatever the blocking and the processor.
#pragma once

#include "numeric/types.hpp"

#include <vector>

namespace quelor {

/// A pivot that came out smaller than the diagonal it was formed from.
struct DigitLoss {
    int equation = 0, digits = 0;
};

/// What happened in a factorisation; the caller reports it.
struct ProfileStatus {
    std::vector<DigitLoss> losses; ///< ascending in the equations
    int zero_pivot = 0;            ///< equation at which the factorisation stopped, 0 for none
};

/// Whether loc describes a profile that lies within an array of `size` elements: loc(1) = 1, no
/// column without its diagonal or reaching above row 1.
bool profile_is_valid(std::span<const std::int32_t> loc, std::int64_t size);

/// A = L D L^T in place: D on the diagonals, L(i, j) of the unit lower factor's transpose above.
/// a       in/out
/// digits  a pivot that loses at least so many decimal digits, floor(log10 |A(j,j)|) less
///         floor(log10 |D(j)|), 0 taken for the logarithm of 0, is listed
/// For j = 2..n: A(i,j) -= sum over r of A(r,i) A(r,j), i = top(j)..j-1, r ascending from the
/// higher top to i - 1; then t = A(i,j) / D(i), acc += t A(i,j), A(i,j) = t; then D(j) = A(j,j) -
/// acc. There is no pivoting. D(j) = 0 stops at once; D(1) is not tested.
ProfileStatus profile_factor(std::span<double> a, std::span<const std::int32_t> loc, int digits);
/// The same for a complex matrix, without the list of lost digits.
ProfileStatus profile_factor(std::span<Complex8> a, std::span<const std::int32_t> loc);

/// Parts of a solution: both halves, L^-1 b alone, or L^-T D^-1 b alone.
enum class ProfileMode { both = 0, forward = 1, backward = 2 };

/// b := A^-1 b with the factors of profile_factor, each column of b (n, any number) by itself.
/// Forward, j = 2..n: b(j) -= sum over i = top(j)..j-1 of A(i,j) b(i), i ascending.
/// Backward: b(i) /= D(i); then for j = n..1: b(i) -= b(j) A(i,j), i = top(j)..j-1.
void profile_solve(std::span<const double> a, Matrix<double> b, std::span<const std::int32_t> loc,
                   ProfileMode mode);
void profile_solve(std::span<const Complex8> a, Matrix<Complex8> b,
                   std::span<const std::int32_t> loc, ProfileMode mode);

/// c = A b, both (n, m); A not factored. c(1) = A(1,1) b(1); for j = 2..n: c(j) += sum over
/// i = top(j)..j of A(i,j) b(i), i ascending; then c(i) += A(i,j) b(j), i = top(j)..j-1.
void profile_multiply(std::span<const double> a, Matrix<const double> b, Matrix<double> c,
                      std::span<const std::int32_t> loc);
void profile_multiply(std::span<const Complex8> a, Matrix<const Complex8> b, Matrix<Complex8> c,
                      std::span<const std::int32_t> loc);

} // namespace quelor
