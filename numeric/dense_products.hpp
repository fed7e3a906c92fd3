// Products of full column-major matrices.
#pragma once

#include "numeric/types.hpp"

namespace quelor {

/// C = A B, or Transpose(A) B; C is written, not added to.
/// a  in   (m,k), transposed (k,m);  b  in  (k,n);  c  out  (m,n), not overlapping the others
/// The real and complex product is that of the BLAS. The integer one is kept to 32 bits: what does
/// not fit wraps around. Complex numbers are transposed without conjugation.
void mat_mult(Matrix<const double> a, Matrix<const double> b, Matrix<double> c, bool transposed);
void mat_mult(Matrix<const Complex8> a, Matrix<const Complex8> b, Matrix<Complex8> c,
              bool transposed);
void mat_mult(Matrix<const std::int32_t> a, Matrix<const std::int32_t> b, Matrix<std::int32_t> c,
              bool transposed);

/// A block of a larger matrix: its first element, its shape and the rows of the whole.
template <class T> struct MatrixBlock {
    T* data;
    int rows, cols, stride;
};
/// c -= a b
void subtract_product(MatrixBlock<const double> a, MatrixBlock<const double> b,
                      MatrixBlock<double> c);
void subtract_product(MatrixBlock<const Complex8> a, MatrixBlock<const Complex8> b,
                      MatrixBlock<Complex8> c);

} // namespace quelor
