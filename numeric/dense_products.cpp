// Products of full matrices by the BLAS; integers by columns.
#include "numeric/dense_products.hpp"

#include <algorithm>

#include "numeric/blas_memory.hpp"
#include "numeric/lapack.hpp"
#include "numeric/vecmath.hpp"

namespace quelor {

namespace {

struct Factors {
    const char* op;
    std::int32_t m, n, k, lda, ldb, ldc;
};

void gemm(const Factors& f, double alpha, const double* a, const double* b, double beta,
          double* c) {
    require_blas_memory();
    dgemm_(f.op, "N", &f.m, &f.n, &f.k, &alpha, a, &f.lda, b, &f.ldb, &beta, c, &f.ldc, 1, 1);
}
void gemm(const Factors& f, Complex8 alpha, const Complex8* a, const Complex8* b, Complex8 beta,
          Complex8* c) {
    require_blas_memory();
    zgemm_(f.op, "N", &f.m, &f.n, &f.k, &alpha, a, &f.lda, b, &f.ldb, &beta, c, &f.ldc, 1, 1);
}

template <class T>
void multiply(Matrix<const T> a, Matrix<const T> b, Matrix<T> c, bool transposed) {
    const Factors f{.op = transposed ? "T" : "N",
                    .m = c.rows,
                    .n = c.cols,
                    .k = b.rows,
                    .lda = a.rows,
                    .ldb = b.rows,
                    .ldc = c.rows};
    gemm(f, T{1}, a.data, b.data, T{}, c.data);
}

template <class T> void subtract(MatrixBlock<const T> a, MatrixBlock<const T> b, MatrixBlock<T> c) {
    if (c.rows == 0 || c.cols == 0 || a.cols == 0) return;
    const Factors f{.op = "N",
                    .m = c.rows,
                    .n = c.cols,
                    .k = a.cols,
                    .lda = a.stride,
                    .ldb = b.stride,
                    .ldc = c.stride};
    gemm(f, T{-1}, a.data, b.data, T{1}, c.data);
}

// Unsigned numbers wrap around without being undefined.
QUELOR_CLONES
void add_column(int n, const std::int32_t* a, std::int32_t factor, std::int32_t* y) {
    const auto x = static_cast<std::uint32_t>(factor);
    for (int i = 0; i < n; ++i)
        y[i] = static_cast<std::int32_t>(static_cast<std::uint32_t>(y[i]) +
                                         static_cast<std::uint32_t>(a[i]) * x);
}
QUELOR_CLONES
std::int32_t column_product(int n, const std::int32_t* a, const std::int32_t* b) {
    std::uint32_t sum = 0;
    for (int i = 0; i < n; ++i)
        sum += static_cast<std::uint32_t>(a[i]) * static_cast<std::uint32_t>(b[i]);
    return static_cast<std::int32_t>(sum);
}

} // namespace

void mat_mult(Matrix<const double> a, Matrix<const double> b, Matrix<double> c, bool transposed) {
    multiply(a, b, c, transposed);
}
void mat_mult(Matrix<const Complex8> a, Matrix<const Complex8> b, Matrix<Complex8> c,
              bool transposed) {
    multiply(a, b, c, transposed);
}

// Four kilobytes of a column of c stay in the cache while a passes.
void mat_mult(Matrix<const std::int32_t> a, Matrix<const std::int32_t> b, Matrix<std::int32_t> c,
              bool transposed) {
    if (transposed) {
        for (int j = 1; j <= c.cols; ++j)
            for (int i = 1; i <= c.rows; ++i)
                c(i, j) = column_product(b.rows, &a(1, i), &b(1, j));
        return;
    }
    constexpr int block = 1024;
    std::ranges::fill(c.all(), 0);
    for (int first = 1; first <= c.rows; first += block)
        for (int j = 1; j <= c.cols; ++j)
            for (int k = 1; k <= b.rows; ++k)
                add_column(std::min(block, c.rows - first + 1), &a(first, k), b(k, j),
                           &c(first, j));
}

void subtract_product(MatrixBlock<const double> a, MatrixBlock<const double> b,
                      MatrixBlock<double> c) {
    subtract(a, b, c);
}
void subtract_product(MatrixBlock<const Complex8> a, MatrixBlock<const Complex8> b,
                      MatrixBlock<Complex8> c) {
    subtract(a, b, c);
}

} // namespace quelor
