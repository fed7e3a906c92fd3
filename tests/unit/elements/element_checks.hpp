// What the matrix and the forces of any element must satisfy.
#pragma once

#include "numeric/small_matrix.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace quelor {

inline double largest(std::span<const double> values) {
    double most = 0;
    for (const double v : values)
        most = std::max(most, std::abs(v));
    return most;
}

template <int N> void expect_symmetric(const SmallMatrix<N>& k) {
    for (int i = 1; i <= k.rows; ++i)
        for (int j = 1; j < i; ++j)
            EXPECT_NEAR(k(i, j), k(j, i), 1e-13 * largest(k.a)) << i << ' ' << j;
}

/// The tangent k at x against central differences of the force, f(x + h) - f(x - h) over 2 h: with
/// h some 1e-6 of the lengths, truncation (h^2) and rounding (1e-16 / h) stay below the tolerance.
template <int N, class Force>
void expect_tangent(const SmallMatrix<N>& k, std::vector<double> x, Force force, double tolerance) {
    constexpr double h = 1e-6;
    for (int j = 1; j <= k.cols; ++j) {
        double& xj = x[static_cast<std::size_t>(j - 1)];
        const double x0 = xj;
        xj = x0 + h;
        const auto up = force(x);
        xj = x0 - h;
        const auto down = force(x);
        xj = x0;
        for (int i = 1; i <= k.rows; ++i) {
            const auto at = static_cast<std::size_t>(i - 1);
            EXPECT_NEAR(k(i, j), (up[at] - down[at]) / (2 * h), tolerance * largest(k.a))
                << i << ' ' << j;
        }
    }
}

/// Displacements of nodes (6 a node) in the small rigid motion: translation t, rotation w.
inline std::vector<double> rigid_motion(const std::vector<Vec3>& nodes, const Vec3& t,
                                        const Vec3& w) {
    std::vector<double> u;
    for (const Vec3& p : nodes) {
        const Vec3 v = cross_product(w, p).vector;
        for (std::size_t i = 0; i < 3; ++i)
            u.push_back(t[i] + v[i]);
        u.insert(u.end(), w.begin(), w.end());
    }
    return u;
}

/// Equations k u = f of a small model; restrained degrees of freedom have numbers below 0.
struct SmallSystem {
    explicit SmallSystem(int n)
        : k(static_cast<std::size_t>(n), std::vector<double>(static_cast<std::size_t>(n))),
          f(static_cast<std::size_t>(n)) {}
    template <int N> void add(const std::vector<int>& equations, const SmallMatrix<N>& ke) {
        for (std::size_t i = 0; i < equations.size(); ++i)
            for (std::size_t j = 0; j < equations.size(); ++j)
                if (equations[i] >= 0 && equations[j] >= 0)
                    k[static_cast<std::size_t>(equations[i])]
                     [static_cast<std::size_t>(equations[j])] +=
                        ke(static_cast<int>(i) + 1, static_cast<int>(j) + 1);
    }
    /// Elimination without pivots.
    std::vector<double> solve() {
        const std::size_t n = f.size();
        for (std::size_t p = 0; p < n; ++p)
            for (std::size_t i = p + 1; i < n; ++i) {
                const double factor = k[i][p] / k[p][p];
                if (factor == 0) continue;
                for (std::size_t j = p; j < n; ++j)
                    k[i][j] -= factor * k[p][j];
                f[i] -= factor * f[p];
            }
        for (std::size_t i = n; i-- > 0;) {
            for (std::size_t j = i + 1; j < n; ++j)
                f[i] -= k[i][j] * f[j];
            f[i] /= k[i][i];
        }
        return f;
    }

    std::vector<std::vector<double>> k;
    std::vector<double> f;
};

/// p turned by an angle about a unit axis through the origin.
/// Source: Rodrigues' formula.
inline Vec3 turned(const Vec3& p, const Vec3& axis, double angle) {
    Vec3 q = add_scaled({0, 0, 0}, std::cos(angle), p);
    q = add_scaled(q, std::sin(angle), cross_product(axis, p).vector);
    return add_scaled(q, (1 - std::cos(angle)) * dot_product(axis, p), axis);
}

} // namespace quelor
