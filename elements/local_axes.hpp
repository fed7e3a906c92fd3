// Matrices and vectors of elements from their local axes to the global ones. A numeric kernel.
// Degrees of freedom come in threes along x, y, z: the translations of a node, then its rotations.
#pragma once

#include "numeric/small_matrix.hpp"

namespace quelor {

/// Unit vectors of the local axes.
using LocalAxes = std::array<Vec3, 3>;

/// r^T k r, with r the block-diagonal matrix of the axes.
template <int N> SmallMatrix<N> to_global(const SmallMatrix<N>& k, const LocalAxes& axes) {
    const auto row = [&](int p, int i) { return axes[as_size(p)][as_size(i)]; };
    SmallMatrix<N> result;
    for (int bj = 1; bj < N; bj += 3)
        for (int bi = 1; bi < N; bi += 3)
            for (int j = 0; j < 3; ++j) {
                std::array<double, 3> kr{}; // column j of the block times the axes
                for (int q = 0; q < 3; ++q)
                    for (int p = 0; p < 3; ++p)
                        kr[as_size(p)] += k(bi + p, bj + q) * row(q, j);
                for (int i = 0; i < 3; ++i)
                    result(bi + i, bj + j) =
                        row(0, i) * kr[0] + row(1, i) * kr[1] + row(2, i) * kr[2];
            }
    return result;
}

/// r^T f
template <std::size_t N>
std::array<double, N> to_global(const std::array<double, N>& f, const LocalAxes& axes) {
    std::array<double, N> result{};
    for (std::size_t b = 0; b < N; b += 3)
        for (std::size_t i = 0; i < 3; ++i)
            result[b + i] = axes[0][i] * f[b] + axes[1][i] * f[b + 1] + axes[2][i] * f[b + 2];
    return result;
}

/// r u
template <std::size_t N>
std::array<double, N> to_local(const std::array<double, N>& u, const LocalAxes& axes) {
    std::array<double, N> result{};
    for (std::size_t b = 0; b < N; b += 3)
        for (std::size_t i = 0; i < 3; ++i)
            result[b + i] = dot_product(axes[i], {u[b], u[b + 1], u[b + 2]});
    return result;
}

} // namespace quelor
