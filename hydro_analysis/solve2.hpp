// Iterative solution of the dense complex panel equations: biconjugate gradients with the diagonal
// as preconditioner.
#pragma once

#include "numeric/types.hpp"

namespace quelor {

/// b := a^-1 b, one right-hand side after the other.
/// a           in      (n,n); in single precision it is widened as it is read
/// b           in/out  (n,nrhs); nrhs may be 0
/// tol         in      a column has converged when |residual| <= tol |b|
/// work        -       at least 9 n values
/// iterations  out     (nrhs) iterations of each column solved; 0 for a zero right-hand side
/// Returns 0, or the 1-based number of the first column that has not converged after n iterations
/// or whose iteration broke down; that column and those after it keep their right-hand sides.
/// Source: [Barrett 1994, sec. 2.3.5]
int solve2(Matrix<const Complex8> a, Matrix<Complex8> b, double tol, std::span<Complex8> work,
           std::span<std::int32_t> iterations);
int solve2(Matrix<const Complex4> a, Matrix<Complex8> b, double tol, std::span<Complex8> work,
           std::span<std::int32_t> iterations);

} // namespace quelor
