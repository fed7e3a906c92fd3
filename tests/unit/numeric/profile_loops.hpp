// The profile algorithms as loops over single numbers, to hold the kernels against bit by bit; and
// profiles of random shape. Complex products and quotients are written out in their parts.
#pragma once

#include "numeric/profile.hpp"

#include <algorithm>
#include <random>

namespace quelor::loops {

inline double times(double x, double y) {
    return x * y;
}
inline Complex8 times(Complex8 x, Complex8 y) {
    return {x.real() * y.real() - x.imag() * y.imag(), x.real() * y.imag() + x.imag() * y.real()};
}
inline double over(double x, double y) {
    return x / y;
}
inline Complex8 over(Complex8 x, Complex8 y) {
    const double a = x.real(), b = x.imag(), c = y.real(), d = y.imag();
    if (std::abs(c) >= std::abs(d)) {
        const double r = d / c, s = c + d * r;
        return {(a + b * r) / s, (b - a * r) / s};
    }
    const double r = c / d, s = c * r + d;
    return {(a * r + b) / s, (b * r - a) / s};
}

template <class T> struct Skyline {
    std::vector<T> a;
    std::vector<std::int32_t> loc{1};

    int n() const { return static_cast<int>(loc.size()) - 1; }
    int top(int j) const { return j - (at(j + 1) - at(j) - 1); }
    std::int32_t at(int j) const { return loc[static_cast<std::size_t>(j - 1)]; }
    T& operator()(int i, int j) { return a[static_cast<std::size_t>(at(j) - 1 + j - i)]; }
    T element(int i, int j) { return i > j ? element(j, i) : i < top(j) ? T{} : (*this)(i, j); }

    /// A = L D L^T; the equation with a zero pivot, or 0.
    int factor() {
        for (int j = 2; j <= n(); ++j) {
            for (int i = top(j); i < j; ++i) {
                T sum{};
                for (int r = std::max(top(j), top(i)); r < i; ++r)
                    sum += times((*this)(r, i), (*this)(r, j));
                (*this)(i, j) -= sum;
            }
            T acc{};
            for (int i = top(j); i < j; ++i) {
                const T t = over((*this)(i, j), (*this)(i, i));
                acc += times(t, (*this)(i, j));
                (*this)(i, j) = t;
            }
            if (((*this)(j, j) -= acc) == T{}) return j;
        }
        return 0;
    }
    void forward(std::span<T> b) {
        for (int j = 2; j <= n(); ++j) {
            T sum{};
            for (int i = top(j); i < j; ++i)
                sum += times((*this)(i, j), b[static_cast<std::size_t>(i - 1)]);
            b[static_cast<std::size_t>(j - 1)] -= sum;
        }
    }
    void backward(std::span<T> b) {
        for (int i = 1; i <= n(); ++i)
            b[static_cast<std::size_t>(i - 1)] =
                over(b[static_cast<std::size_t>(i - 1)], (*this)(i, i));
        for (int j = n(); j >= 1; --j)
            for (int i = top(j); i < j; ++i)
                b[static_cast<std::size_t>(i - 1)] -=
                    times(b[static_cast<std::size_t>(j - 1)], (*this)(i, j));
    }
    std::vector<T> product(std::span<const T> b) {
        std::vector<T> c(b.size());
        c[0] = times((*this)(1, 1), b[0]);
        for (int j = 2; j <= n(); ++j) {
            const T x = b[static_cast<std::size_t>(j - 1)];
            T dot{};
            for (int i = top(j); i <= j; ++i)
                dot += times((*this)(i, j), b[static_cast<std::size_t>(i - 1)]);
            c[static_cast<std::size_t>(j - 1)] += dot;
            for (int i = top(j); i < j; ++i)
                c[static_cast<std::size_t>(i - 1)] += times((*this)(i, j), x);
        }
        return c;
    }
};

using Random = std::mt19937;

inline void draw(Random& random, double& x) {
    x = std::uniform_real_distribution(-1.0, 1.0)(random);
}
inline void draw(Random& random, Complex8& x) {
    double re, im;
    draw(random, re);
    draw(random, im);
    x = {re, im};
}

/// Columns of heights height(j), cut at row 1; the diagonals dominate their columns.
template <class T, class Height> Skyline<T> random_skyline(int n, Random& random, Height height) {
    Skyline<T> m;
    for (int j = 1; j <= n; ++j) {
        const int h = std::clamp(static_cast<int>(height(j)), 0, j - 1);
        m.loc.push_back(m.loc.back() + h + 1);
        m.a.resize(static_cast<std::size_t>(m.loc.back() - 1));
        for (int i = j - h; i <= j; ++i)
            draw(random, m(i, j));
        m(j, j) += 3.0 + h;
    }
    return m;
}
template <class T> std::vector<T> random_numbers(std::size_t n, Random& random) {
    std::vector<T> x(n);
    for (T& value : x)
        draw(random, value);
    return x;
}

} // namespace quelor::loops
