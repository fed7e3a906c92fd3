// Direct solution of the dense complex panel equations by LAPACK, and the product that turns source
// strengths into potentials.
#pragma once

#include "numeric/types.hpp"

namespace quelor {

/// a := P L U in single precision.
/// a     in/out  (n,n)
/// ipiv  out     n row interchanges, 1-based
/// Returns 0, or k if pivot k is exactly zero; the factors then divide by zero when solved with.
int csolve_factor_sp(Matrix<Complex4> a, std::span<std::int32_t> ipiv);

/// b := a^-1 b with the factors of csolve_factor_sp, for all columns of b (n,nrhs); nrhs may be 0.
void csolve_solve_sp(Matrix<const Complex4> a, Matrix<Complex4> b,
                     std::span<const std::int32_t> ipiv);

/// The same in double precision.
int csolve_factor(Matrix<Complex8> a, std::span<std::int32_t> ipiv);
void csolve_solve(Matrix<const Complex8> a, Matrix<Complex8> b, std::span<const std::int32_t> ipiv);

/// y = a x. Each product of two complex numbers is taken in single precision and added in double
/// precision, in the order of the columns of a; the first column's products are written.
/// a  in  (n,n);  x  in  (n,m);  y  out  (n,m)
void multiply_mixed(Matrix<const Complex4> a, Matrix<const Complex4> x, Matrix<Complex8> y);

} // namespace quelor
