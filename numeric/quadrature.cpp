// Quadrature rules: Gauss-Legendre points by iteration, triangle rules from their symmetric sets.
#include "numeric/quadrature.hpp"

#include "numeric/index.hpp"

#include <cmath>
#include <cstddef>
#include <numbers>

namespace quelor {

namespace {

struct Legendre {
    long double value, slope;
};

/// P_n(x) and its derivative by the three-term recurrence, |x| < 1.
Legendre legendre(int n, long double x) {
    long double before = 0, p = 1;
    for (int k = 1; k <= n; ++k) {
        const auto next = ((2 * k - 1) * x * p - (k - 1) * before) / k;
        before = p;
        p = next;
    }
    return {p, n * (before - x * p) / (1 - x * x)};
}

/// Points that change into one another with the corners: (a, b, 1 - a - b) in every order.
struct Orbit {
    int rule;
    double a, b, weight;
};

// 7 points: (6 -+ sqrt 15) / 21 and (155 -+ sqrt 15) / 1200. 9 and 12 points: the numbers that make
// the rule exact for all symmetric polynomials of its degree, solved for in 40 digits.
// Source: [Radon 1948] for 7 points, [Strang 1973, table 4.1] for the others.
// clang-format off
constexpr Orbit orbits[] = {
    { 1, 1.0 / 3, 1.0 / 3, 1},
    { 3, 1.0 / 6, 1.0 / 6, 1.0 / 3},
    { 4, 1.0 / 3, 1.0 / 3, -27.0 / 48},
    { 4, 0.2, 0.2, 25.0 / 48},
    { 7, 1.0 / 3, 1.0 / 3, 9.0 / 40},
    { 7, 0.1012865073234563388010, 0.1012865073234563388010, 0.1259391805448271525957},
    { 7, 0.4701420641051150897704, 0.4701420641051150897704, 0.1323941527885061807376},
    { 9, 0.4375252483833838673252, 0.4375252483833838673252, 0.2059505047608866030118},
    { 9, 0.7971126518600708014174, 0.1654099273898414229240, 0.06369141428622336516074},
    {12, 0.2492867451709104212916, 0.2492867451709104212916, 0.1167862757263793660253},
    {12, 0.06308901449150222834033, 0.06308901449150222834033, 0.05084490637020681692094},
    {12, 0.3103524510337844054166, 0.05314504984481694735325, 0.08285107561837357519355},
};
// clang-format on

void append_orbit(std::vector<TrianglePoint>& points, const Orbit& orbit) {
    const double a = orbit.a, b = orbit.b, c = 1 - a - b, w = orbit.weight;
    points.push_back({a, b, c, w});
    if (orbit.a == orbit.b && 3 * orbit.a == 1) return; // the centroid
    points.push_back({b, c, a, w});
    points.push_back({c, a, b, w});
    if (orbit.a == orbit.b) return;
    points.push_back({b, a, c, w});
    points.push_back({a, c, b, w});
    points.push_back({c, b, a, w});
}

} // namespace

void gauss_legendre(std::span<double> x, std::span<double> w) {
    const int n = static_cast<int>(x.size());
    for (int i = 1; i <= n; ++i) {
        long double root = -std::cos(std::numbers::pi_v<long double> * (i - 0.25L) / (n + 0.5L));
        if (2 * i == n + 1) root = 0;
        for (int step = 0; step < 5; ++step) { // the digits double with each from two good ones
            const Legendre p = legendre(n, root);
            root -= p.value / p.slope;
        }
        const long double slope = legendre(n, root).slope;
        const auto at = nth(i);
        x[at] = static_cast<double>(root);
        w[at] = static_cast<double>(2 / ((1 - root * root) * slope * slope));
    }
}

std::vector<TrianglePoint> triangle_rule(int n) {
    std::vector<TrianglePoint> points;
    for (const Orbit& orbit : orbits) {
        if (orbit.rule == n) append_orbit(points, orbit);
    }
    return points;
}

} // namespace quelor
