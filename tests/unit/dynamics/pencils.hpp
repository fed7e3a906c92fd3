// Pairs of symmetric matrices for the tests of the eigensolvers, and LAPACK's answer.
#pragma once

#include "dynamics/eigval.hpp"
#include "fem/eqns.hpp"
#include "fem/formkm.hpp"
#include "kernel/dbfgen.hpp"
#include "numeric/lapack.hpp"

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace quelor {

/// A matrix that owns its elements.
struct Owned {
    Owned(int r, int c)
        : data(static_cast<std::size_t>(r) * static_cast<std::size_t>(c)), rows(r), cols(c) {}
    Matrix<double> view() { return {data.data(), rows, cols}; }
    double& operator()(int i, int j) { return view()(i, j); }

    std::vector<double> data;
    int rows, cols;
};

/// The symmetric matrix of a profile vector in full.
inline Owned full_profile(std::span<const double> a, std::span<const std::int32_t> loc) {
    const int n = static_cast<int>(loc.size()) - 1;
    Owned matrix(n, n);
    for (int j = 1; j <= n; ++j) {
        const std::int32_t begin = loc[static_cast<std::size_t>(j - 1)];
        for (std::int32_t at = begin; at < loc[static_cast<std::size_t>(j)]; ++at)
            matrix(j - (at - begin), j) = matrix(j, j - (at - begin)) =
                a[static_cast<std::size_t>(at - 1)];
    }
    return matrix;
}

/// A copy of an array's values.
inline std::vector<double> values_of(std::string_view name) {
    const auto span = as_span<const double>(find_array(name));
    return {span.begin(), span.end()};
}
/// K or M of the store in full.
inline Owned full_array(std::string_view name) {
    return full_profile(as_span<const double>(find_array(name)),
                        as_span<const std::int32_t>(find_array(kdiag_loc)));
}
/// The mode shapes in the store.
inline Owned shapes_of_modes() {
    const ArrayRef phi = find_array(mode_shapes);
    Owned matrix(phi.rows(), phi.cols());
    matrix.data = values_of(mode_shapes);
    return matrix;
}

inline Owned product(Owned& a, Owned& b, bool transpose_a) {
    const int inner = transpose_a ? a.rows : a.cols;
    Owned c(transpose_a ? a.cols : a.rows, b.cols);
    for (int j = 1; j <= c.cols; ++j)
        for (int r = 1; r <= inner; ++r)
            for (int i = 1; i <= c.rows; ++i)
                c(i, j) += (transpose_a ? a(r, i) : a(i, r)) * b(r, j);
    return c;
}

/// R^T R + shift I of a random square R.
inline Owned random_definite(int n, std::mt19937& random, double shift) {
    Owned r(n, n);
    for (double& x : r.data)
        x = std::uniform_real_distribution(-1.0, 1.0)(random);
    Owned a = product(r, r, true);
    for (int i = 1; i <= n; ++i)
        a(i, i) += shift;
    return a;
}

/// Eigenvalues of K phi = lambda M phi by LAPACK, ascending; with jobz "V" the vectors replace k.
inline std::vector<double> lapack_pencil(const char* jobz, Owned& k, Owned& m) {
    const std::int32_t type = 1, n = k.rows, size = 64 * n;
    std::int32_t info = 0;
    std::vector<double> lambda(static_cast<std::size_t>(n)), work(static_cast<std::size_t>(size));
    dsygv_(&type, jobz, "U", &n, k.data.data(), &n, m.data.data(), &n, lambda.data(), work.data(),
           &size, &info, 1, 1);
    return info == 0 ? lambda : std::vector<double>{};
}
inline std::vector<double> lapack_eigenvalues(Owned k, Owned m) {
    return lapack_pencil("N", k, m);
}

/// Largest |phi^T M phi - I|.
inline double mass_error(Owned& m, Owned& phi) {
    Owned w = product(m, phi, false), g = product(phi, w, true);
    double error = 0;
    for (int j = 1; j <= g.cols; ++j)
        for (int i = 1; i <= g.rows; ++i)
            error = std::max(error, std::abs(g(i, j) - (i == j ? 1 : 0)));
    return error;
}

/// Largest over the modes of |K phi - lambda M phi| / |K phi|, Euclidean norms.
inline double residual(Owned& k, Owned& m, Owned& phi, std::span<const double> lambda) {
    Owned f = product(k, phi, false), w = product(m, phi, false);
    double worst = 0;
    for (int j = 1; j <= phi.cols; ++j) {
        double error = 0, size = 0;
        for (int i = 1; i <= f.rows; ++i) {
            error += std::pow(f(i, j) - lambda[static_cast<std::size_t>(j - 1)] * w(i, j), 2);
            size += f(i, j) * f(i, j);
        }
        worst = std::max(worst, std::sqrt(error / size));
    }
    return worst;
}

} // namespace quelor
