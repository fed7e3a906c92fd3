// Gauss quadrature in long double, with nothing of the library.
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

} // namespace quadrature
