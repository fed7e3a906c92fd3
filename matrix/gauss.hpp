// Gauss elimination on full matrices, without pivoting or with a row order, by blocks of columns.
#pragma once

#include "numeric/types.hpp"

namespace quelor {

/// A diagonal of the factorisation: `after` = `before` - `subtracted`, the sum over k < j of
/// L(j,k) U(k,j) in ascending k.
struct GaussDiagonal {
    double before = 0, subtracted = 0, after = 0;
};

/// A = L U in place, L with a unit diagonal. There is no test: a zero pivot is divided by.
/// a          in/out  (n,n)
/// diagonals  out     n, of the real matrix
void gauss_factor(Matrix<double> a, std::span<GaussDiagonal> diagonals);
void gauss_factor(Matrix<Complex8> a);

/// The same with a row order: pivot j is the largest |A(i,j)| scale(i) of the rows not yet used,
/// the first of equal ones. On return row i of `a` holds row i of L U, i = 1..n: equation order(i)
/// of A. gauss_restore puts the rows back.
/// scale  in   n, the reciprocal of the largest |A(i,j)| in row i
/// order  out  n, 1-based
void gauss_factor(Matrix<double> a, std::span<GaussDiagonal> diagonals,
                  std::span<const double> scale, std::span<std::int32_t> order);
void gauss_factor(Matrix<Complex8> a, std::span<const double> scale, std::span<std::int32_t> order);
template <class T> void gauss_restore(Matrix<T> a, std::span<const std::int32_t> order);

/// b := (L U)^-1 b for every column of b (n, any number), whose rows stand in the order of the
/// factors. Rows of b above `first` are zero on entry.
void gauss_solve(Matrix<const double> factors, Matrix<double> b, int first = 1);
void gauss_solve(Matrix<const Complex8> factors, Matrix<Complex8> b, int first = 1);

/// inverse := A^-1; the factors remain in a.
/// diagonals  out  n
void gauss_invert(Matrix<double> a, Matrix<double> inverse, std::span<GaussDiagonal> diagonals);
void gauss_invert(Matrix<Complex8> a, Matrix<Complex8> inverse);

} // namespace quelor
