// Biconjugate gradients for a x = b with the preconditioner d = diag(a). The shadow vectors rt, zt,
// pt belong to the conjugate transpose of a; (u, v) = sum of conj(u) v.
#include "hydro_analysis/solve2.hpp"

#include <algorithm>
#include <array>
#include <cmath>

namespace quelor {

namespace {

using Vector = std::span<Complex8>;

struct Workspace {
    Vector d, r, rt, p, pt, q, qt, x, z;
};

Workspace split(Vector work, std::size_t n) {
    const auto part = [&](std::size_t k) { return work.subspan(k * n, n); };
    return {part(0), part(1), part(2), part(3), part(4), part(5), part(6), part(7), part(8)};
}

// Products without the special cases that the standard's complex product keeps for infinities.
Complex8 times(Complex8 a, Complex8 b) {
    return {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()};
}

// The vectors u and x may be columns of the matrix in single precision, which widening makes exact.
template <class T> Complex8 inner(std::span<T> u, std::span<const Complex8> v) {
    Complex8 sum = 0;
    for (std::size_t i = 0; i < u.size(); ++i)
        sum += times(std::conj(Complex8(u[i])), v[i]);
    return sum;
}

double norm2(std::span<const Complex8> u) {
    double sum = 0;
    for (const Complex8& value : u)
        sum += std::norm(value);
    return sum;
}

// y += factor x
template <class T> void add(Vector y, Complex8 factor, std::span<T> x) {
    for (std::size_t i = 0; i < y.size(); ++i)
        y[i] += times(factor, Complex8(x[i]));
}

// q = a p and qt = a^H pt in one sweep, a block of rows at a time so that q and pt stay in the
// cache.
template <class T> void multiply_both(Matrix<const T> a, const Workspace& w) {
    constexpr int block = 750;
    std::ranges::fill(w.q, Complex8{});
    std::ranges::fill(w.qt, Complex8{});
    for (int first = 0; first < a.rows; first += block) {
        const auto start = as_size(first);
        const auto n = as_size(std::min(block, a.rows - first));
        for (int j = 1; j <= a.cols; ++j) {
            const auto column = a.col(j).subspan(start, n);
            const auto at = nth(j);
            add(w.q.subspan(start, n), w.p[at], column);
            w.qt[at] += inner(column, w.pt.subspan(start, n));
        }
    }
}

// Solves for w.x with right-hand side b; the number of iterations, or -1.
template <class T>
int solve_column(Matrix<const T> a, std::span<const Complex8> b, double tol, const Workspace& w) {
    const std::size_t n = b.size();
    const double bnorm = norm2(b);
    std::ranges::fill(w.x, Complex8{});
    if (bnorm == 0) return 0;
    for (std::size_t i = 0; i < n; ++i) {
        w.r[i] = b[i];
        w.rt[i] = std::conj(b[i]);
        w.p[i] = w.r[i] / w.d[i];
        w.pt[i] = w.rt[i] / std::conj(w.d[i]);
    }
    Complex8 rho = inner(w.pt, w.r);
    for (int iteration = 1; iteration <= a.rows; ++iteration) {
        multiply_both(a, w);
        const Complex8 alpha = rho / inner(w.pt, w.q);
        if (!std::isfinite(std::norm(alpha))) return -1;
        add(w.x, alpha, w.p);
        add(w.r, -alpha, w.q);
        add(w.rt, -std::conj(alpha), w.qt);
        if (std::sqrt(norm2(w.r) / bnorm) <= tol) return iteration;
        Complex8 rho_new = 0;
        for (std::size_t i = 0; i < n; ++i) {
            w.z[i] = w.r[i] / w.d[i];
            rho_new += times(std::conj(w.rt[i]), w.z[i]); // (zt, r), zt = rt / conj(d)
        }
        const Complex8 beta = rho_new / rho;
        if (!std::isfinite(std::norm(beta))) return -1;
        for (std::size_t i = 0; i < n; ++i) {
            w.p[i] = w.z[i] + times(beta, w.p[i]);
            w.pt[i] = w.rt[i] / std::conj(w.d[i]) + times(std::conj(beta), w.pt[i]);
        }
        rho = rho_new;
    }
    return -1;
}

template <class T>
int solve_columns(Matrix<const T> a, Matrix<Complex8> b, double tol, std::span<Complex8> work,
                  std::span<std::int32_t> iterations) {
    if (b.cols == 0) return 0;
    const Workspace w = split(work, as_size(a.rows));
    for (int i = 1; i <= a.rows; ++i)
        w.d[nth(i)] = a(i, i);
    for (int c = 1; c <= b.cols; ++c) {
        const int count = solve_column(a, b.col(c), tol, w);
        if (count < 0) return c;
        iterations[nth(c)] = count;
        std::ranges::copy(w.x, b.col(c).begin());
    }
    return 0;
}

} // namespace

int solve2(Matrix<const Complex8> a, Matrix<Complex8> b, double tol, std::span<Complex8> work,
           std::span<std::int32_t> iterations) {
    return solve_columns(a, b, tol, work, iterations);
}
int solve2(Matrix<const Complex4> a, Matrix<Complex8> b, double tol, std::span<Complex8> work,
           std::span<std::int32_t> iterations) {
    return solve_columns(a, b, tol, work, iterations);
}

} // namespace quelor
