// Quadrature of the defining integrals of the free-surface Green functions, in long double and with
// nothing of the library: what the fits and series are held against.
#pragma once

#include <cmath>
#include <functional>
#include <numbers>
#include <vector>

namespace quadrature {

using Real = long double;
using Function = std::function<Real(Real)>;

struct GaussRule {
    std::vector<Real> x, w;
};

/// Gauss-Legendre nodes and weights on [-1, 1], by Newton's method on the Legendre polynomial.
inline GaussRule gauss_legendre(int n) {
    GaussRule rule;
    for (int i = 0; i < n; ++i) {
        Real z = std::cos(std::numbers::pi_v<Real> * (i + 0.75L) / (n + 0.5L)), slope = 1;
        for (int pass = 0; pass < 20; ++pass) {
            Real p = 1, previous = 0;
            for (int j = 0; j < n; ++j) {
                const Real next = ((2 * j + 1) * z * p - j * previous) / (j + 1);
                previous = p;
                p = next;
            }
            slope = n * (z * p - previous) / (z * z - 1);
            z -= p / slope;
        }
        rule.x.push_back(z);
        rule.w.push_back(2 / ((1 - z * z) * slope * slope));
    }
    return rule;
}

inline Real integral(const Function& f, Real a, Real b, int panels = 1) {
    static const GaussRule rule = gauss_legendre(24);
    Real sum = 0;
    const Real half = (b - a) / (2 * panels);
    for (int panel = 0; panel < panels; ++panel)
        for (std::size_t i = 0; i < rule.x.size(); ++i)
            sum += rule.w[i] * f(a + half * (2 * panel + 1 + rule.x[i]));
    return half * sum;
}

/// Limit of a sequence of partial sums by the epsilon algorithm [Wynn 1956].
inline Real epsilon_limit(std::vector<Real> sums) {
    std::vector<Real> previous(sums.size() + 1, 0);
    Real limit = sums.back();
    for (std::size_t column = 1; sums.size() > 1; ++column) {
        std::vector<Real> next;
        for (std::size_t i = 0; i + 1 < sums.size(); ++i) {
            const Real difference = sums[i + 1] - sums[i];
            if (difference == 0) return sums[i];
            next.push_back(previous[i + 1] + 1 / difference);
        }
        previous = sums;
        sums = next;
        if (column % 2 == 0) limit = sums.back();
    }
    return limit;
}

/// int_a^inf h(k) dk of an h that decays or oscillates with half period pi/R: panels that grow by
/// half until they are half periods, then the limit of the alternating sums.
inline Real tail(const Function& h, Real a, Real R) {
    const Real half_period = std::numbers::pi_v<Real> / R;
    Real sum = 0, width = std::min(0.5L * a, half_period);
    while (width < half_period) {
        const Real part = integral(h, a, a + width);
        sum += part;
        a += width;
        width *= 1.5L;
        if (std::abs(part) < 1e-22L * std::abs(sum)) return sum;
    }
    std::vector<Real> sums;
    for (int i = 0; i < 60; ++i) {
        const Real part = integral(h, a, a + half_period);
        sum += part;
        a += half_period;
        if (std::abs(part) < 1e-22L * std::abs(sum)) return sum;
        if (i >= 10) sums.push_back(sum);
    }
    return epsilon_limit(sums);
}

/// PV int_0^inf g(k) J(kR)/(k - pole) dk with the Bessel function of order 0 or 1, R > 0: the odd
/// part about the pole on [0, 2 pole] and the tail.
inline Real hankel_principal_value(const Function& g, Real pole, Real R, int order) {
    const auto h = [&](Real k) { return g(k) * (order == 0 ? j0l(k * R) : j1l(k * R)); };
    const auto odd = [&](Real t) { return (h(pole + t) - h(pole - t)) / t; };
    const int panels = 2 + static_cast<int>(pole * R / 4);
    return integral(odd, 0, pole, panels) +
           tail([&](Real k) { return h(k) / (k - pole); }, 2 * pole, R);
}

} // namespace quadrature
