// Direct solution of the panel equations and the mixed-precision product.
#include "hydro_analysis/csolve.hpp"

#include <algorithm>

#include "numeric/blas_memory.hpp"
#include "numeric/lapack.hpp"
#include "numeric/vecmath.hpp"

namespace quelor {

int csolve_factor_sp(Matrix<Complex4> a, std::span<std::int32_t> ipiv) {
    require_blas_memory();
    std::int32_t info = 0;
    cgetrf_(&a.rows, &a.rows, a.data, &a.rows, ipiv.data(), &info);
    return info;
}

void csolve_solve_sp(Matrix<const Complex4> a, Matrix<Complex4> b,
                     std::span<const std::int32_t> ipiv) {
    if (b.cols == 0) return;
    std::int32_t info = 0;
    cgetrs_("N", &a.rows, &b.cols, a.data, &a.rows, ipiv.data(), b.data, &b.rows, &info, 1);
}

int csolve_factor(Matrix<Complex8> a, std::span<std::int32_t> ipiv) {
    require_blas_memory();
    std::int32_t info = 0;
    zgetrf_(&a.rows, &a.rows, a.data, &a.rows, ipiv.data(), &info);
    return info;
}

void csolve_solve(Matrix<const Complex8> a, Matrix<Complex8> b,
                  std::span<const std::int32_t> ipiv) {
    if (b.cols == 0) return;
    std::int32_t info = 0;
    zgetrs_("N", &a.rows, &b.cols, a.data, &a.rows, ipiv.data(), b.data, &b.rows, &info, 1);
}

namespace {

// y(i) += a(i) x for n complex numbers, the parts side by side. Two additions, with the negative of
// Im x, rather than a difference and a sum: GCC 12 fuses the latter pair into one multiply-add in
// spite of -ffp-contract=off.
QUELOR_CLONES
void add_column(std::ptrdiff_t n, const float* __restrict a, float x_re, float x_im,
                double* __restrict y) {
    const float minus_x_im = -x_im;
    for (std::ptrdiff_t i = 0; i < n; ++i) {
        const float re = a[2 * i] * x_re + a[2 * i + 1] * minus_x_im;
        const float im = a[2 * i + 1] * x_re + a[2 * i] * x_im;
        y[2 * i] += static_cast<double>(re);
        y[2 * i + 1] += static_cast<double>(im);
    }
}

} // namespace

// Blocks of rows keep the sums of all columns of y in the cache while a passes once.
void multiply_mixed(Matrix<const Complex4> a, Matrix<const Complex4> x, Matrix<Complex8> y) {
    constexpr int block = 512;
    std::ranges::fill(y.all(), Complex8{});
    for (int first = 1; first <= a.rows; first += block) {
        const int n = std::min(block, a.rows - first + 1);
        for (int j = 1; j <= a.cols; ++j) {
            const float* column = reinterpret_cast<const float*>(&a(first, j));
            for (int c = 1; c <= x.cols; ++c) {
                add_column(n, column, x(j, c).real(), x(j, c).imag(),
                           reinterpret_cast<double*>(&y(first, c)));
            }
        }
    }
}

} // namespace quelor
