// Pieces of the subspace iteration for the lowest modes of K phi = lambda M phi: starting vectors,
// and the products of the projection.   Source: [Bathe 1976, ch. 12]
#pragma once

#include "numeric/types.hpp"

namespace quelor {

/// The generator of random starting vectors, x := (49297 + 9301 x) mod 233280; x is not negative.
/// Returns the new x.
double next_random(std::int64_t& x);

/// column := diagonal of M divided by its largest modulus; zero when M is.
void start_from_mass(std::span<const double> m_diagonal, std::span<double> column);
/// Columns first..q of x become unit vectors at the equations of smallest K(i,i)/M(i,i), in
/// ascending order of the ratio, the lower equation first at a tie; equations with M(i,i) = 0 do
/// not count. Returns the number of equations that count; when it is below q nothing is set.
int start_from_ratios(std::span<const double> k_diagonal, std::span<const double> m_diagonal,
                      Matrix<double> x, int first);

/// One pass of Gram-Schmidt: takes the parts along columns 1 to j - 1 of x, whose norms x^T M x are
/// 1 or 0, out of column j. w  in  M x for column j, n values;  c  -  j - 1 values
void remove_components(Matrix<double> x, int j, std::span<const double> w, std::span<double> c);
/// x and w = M x divided by the root of x^T w, which is returned; 0, and nothing is done, when that
/// is not possible.
double scale_to_unit(std::span<double> x, std::span<double> w);

/// x := x q by way of w; x, w (n,q), q (q,q)
void combine(Matrix<double> x, Matrix<const double> q, Matrix<double> w);
/// w := D x, D diagonal; x, w (n,q)
void scale_rows(std::span<const double> d, Matrix<const double> x, Matrix<double> w);

/// For each eigenvalue whether |new - old| <= tol |new|; the numbers (from 1) of those for which it
/// holds go to the front of `list`. Returns how many there are.
int compare_eigenvalues(std::span<const double> now, std::span<const double> before, double tol,
                        std::span<std::int32_t> list);

} // namespace quelor
