// Matrices and vectors of one element: small, of fixed greatest size, with storage of their own. A
// numeric kernel.
#pragma once

#include "numeric/types.hpp"
#include "numeric/vectors.hpp"

namespace quelor {

/// Matrix of at most R x C; 1-based with round brackets, column-major without gaps, zero at first.
template <int R, int C = R> struct SmallMatrix {
    int rows = R, cols = C;
    std::array<double, as_size(R) * C> a{};

    double& operator()(int i, int j) { return a[at(i, j)]; }
    double operator()(int i, int j) const { return a[at(i, j)]; }
    Matrix<const double> view() const { return {a.data(), rows, cols}; }

private:
    std::size_t at(int i, int j) const {
        assert(1 <= i && i <= rows && 1 <= j && j <= cols);
        return nth(i) + nth(j) * as_size(rows);
    }
};

template <int N> std::array<double, N> diagonal_of(const SmallMatrix<N>& k) {
    std::array<double, N> d{};
    for (int i = 1; i <= k.rows; ++i)
        d[nth(i)] = k(i, i);
    return d;
}

/// m v
template <int R, int C>
std::array<double, R> product(const SmallMatrix<R, C>& m, std::span<const double> v) {
    std::array<double, R> result{};
    for (int j = 1; j <= m.cols; ++j)
        for (int i = 1; i <= m.rows; ++i)
            result[nth(i)] += m(i, j) * v[nth(j)];
    return result;
}

/// t^T v
template <int R, int C>
std::array<double, C> transposed_product(const SmallMatrix<R, C>& t, std::span<const double> v) {
    std::array<double, C> result{};
    for (int j = 1; j <= t.cols; ++j)
        for (int i = 1; i <= t.rows; ++i)
            result[nth(j)] += t(i, j) * v[nth(i)];
    return result;
}

/// t^T k t
template <int R, int C>
SmallMatrix<C> congruent(const SmallMatrix<R>& k, const SmallMatrix<R, C>& t) {
    SmallMatrix<R, C> kt;
    kt.cols = t.cols;
    for (int j = 1; j <= t.cols; ++j)
        for (int q = 1; q <= t.rows; ++q) {
            if (t(q, j) == 0) continue;
            for (int i = 1; i <= k.rows; ++i)
                kt(i, j) += k(i, q) * t(q, j);
        }
    SmallMatrix<C> result;
    result.rows = result.cols = t.cols;
    for (int j = 1; j <= t.cols; ++j)
        for (int i = 1; i <= t.cols; ++i)
            for (int p = 1; p <= t.rows; ++p)
                result(i, j) += t(p, i) * kt(p, j);
    return result;
}

} // namespace quelor
