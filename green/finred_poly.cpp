// Polynomials of the smooth part by quadrature of its integrals on Chebyshev nodes.
//
// The principal values are the real parts of integrals along a path that passes above the poles at
// k = 1 and k = k0: every other factor is real on the real axis, so the half residues are
// imaginary.
#include "green/finred_poly.hpp"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <vector>

namespace quelor {

namespace {

using Complex = std::complex<double>;

constexpr int gauss_order = 16;
constexpr double decay = 32.0; // the integrands fall at least as exp(-k h); exp(-32) = 1e-14
constexpr double path_slope = 0.5;
constexpr int t_nodes = 11, p_nodes = 14, q_nodes = 20; // the expansions reach 1e-13 there

/// Points and complex weights of the path of integration.
struct Path {
    std::vector<Complex> k, weight;
};

struct GaussRule {
    std::array<double, gauss_order> x, w;
};

/// Gauss-Legendre points and weights on (-1, 1), by Newton's iteration on the Legendre polynomial.
GaussRule gauss_rule() {
    GaussRule rule{};
    for (std::size_t i = 0; i < gauss_order; ++i) {
        double x =
            std::cos(std::numbers::pi * (static_cast<double>(i) + 0.75) / (gauss_order + 0.5));
        double slope = 0.0;
        for (int round = 0; round < 8; ++round) {
            const double p = std::legendre(gauss_order, x);
            slope = gauss_order * (std::legendre(gauss_order - 1, x) - x * p) / (1.0 - x * x);
            x -= p / slope;
        }
        rule.x[i] = x;
        rule.w[i] = 2.0 / ((1.0 - x * x) * slope * slope);
    }
    return rule;
}

/// Adds the panel from a to b of the real axis, lifted to the tent over (0, 2 k0).
void add_panel(double a, double b, double k0, bool lifted, const GaussRule& rule, Path& path) {
    const double slope = !lifted || a >= 2.0 * k0 ? 0.0 : a < k0 ? path_slope : -path_slope;
    const double origin = a < k0 ? 0.0 : 2.0 * k0; // where the slanted line meets the axis
    for (std::size_t i = 0; i < gauss_order; ++i) {
        const double x = 0.5 * (a + b) + 0.5 * (b - a) * rule.x[i];
        path.k.emplace_back(x, slope * (x - origin));
        path.weight.push_back(0.5 * (b - a) * rule.w[i] * Complex(1.0, slope));
    }
}

/// Panels as long as half their distance from the origin, at most 1/h, with corners at k0 and 2 k0.
/// Where the factor exp(-k h) has died out before the poles are reached the path stays real.
Path integration_path(double h, double k0) {
    const GaussRule rule = gauss_rule();
    const double end = decay / h, shortest = 0.125 * std::min(1.0, 1.0 / h);
    const bool lifted = end > 1.0;
    Path path;
    for (double a = 0.0, b = 0.0; a < end; a = b) {
        b = a + std::min(std::max(0.5 * a, shortest), 1.0 / h);
        for (const double corner : {k0, 2.0 * k0})
            if (a < corner * (1.0 - 1e-9) && b > corner * (1.0 - 1e-9)) b = corner;
        add_panel(a, b, k0, lifted, rule, path);
    }
    return path;
}

/// J0 of complex argument, |z| <= 20: midpoint rule on J0 = (1/pi) int_0^pi cos(z cos a) da, whose
/// error (|z|/2)^2n/(2n)! is 1e-19 at n = 28.
Complex bessel_j0(Complex z) {
    constexpr int n = 28;
    Complex sum = 0.0;
    for (int i = 0; i < n / 2; ++i) {
        const double factor = std::cos((i + 0.5) * std::numbers::pi / n);
        sum += z.imag() == 0.0 ? Complex(std::cos(z.real() * factor)) : std::cos(z * factor);
    }
    return sum * (2.0 / n);
}

/// n(k) = (k - 1) - (k + 1) exp(-2kh), without cancellation for small k h.
Complex denominator(Complex k, double h) {
    const Complex E = std::exp(-2.0 * k * h);
    return k * 2.0 * std::exp(-k * h) * std::sinh(k * h) - (1.0 + E);
}

/// Integrand of p at R = 0 and y = (D/h)^2.
Complex p_integrand(Complex k, double y, double h) {
    const double D = h * std::sqrt(y);
    return (k + 1.0) * (std::exp(-k * (2.0 * h - D)) + std::exp(-k * (2.0 * h + D))) /
           denominator(k, h);
}

/// Integrand of q at R = 0 and u = B/h - 1.
Complex q_integrand(Complex k, double u, double h) {
    const Complex nearer = (k + 1.0) * std::exp(-k * h * (3.0 - u));
    const Complex farther = (k - 1.0) * std::exp(-k * h * (3.0 + u));
    return (k + 1.0) * (nearer + farther) / ((k - 1.0) * denominator(k, h));
}

/// Node i of n Chebyshev nodes, mapped to (low, high).
double chebyshev_node(int i, int n, double low, double high) {
    const double c = std::cos(std::numbers::pi * (i + 0.5) / n);
    return 0.5 * (low + high) + 0.5 * (high - low) * c;
}

/// First `keep` Chebyshev coefficients of the polynomial through the values at all nodes.
std::vector<double> chebyshev_coefficients(const std::vector<double>& values, std::size_t keep) {
    const std::size_t n = values.size();
    std::vector<double> c(keep, 0.0);
    for (std::size_t a = 0; a < keep; ++a) {
        for (std::size_t i = 0; i < n; ++i)
            c[a] += values[i] * std::cos(std::numbers::pi * static_cast<double>(a) *
                                         (static_cast<double>(i) + 0.5) / static_cast<double>(n));
        c[a] *= (a == 0 ? 1.0 : 2.0) / static_cast<double>(n);
    }
    return c;
}

/// The same polynomial in powers of the variable, which runs from low to high.
std::vector<double> chebyshev_to_powers(const std::vector<double>& c, double low, double high) {
    const double scale = 2.0 / (high - low), shift = -(high + low) / (high - low);
    const std::size_t n = c.size();
    std::vector<double> result(n, 0.0), previous(n, 0.0), current(n, 0.0);
    current[0] = 1.0;
    for (std::size_t a = 0; a < n; ++a) {
        std::vector<double> next(n, 0.0); // T(a+1) = 2 v T(a) - T(a-1), v = scale x + shift
        const double twice = a == 0 ? 1.0 : 2.0;
        for (std::size_t j = 0; j < n; ++j) {
            result[j] += c[a] * current[j];
            next[j] = twice * (shift * current[j] + (j > 0 ? scale * current[j - 1] : 0.0));
            if (a > 0) next[j] -= previous[j];
        }
        previous = current;
        current = next;
    }
    return result;
}

/// h times the integral at (x, t) for all nodes in t, as Chebyshev coefficients in t.
std::vector<double> row_in_t(const std::vector<Complex>& g,
                             const std::vector<std::vector<Complex>>& bessel, std::size_t keep) {
    std::vector<double> values;
    for (const auto& column : bessel) {
        double sum = 0.0;
        for (std::size_t m = 0; m < g.size(); ++m)
            sum += (g[m] * column[m]).real();
        values.push_back(sum);
    }
    return chebyshev_coefficients(values, keep);
}

/// Fits one of the two functions on (low, 1) x (0, 1/4): Chebyshev coefficients in both variables,
/// those beyond the degrees dropped, and then powers.
template <std::size_t rows, std::size_t columns>
void fit(Complex (*integrand)(Complex, double, double), double h, const Path& path,
         const std::vector<std::vector<Complex>>& bessel, int nodes, double low,
         const std::array<int, rows>& degrees, double (&table)[rows][columns]) {
    std::vector<std::vector<double>> in_t, in_x; // [node][power of t], [power of t][degree in x]
    std::vector<Complex> g(path.k.size());
    for (int i = 0; i < nodes; ++i) {
        const double x = chebyshev_node(i, nodes, low, 1.0);
        for (std::size_t m = 0; m < g.size(); ++m)
            g[m] = h * path.weight[m] * integrand(path.k[m], x, h);
        in_t.push_back(row_in_t(g, bessel, columns));
    }
    for (std::size_t j = 0; j < columns; ++j) {
        std::vector<double> values;
        values.reserve(in_t.size());
        for (const auto& row : in_t)
            values.push_back(row[j]);
        in_x.push_back(chebyshev_coefficients(values, rows));
    }
    for (std::size_t i = 0; i < rows; ++i) {
        std::vector<double> kept;
        for (std::size_t j = 0; j < columns; ++j)
            kept.push_back(static_cast<int>(j) <= degrees[i] ? in_x[j][i] : 0.0);
        const auto powers = chebyshev_to_powers(kept, 0.0, 0.25);
        for (std::size_t j = 0; j < columns; ++j)
            in_x[j][i] = powers[j];
    }
    for (std::size_t j = 0; j < columns; ++j) {
        const auto powers = chebyshev_to_powers(in_x[j], low, 1.0);
        for (std::size_t i = 0; i < rows; ++i)
            table[i][j] = powers[i];
    }
}

} // namespace

void finred_poly(double h, DepthCache& cache) {
    const Path path = integration_path(h, cache.roots.k0);
    std::vector<std::vector<Complex>> bessel; // J0(k R) of each node in t
    for (int j = 0; j < t_nodes; ++j) {
        const double R = h * std::sqrt(chebyshev_node(j, t_nodes, 0.0, 0.25));
        bessel.emplace_back();
        for (const Complex k : path.k)
            bessel.back().push_back(bessel_j0(k * R));
    }
    fit(p_integrand, h, path, bessel, p_nodes, 0.0, p_degrees, cache.p);
    fit(q_integrand, h, path, bessel, q_nodes, -1.0, q_degrees, cache.q);
}

DepthCache prepare_depth(double h) {
    DepthCache cache;
    cache.h = h;
    cache.status = eigwno(h, cache.roots);
    if (cache.status == RootStatus::found) finred_poly(h, cache);
    return cache;
}

} // namespace quelor
