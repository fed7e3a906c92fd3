// The generalised Jacobi method for K phi = lambda M phi with full symmetric matrices: both are
// made diagonal by one sequence of plane transformations.   Source: [Falk 1960], [Bathe 1976]
#pragma once

#include "numeric/types.hpp"

namespace quelor {

enum class JacobiStatus {
    converged,
    maximum_sweeps,     ///< not converged; the results are those of the last sweep
    not_finite,         ///< an element of K or M, or a result, is not a finite number
    negative_stiffness, ///< a diagonal of K below 0 on entry
    nonpositive_mass,   ///< a diagonal of M not above 0 on entry
    not_definite ///< found in a transformation, or by a diagonal of M that came out not positive
};
constexpr bool has_failed(JacobiStatus status) {
    return status != JacobiStatus::converged && status != JacobiStatus::maximum_sweeps;
}

struct JacobiResult {
    JacobiStatus status = JacobiStatus::converged;
    int sweeps = 0;
};

/// All eigenvalues and vectors of K phi = lambda M phi, K positive semidefinite, M positive
/// definite, both symmetric (n,n); only the upper triangles are read.
/// k, m    in/out  on exit the transformed matrices, diagonal but for the tolerance
/// phi     out     (n,n): one vector a column, phi^T M phi = I
/// lambda  out     n eigenvalues, ascending; equal ones stay in the order of their columns
/// tol     in      sought in the eigenvalues, |new - old| <= tol new, and in K and M, where
///                 A(i,j)^2 <= tol^2 A(i,i) A(j,j) for all i < j
/// Sweep s = 1, 2, ... up to maxit (at least one) goes through the pairs i < j in row order and
/// transforms those with A(i,j)^2 > 10^(-4s) A(i,i) A(j,j) in K or M; when it has converged, a last
/// one, which is not counted, takes those above 1e-26. On failure the results are not defined.
/// Convergence is quadratic, so that converged results are good to rounding.
JacobiResult jacobi_pencil(Matrix<double> k, Matrix<double> m, Matrix<double> phi,
                           std::span<double> lambda, double tol, int maxit);

} // namespace quelor
